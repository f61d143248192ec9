#include <zelkon/checklist/checkcombo.h>

#include <zelkon/checklist/frmlist.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/recordsetaccess_p.h>

#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

namespace zelkon {

ZELKON_REGISTER_CONTROL(CheckCombo);

namespace {

const QString AllText = QStringLiteral("All");
const QString ListText = QStringLiteral("List");

// A click that takes the activation away from the open popup reaches the field after the popup
// has closed; within this time it was the click that closed it and must not open it again.
constexpr int ReopenGuardMs = 150;

QVariantList elementsOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QVariantList>())
        return value.toList();
    if (isVariantArray(value)) {
        const auto array = value.value<VariantArray>();
        return array.dimensions() == 1 ? array.elements() : QVariantList();
    }
    return IsEmpty(value) ? QVariantList() : QVariantList{value};
}

// Alt+Down (with any other modifier) and a plain F4.
bool isOpenKey(const QKeyEvent *event)
{
    const int code = keyCode(event);
    const qint16 shift = shiftState(event->modifiers());
    return (code == KeyDown && (shift & AltKey)) || (code == KeyF1 + 3 && shift == 0);
}

} // namespace

CheckCombo::CheckCombo(QWidget *parent)
    : Control(parent)
{
    m_text = new QLineEdit(AllText, this);
    m_text->setObjectName(QStringLiteral("Text"));
    m_text->setMouseTracking(true);
    m_text->installEventFilter(this);
    // The field is the control's one tab stop and takes the focus given to the control.
    setFocusProxy(m_text);
    setFocusPolicy(m_text->focusPolicy());

    m_button = new QToolButton(this);
    m_button->setObjectName(QStringLiteral("ButDropDown"));
    m_button->setArrowType(Qt::DownArrow); // drawn as the style's down-pointing triangle
    m_button->setFocusPolicy(Qt::NoFocus);
    m_button->setMouseTracking(true);
    m_button->installEventFilter(this);
    syncAccessibleNames();

    m_checkTime = new QTimer(this);
    m_checkTime->setObjectName(QStringLiteral("CheckTime"));
    m_checkTime->setInterval(5);
    connect(m_checkTime, &QTimer::timeout, this, [this] { onCheckTime(); });

    m_listForm = new frmList(this);
    connect(m_listForm, &frmList::Change, this, [this](bool cancel) { ListForm_Change(cancel); });
    connect(m_listForm, &frmList::ChangeInv, this,
            [this](bool inverted) { ListForm_ChangeInv(inverted); });
    connect(m_listForm, &frmList::UnloadMe, this, [this] { ListForm_UnloadMe(); });
    m_listForm->setActiveList(m_sorting ? 1 : 0);
    m_listForm->setMaxLine(m_maxLine);
    m_listForm->setSingleCheck(m_singleCheck);
    m_listForm->setTypeData(m_typeData);
    m_listForm->Timer()->setInterval(m_delay);
    m_listForm->loadRows();
    m_listForm->SetInvert(m_inv);

    applyLook();
    resize(sizeHint());
}

CheckCombo::~CheckCombo()
{
    m_checkTime->stop();
    disconnect(m_listForm, nullptr, this, nullptr);
    delete m_listForm;
}

// Persistence -----------------------------------------------------------------------------------

void CheckCombo::InitProperties()
{
    setFieldText(AllText);
    m_maxLine = 5;
    m_delay = 1;
    QWidget::setEnabled(true);
    m_editEnabled = true;
    m_sorting = true;
    m_inv = false;
    m_singleCheck = false;
    m_allSelect = false;
    m_appearance = 1;
    m_border = 1;
    m_listForm->setActiveList(1);
    m_listForm->setMaxLine(m_maxLine);
    m_listForm->setSingleCheck(false);
    m_listForm->Timer()->setInterval(m_delay);
    m_listForm->SetInvert(false);
    applyLook();
}

void CheckCombo::ReadProperties(PropertyBag &bag)
{
    // A damaged value is skipped, so one bad entry does not cost the form its other settings.
    ignoreErrors({
        [&] { setFieldText(CStr(bag.ReadProperty(QStringLiteral("Title"), AllText))); },
        [&] { m_maxLine = CInt(bag.ReadProperty(QStringLiteral("MaxLine"), qint16(5))); },
        [&] { m_delay = CInt(bag.ReadProperty(QStringLiteral("Delay"), qint16(1))); },
        [&] { QWidget::setEnabled(CBool(bag.ReadProperty(QStringLiteral("Enabled"), true))); },
        [&] { m_editEnabled = CBool(bag.ReadProperty(QStringLiteral("EditEnabled"), true)); },
        [&] {
            m_sorting = CBool(bag.ReadProperty(QStringLiteral("Sorting"), true));
            m_listForm->setActiveList(m_sorting ? 1 : 0);
        },
        [&] { m_inv = CBool(bag.ReadProperty(QStringLiteral("Inv"), false)); },
        [&] { m_singleCheck = CBool(bag.ReadProperty(QStringLiteral("SingleCheck"), false)); },
        [&] { m_allSelect = CBool(bag.ReadProperty(QStringLiteral("AllSelect"), false)); },
        [&] { m_appearance = CLng(bag.ReadProperty(QStringLiteral("Appearance"), qint32(1))); },
        [&] { m_border = CLng(bag.ReadProperty(QStringLiteral("Border"), qint32(1))); },
    });
    readExtent(*this, bag);
    m_listForm->setMaxLine(m_maxLine);
    m_listForm->setSingleCheck(m_singleCheck);
    m_listForm->Timer()->setInterval(m_delay);
    m_listForm->SetInvert(m_inv);
    m_text->setReadOnly(!m_editEnabled);
    applyLook();
}

void CheckCombo::WriteProperties(PropertyBag &bag)
{
    bag.WriteProperty(QStringLiteral("Title"), Title(), AllText);
    bag.WriteProperty(QStringLiteral("MaxLine"), m_maxLine, qint16(5));
    bag.WriteProperty(QStringLiteral("Delay"), m_delay, qint16(1));
    bag.WriteProperty(QStringLiteral("Enabled"), Enabled(), true);
    bag.WriteProperty(QStringLiteral("EditEnabled"), m_editEnabled, true);
    bag.WriteProperty(QStringLiteral("Sorting"), m_sorting, true);
    bag.WriteProperty(QStringLiteral("Inv"), m_inv, false);
    bag.WriteProperty(QStringLiteral("SingleCheck"), m_singleCheck, false);
    bag.WriteProperty(QStringLiteral("AllSelect"), m_allSelect, false);
    bag.WriteProperty(QStringLiteral("Appearance"), m_appearance, qint32(1));
    bag.WriteProperty(QStringLiteral("Border"), m_border, qint32(1));
    writeExtent(*this, bag);
}

// Look properties -------------------------------------------------------------------------------

QString CheckCombo::Title() const
{
    return m_text->text();
}

void CheckCombo::setTitle(const QString &title)
{
    if (title == m_text->text())
        return;
    setFieldText(title);
    Q_EMIT PropertyChanged(QStringLiteral("Title"));
}

void CheckCombo::setMaxLine(qint16 rows)
{
    if (rows == m_maxLine)
        return;
    m_maxLine = rows;
    m_listForm->setMaxLine(rows);
    Q_EMIT PropertyChanged(QStringLiteral("MaxLine"));
}

void CheckCombo::setDelay(qint16 milliseconds)
{
    if (milliseconds == m_delay)
        return;
    m_delay = milliseconds;
    m_listForm->Timer()->setInterval(qMax<int>(0, milliseconds));
    Q_EMIT PropertyChanged(QStringLiteral("Delay"));
}

bool CheckCombo::Enabled() const
{
    return !testAttribute(Qt::WA_ForceDisabled);
}

void CheckCombo::putEnabled(bool enabled)
{
    if (enabled == Enabled())
        return;
    QWidget::setEnabled(enabled);
    Q_EMIT PropertyChanged(QStringLiteral("Enabled"));
}

QFont CheckCombo::Font() const
{
    return m_text->font();
}

void CheckCombo::putFont(const QFont &font)
{
    if (font == m_text->font())
        return;
    m_text->setFont(font);
    updateGeometry();
    layoutChildren();
    Q_EMIT PropertyChanged(QStringLiteral("Font"));
}

void CheckCombo::setEditEnabled(bool enabled)
{
    if (enabled == m_editEnabled)
        return;
    m_editEnabled = enabled;
    m_text->setReadOnly(!enabled);
    Q_EMIT PropertyChanged(QStringLiteral("EditEnabled"));
}

void CheckCombo::setSorting(bool sorting)
{
    if (sorting == m_sorting)
        return;
    m_sorting = sorting;
    m_listForm->setActiveList(sorting ? 1 : 0);
    Q_EMIT PropertyChanged(QStringLiteral("Sorting"));
}

bool CheckCombo::Inv() const
{
    // Reading puts the menu's check mark back in step with the flag.
    m_listForm->SetInvert(m_inv);
    return m_inv;
}

void CheckCombo::setInv(bool inverted)
{
    m_listForm->SetInvert(inverted);
    if (inverted == m_inv)
        return;
    m_inv = inverted;
    Q_EMIT PropertyChanged(QStringLiteral("Inv"));
}

void CheckCombo::setSingleCheck(bool single)
{
    if (single == m_singleCheck)
        return;
    m_singleCheck = single;
    m_listForm->setSingleCheck(single);
    Q_EMIT PropertyChanged(QStringLiteral("SingleCheck"));
}

void CheckCombo::setAllSelect(bool allSelect)
{
    if (allSelect == m_allSelect)
        return;
    m_allSelect = allSelect;
    Q_EMIT PropertyChanged(QStringLiteral("AllSelect"));
}

void CheckCombo::setAppearance(qint32 appearance)
{
    if (appearance == m_appearance)
        return;
    m_appearance = appearance;
    applyLook();
    Q_EMIT PropertyChanged(QStringLiteral("Appearance"));
}

void CheckCombo::setBorder(qint32 border)
{
    if (border == m_border)
        return;
    m_border = border;
    applyLook();
    Q_EMIT PropertyChanged(QStringLiteral("Border"));
}

void CheckCombo::setLeft(float left)
{
    attempt([&] { move(toPixels(left), y()); });
    Q_EMIT PropertyChanged(QStringLiteral("Left"));
}

void CheckCombo::setTop(float top)
{
    attempt([&] { move(x(), toPixels(top)); });
    Q_EMIT PropertyChanged(QStringLiteral("Top"));
}

void CheckCombo::setHeight(float height)
{
    attempt([&] { resize(width(), qMax(0, toPixels(height))); });
    Q_EMIT PropertyChanged(QStringLiteral("Height"));
}

void CheckCombo::setWidth(float width)
{
    attempt([&] { resize(qMax(0, toPixels(width)), height()); });
    Q_EMIT PropertyChanged(QStringLiteral("Width"));
}

void CheckCombo::applyLook()
{
    // Border 0: no frame. Appearance 0: a flat single line instead of the sunken frame.
    m_text->setFrame(m_border != 0);
    m_text->setStyleSheet(m_border != 0 && m_appearance == 0
                              ? QStringLiteral("QLineEdit { border: 1px solid palette(shadow); }")
                              : QString());
    m_text->setReadOnly(!m_editEnabled);
}

void CheckCombo::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    layoutChildren();
}

int CheckCombo::dropDownButtonWidth() const
{
    // The arrow is a symbol glyph as wide as the field's font is high, framed on either side as
    // the style frames a button, so the button grows with the font and the screen's scale.
    const int frame
        = m_button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, m_button);
    return QFontMetrics(m_text->font()).height() + 2 * qMax(0, frame);
}

QSize CheckCombo::sizeHint() const
{
    const QSize text = m_text->sizeHint();
    return QSize(text.width() + dropDownButtonWidth(), text.height());
}

QSize CheckCombo::minimumSizeHint() const
{
    const QSize text = m_text->minimumSizeHint();
    return QSize(text.width() + dropDownButtonWidth(), text.height());
}

void CheckCombo::layoutChildren()
{
    const QRect client = rect();
    const int buttonWidth = dropDownButtonWidth();
    m_button->setGeometry(client.right() + 1 - buttonWidth, client.top(), buttonWidth,
                          client.height());
    m_text->setGeometry(client.left(), client.top(), qMax(0, client.width() - buttonWidth),
                        client.height());
}

void CheckCombo::setAccessibleName(const QString &name)
{
    QWidget::setAccessibleName(name);
    syncAccessibleNames();
}

void CheckCombo::syncAccessibleNames()
{
    m_text->setAccessibleName(accessibleName().isEmpty() ? tr("Filter") : accessibleName());
    m_button->setAccessibleName(m_listOpen ? tr("Close list") : tr("Open list"));
}

void CheckCombo::setFieldText(const QString &text)
{
    m_text->setText(text);
    m_text->setCursorPosition(0);
}

// Data sources ----------------------------------------------------------------------------------

void CheckCombo::setTypeData(ExDate type)
{
    m_typeData = type;
    m_listForm->setTypeData(type);
    Q_EMIT PropertyChanged(QStringLiteral("TypeData"));
}

void CheckCombo::setSArrayData(const QVariant &array)
{
    qint32 upper2 = -1;
    if (!IsEmpty(array))
        attempt([&] { upper2 = UBound(array, 2); });
    m_sourceIs2D = upper2 >= 0;

    m_listForm->GetChecked();
    const QVariant saved = m_listForm->CheckedTexts();
    m_listForm->setSourceArray(array);
    m_sourceArray = array;
    m_arraySource = true;
    m_listForm->InsertArray();
    m_listForm->setCheckedTexts(saved);
    m_listForm->RepairCheck();
    m_listForm->setFieldTips(false);

    // A list with rows had its checks read back by RepairCheck a moment ago.
    if (m_listForm->List()->count() == 0)
        m_listForm->GetChecked();
    const QVariantList checked = elementsOf(m_listForm->CheckedTexts());
    if (checked.isEmpty())
        setFieldText(AllText);
    else if (checked.size() > 1)
        setFieldText(ListText);
    else
        setFieldText(CStr(checked.first()));
    Q_EMIT PropertyChanged(QStringLiteral("SArrayData"));
}

QObject *CheckCombo::RecordsetData() const
{
    return m_listForm->SourceRecordset();
}

void CheckCombo::setRecordsetData(QObject *recordset)
{
    m_listForm->GetChecked();
    const QVariant saved = m_listForm->CheckedTexts();
    m_listForm->setSourceRecordset(recordset);
    m_arraySource = false;
    if (m_ownRecordset && m_ownRecordset != recordset) {
        m_ownRecordset->deleteLater();
        m_ownRecordset = nullptr;
    }
    m_listForm->InsertRecord();
    m_listForm->setCheckedTexts(saved);
    m_listForm->RepairCheck();
    attempt([&] { m_listForm->setFieldTips(RecordsetAccess(recordset).fieldCount() >= 2); });
    Q_EMIT PropertyChanged(QStringLiteral("RecordsetData"));
}

void CheckCombo::setCommandText(const QString &text)
{
    if (text == m_commandText)
        return;
    m_commandText = text;
    Q_EMIT PropertyChanged(QStringLiteral("CommandText"));
}

void CheckCombo::setCommandType(qint32 type)
{
    m_commandType = QVariant(type);
    Q_EMIT PropertyChanged(QStringLiteral("CommandType"));
}

void CheckCombo::setConnect(QObject *connection)
{
    m_connect = connection;
    Q_EMIT PropertyChanged(QStringLiteral("Connect"));
    Refresh();
}

void CheckCombo::Refresh()
{
    QObject *recordset = createObject(QStringLiteral("ADODB.Recordset"), this);
    if (!recordset)
        throw Error(429, QStringLiteral("ActiveX component can't create object"));
    QObject *old = m_ownRecordset;
    m_ownRecordset = recordset;
    m_listForm->setSourceRecordset(recordset);
    m_arraySource = false;
    if (old && old != recordset)
        old->deleteLater();
    // Cursor and lock type: static (3) and optimistic (3).
    RecordsetAccess(recordset).open(m_commandText, QVariant::fromValue<QObject *>(m_connect.data()),
                                    qint32(3), qint32(3), m_commandType);
    m_listForm->InsertRecord();
    attempt([&] { m_listForm->setFieldTips(RecordsetAccess(recordset).fieldCount() >= 2); });
}

// Selection -------------------------------------------------------------------------------------

QVariant CheckCombo::ArrayChecked()
{
    m_listForm->GetChecked();
    return m_listForm->CheckedTexts();
}

QVariant CheckCombo::ArrayCheckedID()
{
    m_listForm->GetChecked();
    setTips(m_listForm->CheckedTexts());
    return m_listForm->CheckedIDs();
}

void CheckCombo::setArrayChecked(QVariant &texts)
{
    m_listForm->setCheckedTexts(texts);
    m_listForm->RepairCheck();
    texts = m_listForm->CheckedTexts();
    setTips(texts);
    setFieldText(fieldTextFor(texts));
    Q_EMIT PropertyChanged(QStringLiteral("ArrayChecked"));
}

void CheckCombo::setArrayChecked(const QVariant &texts)
{
    QVariant copy = texts;
    setArrayChecked(copy);
}

void CheckCombo::setArrayCheckedID(QVariant &ids)
{
    m_listForm->setCheckedIDs(ids);
    m_listForm->RepairCheckID();
    ids = m_listForm->CheckedIDs();
    const QVariant texts = m_listForm->CheckedTexts();
    setTips(texts);
    setFieldText(fieldTextFor(texts));
    Q_EMIT PropertyChanged(QStringLiteral("ArrayCheckedID"));
}

void CheckCombo::setArrayCheckedID(const QVariant &ids)
{
    QVariant copy = ids;
    setArrayCheckedID(copy);
}

QVariant CheckCombo::ArrayVisible() const
{
    return m_listForm->ArVis();
}

void CheckCombo::setArrayVisible(const QVariant &rows)
{
    // Applied at the next rebuild (a load or the Show/Hide dialog), not now: hosts set it before
    // loading the rows it refers to.
    m_listForm->setArVis(rows);
    Q_EMIT PropertyChanged(QStringLiteral("ArrayVisible"));
}

void CheckCombo::SelectAll()
{
    if (m_arraySource && !IsEmpty(m_sourceArray)) {
        attempt([&] {
            QVariant texts = m_sourceArray;
            if (m_sourceIs2D) {
                const auto array = m_sourceArray.value<VariantArray>();
                const qint32 upper = array.UBound(2);
                QVariantList column;
                column.reserve(upper + 1);
                for (qint32 i = 0; i <= upper; ++i)
                    column.append(array.at({0, i}));
                texts = column;
            }
            m_listForm->setCheckedTexts(texts);
            m_listForm->RepairCheck();
        });
    }
    setFieldText(AllText);
}

void CheckCombo::ClearAll()
{
    m_listForm->setCheckedTexts(QVariant());
    m_listForm->RepairCheck();
}

void CheckCombo::setTips(const QVariant &texts)
{
    QString tip = AllText;
    if (!IsEmpty(texts)) {
        QStringList parts;
        for (const QVariant &text : elementsOf(texts)) {
            QString part;
            attempt([&] { part = CStr(text); });
            parts.append(part);
        }
        tip = parts.join(QLatin1Char(','));
    }
    m_text->setToolTip(tip);
    m_button->setToolTip(tip);
}

QString CheckCombo::fieldTextFor(const QVariant &texts) const
{
    const QVariantList checked = elementsOf(texts);
    if (checked.isEmpty())
        return AllText;
    if (checked.size() == 1) {
        QString text;
        attempt([&] { text = CStr(checked.first()); });
        return text;
    }
    const qint32 upper = qint32(checked.size()) - 1;
    if (!m_arraySource) {
        // Rows from a recordset: every loaded row checked is no restriction at all.
        return checked.size() == m_listForm->snapshotRows() ? AllText : ListText;
    }
    qint32 sourceUpper = -1;
    attempt([&] { sourceUpper = UBound(m_sourceArray, m_sourceIs2D ? 2 : 1); });
    return upper == sourceUpper ? AllText : ListText;
}

// The drop-down ---------------------------------------------------------------------------------

void CheckCombo::dropDown()
{
    if (m_listOpen)
        closeList();
    else
        openList();
}

void CheckCombo::openList()
{
    m_listOpen = true;
    if (m_connect && m_listForm->snapshotRows() == 0)
        attempt([&] { Refresh(); });
    m_listForm->setMaxLine(m_maxLine);

    const QRect field(mapToGlobal(QPoint(0, 0)), size());
    QRect popup(field.left(), field.bottom() + 1, field.width(),
                m_listForm->heightForRows(m_maxLine));
    if (const QScreen *s = screen()) {
        const QRect available = s->availableGeometry();
        if (popup.bottom() > available.bottom())
            popup.moveBottom(field.top() - 1);
        if (popup.right() > available.right())
            popup.moveRight(available.right());
        if (popup.left() < available.left())
            popup.moveLeft(available.left());
    }
    m_listForm->popUp(popup, m_delay);

    m_watched = window();
    m_checkTime->start();
    syncAccessibleNames();
    Q_EMIT Click();
}

void CheckCombo::closeList()
{
    m_listOpen = false;
    m_checkTime->stop();
    m_listForm->popDown();
    syncAccessibleNames();
}

void CheckCombo::onCheckTime()
{
    m_checkTime->stop();
    if (m_watched && !m_watched->isVisible()) {
        if (m_listOpen)
            closeList();
        return;
    }
    m_checkTime->start();
}

void CheckCombo::ListForm_Change(bool cancel)
{
    const QVariant texts = m_listForm->CheckedTexts();
    setFieldText(fieldTextFor(texts));
    if (!cancel) {
        setTips(texts);
        m_leftAt.start();
    }
    Q_EMIT Quite(cancel);
    if (m_listOpen)
        closeList();
}

void CheckCombo::ListForm_ChangeInv(bool inverted)
{
    m_inv = inverted;
}

void CheckCombo::ListForm_UnloadMe()
{
    m_listOpen = false;
    syncAccessibleNames();
}

bool CheckCombo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_text && watched != m_button)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::WindowActivate:
        syncAccessibleNames();
        break;
    case QEvent::KeyPress:
        // The keys that open a combo box's list open this one too. They are no mouse press, so
        // only Click follows.
        if (!m_listOpen && isOpenKey(static_cast<QKeyEvent *>(event))) {
            openList();
            return true;
        }
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        MouseArgs args = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseDown(args.Button, args.Shift, args.X, args.Y);
        const bool closedByThisClick = m_leftAt.isValid() && m_leftAt.elapsed() < ReopenGuardMs;
        if (args.Button == LeftButtonCode && !m_listOpen && !closedByThisClick)
            openList();
        break;
    }
    case QEvent::MouseButtonRelease: {
        MouseArgs args = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseUp(args.Button, args.Shift, args.X, args.Y);
        break;
    }
    case QEvent::MouseMove: {
        MouseArgs args = mouseArgs(static_cast<QMouseEvent *>(event));
        Q_EMIT MouseMove();
        Q_EMIT MouseMoveXY(args.Button, args.Shift, args.X, args.Y);
        break;
    }
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

} // namespace zelkon
