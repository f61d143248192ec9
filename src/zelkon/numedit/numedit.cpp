#include <zelkon/common/colors_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/updown.h>
#include <zelkon/numedit/numedit.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>
#include <qdrawutil.h>

#include <cmath>

namespace zelkon {

ZELKON_REGISTER_CONTROL(NumEdit);

namespace {

// The focus record is compared with the real focus this often while the control is shown.
constexpr int focusPollInterval = 5;

QLocale numberLocale()
{
    return Platform::current().numberLocale();
}

} // namespace

NumEdit::NumEdit(QWidget *parent)
    : Control(parent)
    , m_text(new QLineEdit(this))
    , m_upDown(new UpDown(this))
    , m_focusTimer(new QTimer(this))
    , m_textColor(SystemWindowText)
    , m_negTextColor(SystemWindowText)
    , m_backTextColor(SystemWindowBackground)
{
    m_text->setObjectName(QStringLiteral("Text1"));
    m_text->setAccessibleName(tr("Number"));
    m_text->setFrame(false);
    m_text->setMouseTracking(true); // mouse moves are reported without a button held
    m_text->installEventFilter(this);
    setFocusProxy(m_text);
    setFocusPolicy(m_text->focusPolicy());

    // Hosts find the spinner by name, but nothing steps it and the layout gives it no place, so it
    // stays out of sight.
    m_upDown->setObjectName(QStringLiteral("UpDown"));
    m_upDown->setAccessibleName(tr("Spinner"));
    m_upDown->hide();

    m_focusTimer->setObjectName(QStringLiteral("tmFocus"));
    m_focusTimer->setInterval(focusPollInterval);
    connect(m_focusTimer, &QTimer::timeout, this, [this] { syncFocus(); });
    connect(m_text, &QLineEdit::textChanged, this, [this] { textChanged(); });

    m_format.setDigits(m_digNum);
    updateFrame();
    DetectDecimalSeparator();
    FormatDisplay();
    m_lastText = m_text->text();
}

NumEdit::~NumEdit()
{
    // The text box outlives this part of the object while QWidget deletes its children: it must
    // not call back into it (a focus change or a text change during destruction).
    m_focusTimer->stop();
    m_text->removeEventFilter(this);
    disconnect(m_text, nullptr, this, nullptr);
}

// ---- persistence

void NumEdit::InitProperties()
{
    DetectDecimalSeparator();
    FormatDisplay();
    m_lastText = m_text->text();
}

void NumEdit::ReadProperties(PropertyBag &bag)
{
    attempt([&] { m_value = CDbl(bag.ReadProperty(QStringLiteral("Value"), 0.0)); });
    attempt([&] {
        const qint16 digits = CInt(bag.ReadProperty(QStringLiteral("DigNum"), qint16(2)));
        m_digNum = digits < 0 ? qint16(0) : digits;
        m_format.setDigits(m_digNum);
    });
    attempt([&] { FormatDisplay(); });
    attempt([&] {
        m_textColor = oleColorFromVariant(
            bag.ReadProperty(QStringLiteral("TextColor"), quint32(SystemWindowText)));
    });
    attempt([&] {
        m_negTextColor = oleColorFromVariant(
            bag.ReadProperty(QStringLiteral("NegTextColor"), quint32(SystemWindowText)));
    });
    applyTextColor(m_value >= 0 ? m_textColor : m_negTextColor);
    attempt([&] {
        m_backTextColor = oleColorFromVariant(
            bag.ReadProperty(QStringLiteral("BackTextColor"), quint32(SystemWindowBackground)));
        applyOleColor(m_text, QPalette::Base, m_backTextColor);
    });
    attempt(
        [&] { m_text->setReadOnly(CBool(bag.ReadProperty(QStringLiteral("LockEdits"), false))); });
    // The limits are stored as read, without clamping: the value saved with them is already
    // within them, and clamping against a half-loaded range would change it.
    attempt([&] { m_minValue = CDbl(bag.ReadProperty(QStringLiteral("MinValue"), 0.0)); });
    attempt([&] { m_maxValue = CDbl(bag.ReadProperty(QStringLiteral("MaxValue"), 0.0)); });
    readExtent(*this, bag, ExtentKeys::SizeOnly);
    attempt([&] {
        m_text->setEnabled(CBool(bag.ReadProperty(QStringLiteral("Enabled"), isEnabledProperty())));
    });
    attempt([&] {
        const qint16 appearance = CInt(bag.ReadProperty(QStringLiteral("Appearance"), qint16(1)));
        if (appearance == 0 || appearance == 1)
            m_appearance = appearance;
    });
    attempt([&] {
        const qint16 border = CInt(bag.ReadProperty(QStringLiteral("Border"), qint16(1)));
        if (border == 0 || border == 1)
            m_border = border;
    });
    updateFrame();
    m_lastText = m_text->text();
}

void NumEdit::WriteProperties(PropertyBag &bag)
{
    ignoreErrors({
        [&] { bag.WriteProperty(QStringLiteral("Value"), m_value, 0.0); },
        [&] { bag.WriteProperty(QStringLiteral("DigNum"), m_digNum, qint16(2)); },
        [&] {
            bag.WriteProperty(QStringLiteral("TextColor"), m_textColor, quint32(SystemWindowText));
        },
        [&] {
            bag.WriteProperty(QStringLiteral("NegTextColor"), m_negTextColor,
                              quint32(SystemWindowText));
        },
        [&] {
            bag.WriteProperty(QStringLiteral("BackTextColor"), m_backTextColor,
                              quint32(SystemWindowBackground));
        },
        [&] { bag.WriteProperty(QStringLiteral("LockEdits"), LockEdits(), false); },
        [&] { bag.WriteProperty(QStringLiteral("MinValue"), m_minValue, 0.0); },
        [&] { bag.WriteProperty(QStringLiteral("MaxValue"), m_maxValue, 0.0); },
        // Size and Enabled are written with their current state as the default, so in effect
        // nothing is stored for them: forms saved so far rely on the container's own size, and a
        // reloaded control keeps the enabled state it is created with.
        [&] { writeExtent(*this, bag, ExtentKeys::SizeOnly); },
        [&] {
            bag.WriteProperty(QStringLiteral("Enabled"), isEnabledProperty(), isEnabledProperty());
        },
        [&] { bag.WriteProperty(QStringLiteral("Appearance"), m_appearance, qint16(1)); },
        [&] { bag.WriteProperty(QStringLiteral("Border"), m_border, qint16(1)); },
    });
}

// ---- properties

double NumEdit::Value()
{
    if (!m_editing)
        FormatDisplay();
    return m_value;
}

void NumEdit::setValue(double value)
{
    if (!std::isfinite(value))
        return; // no text could show it
    if (limitsActive()) {
        if (value < m_minValue)
            value = m_minValue;
        if (value > m_maxValue)
            value = m_maxValue;
    }
    m_value = value;
    // While editing the text is written without suppression, so the change processing raises
    // ChangeValue. The text box stays silent for the text it already holds, and that silence is
    // kept: it ends the exchange with a host that assigns Value from its ChangeValue handler.
    if (m_editing)
        m_text->setText(CStr(m_value));
    else
        FormatDisplay();
    m_suppressChange = false;
    Q_EMIT PropertyChanged(QStringLiteral("Value"));
}

void NumEdit::setTextColor(quint32 color)
{
    if (m_value >= 0)
        applyTextColor(color);
    m_textColor = color;
    Q_EMIT PropertyChanged(QStringLiteral("TextColor"));
}

void NumEdit::setNegTextColor(quint32 color)
{
    if (m_value < 0)
        applyTextColor(color);
    m_negTextColor = color;
    Q_EMIT PropertyChanged(QStringLiteral("NegTextColor"));
}

void NumEdit::setDigNum(qint16 digits)
{
    m_digNum = digits < 0 ? qint16(0) : digits;
    m_format.setDigits(m_digNum);
    if (!m_editing) {
        const int caret = m_text->cursorPosition();
        FormatDisplay();
        m_text->setCursorPosition(caret);
    }
    Q_EMIT PropertyChanged(QStringLiteral("DigNum"));
}

void NumEdit::setBackTextColor(quint32 color)
{
    applyOleColor(m_text, QPalette::Base, color);
    m_backTextColor = color;
    Q_EMIT PropertyChanged(QStringLiteral("BackTextColor"));
}

bool NumEdit::LockEdits() const
{
    return m_text->isReadOnly();
}

void NumEdit::setLockEdits(bool locked)
{
    m_text->setReadOnly(locked);
    Q_EMIT PropertyChanged(QStringLiteral("LockEdits"));
}

QString NumEdit::FontName() const
{
    return m_text->font().family();
}

void NumEdit::setFontName(const QString &name)
{
    if (name.isEmpty())
        return;
    QFont f = font();
    f.setFamily(name);
    setFont(f);
    m_text->setFont(f);
    relayout();
}

qint16 NumEdit::FontSize() const
{
    const QFont f = m_text->font();
    const qreal points = f.pointSizeF();
    return points > 0 ? qint16(qRound(points)) : qint16(0);
}

void NumEdit::setFontSize(qint16 points)
{
    if (points <= 0)
        return;
    QFont f = font();
    f.setPointSize(points);
    setFont(f);
    m_text->setFont(f);
    relayout();
}

void NumEdit::setBorder(qint16 border)
{
    if (border == 0 || border == 1) {
        m_border = border;
        updateFrame();
    }
    Q_EMIT PropertyChanged(QStringLiteral("Border"));
}

void NumEdit::setAppearance(qint16 appearance)
{
    if (appearance == 0 || appearance == 1) {
        m_appearance = appearance;
        updateFrame();
    }
    Q_EMIT PropertyChanged(QStringLiteral("Appearance"));
}

void NumEdit::setMinValue(double value)
{
    m_minValue = value;
    ClampToRange();
    Q_EMIT PropertyChanged(QStringLiteral("MinValue"));
}

void NumEdit::setMaxValue(const QVariant &value)
{
    attempt([&] { m_maxValue = CDbl(value); });
    ClampToRange();
    Q_EMIT PropertyChanged(QStringLiteral("MaxValue"));
}

bool NumEdit::isEnabledProperty() const
{
    return m_text->isEnabledTo(this);
}

void NumEdit::setEnabledProperty(bool enabled)
{
    m_text->setEnabled(enabled);
    Q_EMIT PropertyChanged(QStringLiteral("Enabled"));
}

// ---- editing logic

void NumEdit::DetectDecimalSeparator()
{
    const QString sample = CStr(0.6);
    if (sample.isEmpty())
        return;
    m_decimalSeparator = sample.size() == 3 ? sample.at(1) : sample.at(0);
    m_foreignSeparator
        = m_decimalSeparator != QLatin1Char('.') ? QLatin1Char('.') : QLatin1Char(',');
}

void NumEdit::ClampToRange()
{
    if (!limitsActive())
        return;
    // Both bounds are tried in turn, each with its own beep, so a contradictory range (a minimum
    // above the maximum) ends on the maximum after two corrections.
    if (m_value < m_minValue) {
        m_value = m_minValue;
        Platform::current().beep();
        writeText(CStr(m_value));
        Q_EMIT ChangeValue();
    }
    if (m_value > m_maxValue) {
        m_value = m_maxValue;
        Platform::current().beep();
        writeText(CStr(m_value));
        Q_EMIT ChangeValue();
    }
}

void NumEdit::FormatDisplay()
{
    writeText(m_format.format(m_value, numberLocale()));
}

void NumEdit::textChanged()
{
    if (m_suppressChange)
        return;
    const int caret = selStart();
    const QString text = m_text->text();
    const QString separator(m_decimalSeparator);
    // The beginnings of a number that cannot be parsed yet stay as typed.
    if (text == QLatin1Char('+') + separator || text == QLatin1Char('-') + separator
        || text == separator || text == QLatin1String("+") || text == QLatin1String("-")) {
        m_value = 0;
        Q_EMIT ChangeValue();
        return;
    }
    if (text.isEmpty()) {
        m_value = 0;
    } else if (double number = 0; parseNumber(text, numberLocale(), &number)) {
        m_value = number;
        // A number beyond the limits is held (and shown) as typed until the field loses the
        // focus: the user may still be on the way to a valid one, as in typing 1 on the way to 15
        // with a minimum of 10.
        if (limitsActive() && (m_value < m_minValue || m_value > m_maxValue))
            return;
        m_textAccepted = true;
    } else {
        // Written without suppression: the change processing runs again for the rewritten text
        // and raises ChangeValue there too. Hosts count on that second notification, so it stays.
        m_text->setText(plainText());
        const int length = int(m_text->text().size());
        m_text->setCursorPosition(qBound(0, caret - 1, length));
        m_textAccepted = false;
    }
    m_lastText = m_text->text();
    applyTextColor(m_value >= 0 ? m_textColor : m_negTextColor);
    Q_EMIT ChangeValue();
}

bool NumEdit::keyDown(QKeyEvent *event)
{
    if (LockEdits())
        return false;
    const int code = keyCode(event);
    double factor = 0;
    switch (code) {
    case KeyEscape:
        m_value = m_savedValue;
        break;
    case KeyA + ('M' - 'A'):
        factor = 1e6;
        break;
    case KeyA + ('Y' - 'A'):
        factor = 1e9;
        break;
    case KeyA + ('T' - 'A'):
        factor = 1e3;
        break;
    case KeyReturn:
        Platform::current().sendKeys(QStringLiteral("{TAB}"));
        return true;
    case KeyLeft:
        if (selStart() < 1)
            Q_EMIT ArrowKeyUp(qint16(code));
        return false;
    case KeyRight:
        if (selStart() >= m_text->text().size())
            Q_EMIT ArrowKeyUp(qint16(code));
        return false;
    case KeyUp:
    case KeyDown:
    case KeyPageUp:
    case KeyPageDown:
        Q_EMIT ArrowKeyUp(qint16(code));
        return false;
    default:
        return false;
    }
    if (factor != 0) {
        // No range check here: the limits apply when the field loses the focus. A product beyond
        // the double range is refused and the value stays.
        const double product = m_value * factor;
        if (std::isfinite(product))
            m_value = product;
    }
    writeText(plainText());
    Q_EMIT ChangeValue();
    return false;
}

bool NumEdit::keyPress(QKeyEvent *event)
{
    const int ascii = keyAscii(event);
    // Control characters (Backspace, Tab, Enter, and Ctrl+C/V/X/A/Z for the clipboard and undo)
    // are commands of the text box here, not characters to filter.
    if (ascii < 32 || ascii == 127)
        return false;
    const QChar c(ascii);
    if (c == QLatin1Char('.') || c == QLatin1Char(',')) {
        if (c != m_foreignSeparator)
            return false;
        // Either separator key types the locale's own, so both keyboards work in both locales.
        QKeyEvent replaced(QEvent::KeyPress,
                           m_decimalSeparator == QLatin1Char(',') ? Qt::Key_Comma : Qt::Key_Period,
                           event->modifiers(), QString(m_decimalSeparator), event->isAutoRepeat(),
                           event->count());
        m_retyping = true;
        QCoreApplication::sendEvent(m_text, &replaced);
        m_retyping = false;
        return true;
    }
    if (c == QLatin1Char('+') || c == QLatin1Char('-'))
        return false;
    return !(c >= QLatin1Char('0') && c <= QLatin1Char('9'));
}

void NumEdit::keyUp(QKeyEvent *event)
{
    if (LockEdits() || keyCode(event) != KeyDecimal || m_textAccepted)
        return;
    // The keypad's decimal key typed a separator the field refused: type the locale's own.
    DetectDecimalSeparator();
    const int key = m_decimalSeparator == QLatin1Char(',') ? Qt::Key_Comma : Qt::Key_Period;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(m_decimalSeparator));
    QCoreApplication::sendEvent(m_text, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(m_decimalSeparator));
    QCoreApplication::sendEvent(m_text, &release);
}

void NumEdit::focusGained()
{
    m_hasFocus = true;
    if (LockEdits())
        return;
    m_focusTimer->start();
    m_editing = true;
    m_savedValue = m_value;
    const bool suppressed = m_suppressChange;
    m_suppressChange = true;
    m_text->setText(plainText());
    m_text->setSelection(0, int(m_text->text().size()));
    m_suppressChange = suppressed;
    Q_EMIT GotFocusEvent();
}

void NumEdit::focusLost()
{
    m_hasFocus = false;
    if (LockEdits())
        return;
    ClampToRange();
    const bool suppressed = m_suppressChange;
    m_suppressChange = true;
    FormatDisplay();
    m_editing = false;
    m_suppressChange = suppressed;
    Q_EMIT LostFocusEvent();
}

void NumEdit::syncFocus()
{
    // The window losing activation (or a context menu opening) leaves the focus widget as it is:
    // only a real move of the focus counts.
    const bool focused = QApplication::focusWidget() == m_text;
    if (focused && !m_hasFocus)
        focusGained();
    else if (!focused && m_hasFocus)
        focusLost();
}

// ---- helpers

QString NumEdit::plainText() const
{
    return m_value == 0 ? QString() : CStr(m_value);
}

int NumEdit::selStart() const
{
    return m_text->hasSelectedText() ? m_text->selectionStart() : m_text->cursorPosition();
}

void NumEdit::writeText(const QString &text)
{
    const bool suppressed = m_suppressChange;
    m_suppressChange = true;
    m_text->setText(text);
    m_suppressChange = suppressed;
}

void NumEdit::applyTextColor(quint32 color)
{
    applyOleColor(m_text, QPalette::Text, color);
}

void NumEdit::updateFrame()
{
    const int frame = m_border == 0 ? 0 : (m_appearance == 0 ? 1 : 2);
    setContentsMargins(frame, frame, frame, frame);
    relayout();
    update();
}

void NumEdit::relayout()
{
    // The text box fills the client area but for two pixels at the bottom.
    const QRect client = contentsRect();
    m_text->setGeometry(client.x(), client.y(), client.width(), qMax(0, client.height() - 2));
    updateGeometry();
}

QSize NumEdit::sizeHint() const
{
    const QSize text = m_text->sizeHint();
    const QMargins m = contentsMargins();
    return QSize(text.width() + m.left() + m.right(), text.height() + 2 + m.top() + m.bottom());
}

QSize NumEdit::minimumSizeHint() const
{
    const QSize text = m_text->minimumSizeHint();
    const QMargins m = contentsMargins();
    return QSize(text.width() + m.left() + m.right(), text.height() + 2 + m.top() + m.bottom());
}

// ---- events

bool NumEdit::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_text || m_retyping)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (keyDown(key))
            return true;
        return keyPress(key);
    }
    case QEvent::KeyRelease:
        keyUp(static_cast<QKeyEvent *>(event));
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        syncFocus();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const MouseArgs a = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseDown(a.Button, a.Shift, a.X, a.Y);
        break;
    }
    case QEvent::MouseButtonRelease: {
        const MouseArgs a = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseUp(a.Button, a.Shift, a.X, a.Y);
        break;
    }
    case QEvent::MouseMove: {
        const MouseArgs a = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseMove(a.Button, a.Shift, a.X, a.Y);
        break;
    }
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

void NumEdit::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    relayout();
}

void NumEdit::paintEvent(QPaintEvent *)
{
    if (m_border == 0)
        return;
    QPainter painter(this);
    if (m_appearance == 0) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    } else {
        qDrawWinPanel(&painter, rect(), palette(), true);
    }
}

void NumEdit::hideEvent(QHideEvent *event)
{
    m_focusTimer->stop();
    Control::hideEvent(event);
}

void NumEdit::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        relayout();
    Control::changeEvent(event);
}

} // namespace zelkon
