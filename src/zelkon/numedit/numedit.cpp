#include <zelkon/common/colors_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/updown.h>
#include <zelkon/numedit/displayformat_p.h>
#include <zelkon/numedit/numedit.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

#include <cmath>

namespace zelkon {

ZELKON_REGISTER_CONTROL(NumEdit);

namespace {

// The focus record is compared with the real focus this often while the control is shown.
constexpr int focusPollInterval = 5;
// Width of the size hint in average characters: room for a grouped amount with decimals.
constexpr int hintChars = 15;
constexpr int minimumHintChars = 4;

QLocale numberLocale()
{
    return Platform::current().numberLocale();
}

// The factor of a multiplier key (T a thousand, M a million, Y a thousand million), else 0.
double multiplier(int code)
{
    switch (code) {
    case KeyA + ('T' - 'A'):
        return 1e3;
    case KeyA + ('M' - 'A'):
        return 1e6;
    case KeyA + ('Y' - 'A'):
        return 1e9;
    default:
        return 0;
    }
}

} // namespace

class NumEditPrivate
{
public:
    explicit NumEditPrivate(NumEdit *q);

    void DetectDecimalSeparator();
    void ClampToRange();
    void FormatDisplay();

    void textChanged();
    // True when the key is consumed.
    bool keyDown(QKeyEvent *event);
    bool keyPress(QKeyEvent *event);
    void keyUp(QKeyEvent *event);
    void focusGained();
    void focusLost();
    void syncFocus();

    bool locked() const { return text->isReadOnly(); }
    bool limitsActive() const { return !(minValue == 0 && maxValue == 0); }
    QString plainText() const { return value == 0 ? QString() : CStr(value); } // empty for 0
    int selStart() const;
    void writeText(const QString &newText); // with the suppress-change flag set
    void applyTextColor(quint32 color) { applyOleColor(text, QPalette::Text, color); }
    void applySignColor() { applyTextColor(value >= 0 ? textColor : negTextColor); }
    void updateFrame();
    void relayout();

    NumEdit *const q;
    QLineEdit *const text;
    UpDown *const upDown;
    QTimer *const focusTimer;

    QVariant tag;
    double value = 0;
    double savedValue = 0;
    double minValue = 0;
    double maxValue = 0;
    qint16 digNum = 0;
    quint32 textColor = SystemWindowText;
    quint32 negTextColor = SystemWindowText;
    quint32 backTextColor = SystemWindowBackground;
    qint16 border = 1;
    qint16 appearance = 1;
    QString lastText;
    QChar decimalSeparator = QLatin1Char('.');
    QChar foreignSeparator = QLatin1Char(',');
    bool suppressChange = false;
    bool editing = false;
    bool hasFocus = false;
    bool textAccepted = false;
    bool retyping = false;
    DisplayFormat format;
};

NumEditPrivate::NumEditPrivate(NumEdit *q)
    : q(q)
    , text(new QLineEdit(q))
    , upDown(new UpDown(q))
    , focusTimer(new QTimer(q))
    , format(digNum)
{ }

// ---- editing logic

void NumEditPrivate::DetectDecimalSeparator()
{
    const QString sample = CStr(0.6);
    if (sample.isEmpty())
        return;
    decimalSeparator = sample.size() == 3 ? sample.at(1) : sample.at(0);
    foreignSeparator = decimalSeparator != QLatin1Char('.') ? QLatin1Char('.') : QLatin1Char(',');
}

void NumEditPrivate::ClampToRange()
{
    if (!limitsActive())
        return;
    // Both bounds are tried in turn, each with its own beep, so a contradictory range (a minimum
    // above the maximum) ends on the maximum after two corrections.
    const auto correct = [this](double bound) {
        value = bound;
        Platform::current().beep();
        writeText(CStr(value));
        Q_EMIT q->ChangeValue();
    };
    if (value < minValue)
        correct(minValue);
    if (value > maxValue)
        correct(maxValue);
}

void NumEditPrivate::FormatDisplay()
{
    writeText(format.format(value, numberLocale()));
}

void NumEditPrivate::textChanged()
{
    if (suppressChange)
        return;
    const int caret = selStart();
    const QString typed = text->text();
    const QString separator(decimalSeparator);
    // The beginnings of a number that cannot be parsed yet stay as typed.
    if (typed == QLatin1Char('+') + separator || typed == QLatin1Char('-') + separator
        || typed == separator || typed == QLatin1String("+") || typed == QLatin1String("-")) {
        value = 0;
        Q_EMIT q->ChangeValue();
        return;
    }
    if (typed.isEmpty()) {
        value = 0;
    } else if (double number = 0; parseNumber(typed, numberLocale(), &number)) {
        value = number;
        // A number beyond the limits is held (and shown) as typed until the field loses the
        // focus: the user may still be on the way to a valid one, as in typing 1 on the way to 15
        // with a minimum of 10.
        if (limitsActive() && (value < minValue || value > maxValue))
            return;
        textAccepted = true;
    } else {
        // Written without suppression: the change processing runs again for the rewritten text
        // and raises ChangeValue there too. Hosts count on that second notification, so it stays.
        text->setText(plainText());
        text->setCursorPosition(qBound(0, caret - 1, int(text->text().size())));
        textAccepted = false;
    }
    lastText = text->text();
    applySignColor();
    Q_EMIT q->ChangeValue();
}

bool NumEditPrivate::keyDown(QKeyEvent *event)
{
    if (locked())
        return false;
    const int code = keyCode(event);
    switch (code) {
    case KeyEscape:
        value = savedValue;
        writeText(plainText());
        Q_EMIT q->ChangeValue();
        // Consumed: the field's Escape undoes the edit; it must not also cancel the dialog.
        return true;
    case KeyReturn:
        Platform::current().sendKeys(QStringLiteral("{TAB}"));
        return true;
    case KeyLeft:
        if (selStart() < 1)
            Q_EMIT q->ArrowKeyUp(qint16(code));
        return false;
    case KeyRight:
        if (selStart() >= text->text().size())
            Q_EMIT q->ArrowKeyUp(qint16(code));
        return false;
    case KeyUp:
    case KeyDown:
    case KeyPageUp:
    case KeyPageDown:
        Q_EMIT q->ArrowKeyUp(qint16(code));
        return false;
    default:
        break;
    }
    const double factor = multiplier(code);
    if (factor == 0)
        return false;
    // No range check here: the limits apply when the field loses the focus. A product beyond the
    // double range is refused and the value stays.
    if (const double product = value * factor; std::isfinite(product))
        value = product;
    writeText(plainText());
    Q_EMIT q->ChangeValue();
    return true; // the letter itself is never typed
}

bool NumEditPrivate::keyPress(QKeyEvent *event)
{
    const int ascii = keyAscii(event);
    // Control characters (Backspace, Tab, Enter, and Ctrl+C/V/X/A/Z for the clipboard and undo)
    // are commands of the text box here, not characters to filter.
    if (ascii < 32 || ascii == 127)
        return false;
    const QChar c(ascii);
    if (c == QLatin1Char('.') || c == QLatin1Char(',')) {
        if (c != foreignSeparator)
            return false;
        // Either separator key types the locale's own, so both keyboards work in both locales.
        QKeyEvent replaced(
            QEvent::KeyPress, decimalSeparator == QLatin1Char(',') ? Qt::Key_Comma : Qt::Key_Period,
            event->modifiers(), QString(decimalSeparator), event->isAutoRepeat(), event->count());
        retyping = true;
        QCoreApplication::sendEvent(text, &replaced);
        retyping = false;
        return true;
    }
    if (c == QLatin1Char('+') || c == QLatin1Char('-'))
        return false;
    return !(c >= QLatin1Char('0') && c <= QLatin1Char('9'));
}

void NumEditPrivate::keyUp(QKeyEvent *event)
{
    if (locked() || keyCode(event) != KeyDecimal || textAccepted)
        return;
    // The keypad's decimal key typed a separator the field refused: type the locale's own.
    DetectDecimalSeparator();
    const int key = decimalSeparator == QLatin1Char(',') ? Qt::Key_Comma : Qt::Key_Period;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(decimalSeparator));
    QCoreApplication::sendEvent(text, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(decimalSeparator));
    QCoreApplication::sendEvent(text, &release);
}

void NumEditPrivate::focusGained()
{
    hasFocus = true;
    if (locked())
        return;
    focusTimer->start();
    editing = true;
    savedValue = value;
    writeText(plainText());
    text->setSelection(0, int(text->text().size()));
    Q_EMIT q->GotFocusEvent();
}

void NumEditPrivate::focusLost()
{
    hasFocus = false;
    if (locked())
        return;
    ClampToRange();
    FormatDisplay();
    editing = false;
    Q_EMIT q->LostFocusEvent();
}

void NumEditPrivate::syncFocus()
{
    // The window losing activation (or a context menu opening) leaves the focus widget as it is:
    // only a real move of the focus counts.
    const bool focused = QApplication::focusWidget() == text;
    if (focused && !hasFocus)
        focusGained();
    else if (!focused && hasFocus)
        focusLost();
}

// ---- helpers

int NumEditPrivate::selStart() const
{
    return text->hasSelectedText() ? text->selectionStart() : text->cursorPosition();
}

void NumEditPrivate::writeText(const QString &newText)
{
    const bool suppressed = suppressChange;
    suppressChange = true;
    text->setText(newText);
    suppressChange = suppressed;
}

void NumEditPrivate::updateFrame()
{
    q->setFrameLook(appearance, border);
    relayout();
}

void NumEditPrivate::relayout()
{
    // The text box fills the client area but for two pixels at the bottom.
    const QRect client = q->contentsRect();
    text->setGeometry(client.x(), client.y(), client.width(), qMax(0, client.height() - 2));
    q->updateGeometry();
}

// ---- NumEdit

NumEdit::NumEdit(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<NumEditPrivate>(this))
{
    d->text->setObjectName(QStringLiteral("Text1"));
    d->text->setAccessibleName(loadString("number"));
    d->text->setFrame(false);
    d->text->setMouseTracking(true); // mouse moves are reported without a button held
    d->text->installEventFilter(this);
    forwardMouse(d->text);
    setFocusProxy(d->text);
    setFocusPolicy(d->text->focusPolicy());

    // Hosts find the spinner by name, but nothing steps it and the layout gives it no place, so it
    // stays out of sight.
    d->upDown->setObjectName(QStringLiteral("UpDown"));
    d->upDown->setAccessibleName(loadString("spinner"));
    d->upDown->hide();

    d->focusTimer->setObjectName(QStringLiteral("tmFocus"));
    d->focusTimer->setInterval(focusPollInterval);
    connect(d->focusTimer, &QTimer::timeout, this, [this] { d->syncFocus(); });
    connect(d->text, &QLineEdit::textChanged, this, [this] { d->textChanged(); });

    d->updateFrame();
    d->DetectDecimalSeparator();
    d->FormatDisplay();
    d->lastText = d->text->text();
}

NumEdit::~NumEdit()
{
    // The text box outlives this part of the object while QWidget deletes its children: it must
    // not call back into it (a focus change or a text change during destruction).
    d->focusTimer->stop();
    d->text->removeEventFilter(this);
    disconnect(d->text, nullptr, this, nullptr);
}

// ---- persistence

void NumEdit::InitProperties()
{
    // A newly placed field keeps the digit count it was created with (none); only a saved form
    // that lacks the key falls back to two decimals.
    d->DetectDecimalSeparator();
    d->FormatDisplay();
    d->lastText = d->text->text();
}

void NumEdit::ReadProperties(PropertyBag &bag)
{
    attempt([&] { d->value = CDbl(bag.ReadProperty(QStringLiteral("Value"), 0.0)); });
    attempt([&] {
        const qint16 digits = CInt(bag.ReadProperty(QStringLiteral("DigNum"), qint16(2)));
        d->digNum = qMax(digits, qint16(0));
    });
    d->format.setDigits(d->digNum);
    attempt([&] { d->FormatDisplay(); });
    const auto readColor = [&](const char *key, quint32 &field, quint32 defaultColor) {
        attempt([&] {
            field = oleColorFromVariant(bag.ReadProperty(QLatin1String(key), defaultColor));
        });
    };
    readColor("TextColor", d->textColor, SystemWindowText);
    readColor("NegTextColor", d->negTextColor, SystemWindowText);
    d->applySignColor();
    readColor("BackTextColor", d->backTextColor, SystemWindowBackground);
    applyOleColor(d->text, QPalette::Base, d->backTextColor);
    attempt(
        [&] { d->text->setReadOnly(CBool(bag.ReadProperty(QStringLiteral("LockEdits"), false))); });
    // The limits are stored as read, without clamping: the value saved with them is already
    // within them, and clamping against a half-loaded range would change it.
    attempt([&] { d->minValue = CDbl(bag.ReadProperty(QStringLiteral("MinValue"), 0.0)); });
    attempt([&] { d->maxValue = CDbl(bag.ReadProperty(QStringLiteral("MaxValue"), 0.0)); });
    readExtent(*this, bag, ExtentKeys::SizeOnly);
    attempt([&] { applyEnabled(CBool(bag.ReadProperty(QStringLiteral("Enabled"), Enabled()))); });
    const auto readStyle = [&](const char *key, qint16 &field) {
        attempt([&] {
            const qint16 style = CInt(bag.ReadProperty(QLatin1String(key), qint16(1)));
            if (style == 0 || style == 1)
                field = style;
        });
    };
    readStyle("Appearance", d->appearance);
    readStyle("Border", d->border);
    d->updateFrame();
    d->lastText = d->text->text();
}

void NumEdit::WriteProperties(PropertyBag &bag)
{
    const auto write = [&](const char *key, const QVariant &value, const QVariant &defaultValue) {
        return [&bag, key, value, defaultValue] {
            bag.WriteProperty(QLatin1String(key), value, defaultValue);
        };
    };
    // Size and Enabled are written with their current state as the default, so in effect nothing
    // is stored for them: forms saved so far rely on the container's own size, and a reloaded
    // control keeps the enabled state it is created with.
    ignoreErrors({
        write("Value", d->value, 0.0),
        write("DigNum", d->digNum, qint16(2)),
        write("TextColor", d->textColor, quint32(SystemWindowText)),
        write("NegTextColor", d->negTextColor, quint32(SystemWindowText)),
        write("BackTextColor", d->backTextColor, quint32(SystemWindowBackground)),
        write("LockEdits", LockEdits(), false),
        write("MinValue", d->minValue, 0.0),
        write("MaxValue", d->maxValue, 0.0),
        [&] { writeExtent(*this, bag, ExtentKeys::SizeOnly); },
        write("Enabled", Enabled(), Enabled()),
        write("Appearance", d->appearance, qint16(1)),
        write("Border", d->border, qint16(1)),
    });
}

// ---- properties

QVariant NumEdit::TagVariant() const
{
    return d->tag;
}

void NumEdit::setTagVariant(const QVariant &tag)
{
    d->tag = tag;
    notifyPut(QStringLiteral("TagVariant"));
}

double NumEdit::Value()
{
    if (!d->editing)
        d->FormatDisplay();
    return d->value;
}

void NumEdit::setValue(double value)
{
    if (std::isfinite(value)) { // no text could show anything else
        if (d->limitsActive()) {
            value = qMax(value, d->minValue);
            value = qMin(value, d->maxValue);
        }
        d->value = value;
        // While editing the text is written without suppression, so the change processing raises
        // ChangeValue. The text box stays silent for the text it already holds, and that silence
        // is kept: it ends the exchange with a host that assigns Value from its ChangeValue
        // handler.
        if (d->editing)
            d->text->setText(CStr(d->value));
        else
            d->FormatDisplay();
        d->suppressChange = false;
    }
    notifyPut(QStringLiteral("Value"));
}

quint32 NumEdit::TextColor() const
{
    return d->textColor;
}

void NumEdit::setTextColor(quint32 color)
{
    if (d->value >= 0)
        d->applyTextColor(color);
    d->textColor = color;
    notifyPut(QStringLiteral("TextColor"));
}

quint32 NumEdit::NegTextColor() const
{
    return d->negTextColor;
}

void NumEdit::setNegTextColor(quint32 color)
{
    if (d->value < 0)
        d->applyTextColor(color);
    d->negTextColor = color;
    notifyPut(QStringLiteral("NegTextColor"));
}

qint16 NumEdit::DigNum() const
{
    return d->digNum;
}

void NumEdit::setDigNum(qint16 digits)
{
    d->digNum = qMax(digits, qint16(0));
    d->format.setDigits(d->digNum);
    if (!d->editing) {
        const int caret = d->text->cursorPosition();
        d->FormatDisplay();
        d->text->setCursorPosition(caret);
    }
    notifyPut(QStringLiteral("DigNum"));
}

void NumEdit::setDigNum(int digits)
{
    setDigNum(CInt(digits));
}

quint32 NumEdit::BackTextColor() const
{
    return d->backTextColor;
}

void NumEdit::setBackTextColor(quint32 color)
{
    put(d->backTextColor, color, QStringLiteral("BackTextColor"),
        [this] { applyOleColor(d->text, QPalette::Base, d->backTextColor); });
}

bool NumEdit::LockEdits() const
{
    return d->locked();
}

void NumEdit::setLockEdits(bool locked)
{
    d->text->setReadOnly(locked);
    notifyPut(QStringLiteral("LockEdits"));
}

QString NumEdit::FontName() const
{
    return d->text->font().family();
}

void NumEdit::setFontName(const QString &name)
{
    if (!name.isEmpty()) {
        QFont f = font();
        f.setFamily(name);
        setFont(f); // the text box follows, and the font change lays the control out again
    }
    notifyPut(QStringLiteral("FontName"));
}

qint16 NumEdit::FontSize() const
{
    const qreal points = d->text->font().pointSizeF();
    return points > 0 ? qint16(qRound(points)) : qint16(0);
}

void NumEdit::setFontSize(qint16 points)
{
    if (points > 0) {
        QFont f = font();
        f.setPointSize(points);
        setFont(f);
    }
    notifyPut(QStringLiteral("FontSize"));
}

void NumEdit::setFontSize(int points)
{
    setFontSize(CInt(points));
}

qint16 NumEdit::Border() const
{
    return d->border;
}

void NumEdit::setBorder(qint16 border)
{
    // Only the two styles the control draws are taken; any other number leaves the frame as it is.
    if (border == 0 || border == 1)
        put(d->border, border, QStringLiteral("Border"), [this] { d->updateFrame(); });
    else
        notifyPut(QStringLiteral("Border"));
}

void NumEdit::setBorder(int border)
{
    setBorder(CInt(border));
}

qint16 NumEdit::Appearance() const
{
    return d->appearance;
}

void NumEdit::setAppearance(qint16 appearance)
{
    if (appearance == 0 || appearance == 1)
        put(d->appearance, appearance, QStringLiteral("Appearance"), [this] { d->updateFrame(); });
    else
        notifyPut(QStringLiteral("Appearance"));
}

void NumEdit::setAppearance(int appearance)
{
    setAppearance(CInt(appearance));
}

double NumEdit::MinValue() const
{
    return d->minValue;
}

void NumEdit::setMinValue(double value)
{
    d->minValue = value;
    d->ClampToRange();
    notifyPut(QStringLiteral("MinValue"));
}

QVariant NumEdit::MaxValue() const
{
    return QVariant(d->maxValue);
}

void NumEdit::setMaxValue(const QVariant &value)
{
    attempt([&] { d->maxValue = CDbl(value); });
    d->ClampToRange();
    notifyPut(QStringLiteral("MaxValue"));
}

bool NumEdit::enabledState() const
{
    return d->text->isEnabledTo(this);
}

void NumEdit::applyEnabled(bool enabled)
{
    d->text->setEnabled(enabled);
}

QSize NumEdit::sizeHint() const
{
    return lineSizeHint(hintChars);
}

QSize NumEdit::minimumSizeHint() const
{
    return lineSizeHint(minimumHintChars);
}

// ---- events

void NumEdit::childMouseEvent(QWidget *, MouseAction action, MouseArgs &args)
{
    raiseMouseEvents(this, action, args);
}

bool NumEdit::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->text || d->retyping)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Escape undoes the edit here, before a window's shortcut (a dialog's Cancel) takes it.
        if (!d->locked() && keyCode(static_cast<QKeyEvent *>(event)) == KeyEscape) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        return d->keyDown(key) || d->keyPress(key);
    }
    case QEvent::KeyRelease:
        d->keyUp(static_cast<QKeyEvent *>(event));
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        d->syncFocus();
        break;
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

void NumEdit::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->relayout();
}

void NumEdit::hideEvent(QHideEvent *event)
{
    d->focusTimer->stop();
    Control::hideEvent(event);
}

void NumEdit::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        d->relayout();
    Control::changeEvent(event);
}

} // namespace zelkon
