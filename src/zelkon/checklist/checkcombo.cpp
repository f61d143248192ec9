#include <zelkon/checklist/checkcombo.h>

#include <zelkon/checklist/checklistview_p.h>
#include <zelkon/checklist/frmlist_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/recordsetaccess_p.h>

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

namespace zelkon {

ZELKON_REGISTER_CONTROL(CheckCombo);

namespace {

const QString ListText = QStringLiteral("List");

// A click that takes the activation away from the open popup reaches the field after the popup
// has closed; within this time it was the click that closed it and must not open it again.
constexpr int ReopenGuardMs = 150;

// Alt+Down (with any other modifier) and a plain F4.
bool isOpenKey(const QKeyEvent *event)
{
    const int code = keyCode(event);
    const qint16 shift = shiftState(event->modifiers());
    return (code == KeyDown && (shift & AltKey)) || (code == KeyF1 + 3 && shift == 0);
}

} // namespace

// The field, the button and the popup. The rows, their checks, the sort order, the popup's row
// count and delay, the single-check rule and "Not In ..." live in the popup's store alone; the
// control reads them from there.
class CheckComboPrivate
{
public:
    explicit CheckComboPrivate(CheckCombo *q)
        : q(q)
    { }

    void openList();
    void closeList();
    void onCheckTime();
    void ListForm_Change(bool cancel);
    void ListForm_UnloadMe();
    int dropDownButtonWidth() const;
    void layoutChildren();
    void syncAccessibleNames();
    // The frame of Border and Appearance is the control's; the children sit inside it.
    void applyLook(qint32 appearance, qint32 border);
    void setFieldText(const QString &text);
    void setTips(const QVariant &texts);
    // The closed field's text after a change of checks.
    QString fieldTextFor(const QVariant &texts) const;
    // Sets the checks from the store's CheckedTexts or CheckedIDs and shows the result.
    void showChecks(const QVariant &texts);

    CheckCombo *q;
    QLineEdit *text = nullptr;
    QToolButton *button = nullptr;
    QTimer *checkTime = nullptr;
    frmList *listForm = nullptr;

    bool allSelect = false;
    bool arraySource = false; // the rows came from SArrayData rather than a recordset
    QString commandText;
    QVariant commandType; // Empty until put: the recordset then decides by the text
    QPointer<QObject> connection;
    QObject *ownRecordset = nullptr; // the recordset that Refresh opened

    bool listOpen = false;
    QPointer<QWidget> watched;
    QElapsedTimer leftAt; // when the popup last closed because the user left it
};

CheckCombo::CheckCombo(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<CheckComboPrivate>(this))
{
    d->text = new QLineEdit(allText(), this);
    d->text->setObjectName(QStringLiteral("Text"));
    d->text->setMouseTracking(true);
    d->text->setFrame(false);
    d->text->installEventFilter(this);
    forwardMouse(d->text);
    // The field is the control's one tab stop and takes the focus given to the control.
    setFocusProxy(d->text);
    setFocusPolicy(d->text->focusPolicy());

    d->button = new QToolButton(this);
    d->button->setObjectName(QStringLiteral("ButDropDown"));
    d->button->setArrowType(Qt::DownArrow); // drawn as the style's down-pointing triangle
    d->button->setFocusPolicy(Qt::NoFocus);
    d->button->setMouseTracking(true);
    d->button->installEventFilter(this);
    forwardMouse(d->button);
    d->syncAccessibleNames();

    d->checkTime = new QTimer(this);
    d->checkTime->setObjectName(QStringLiteral("CheckTime"));
    d->checkTime->setInterval(5);
    connect(d->checkTime, &QTimer::timeout, this, [this] { d->onCheckTime(); });

    d->listForm = new frmList(this);
    connect(d->listForm, &frmList::Change, this,
            [this](bool cancel) { d->ListForm_Change(cancel); });
    connect(d->listForm, &frmList::UnloadMe, this, [this] { d->ListForm_UnloadMe(); });
    d->listForm->setActiveList(1);
    d->listForm->loadRows();

    d->applyLook(1, 1);
    resize(sizeHint());
}

CheckCombo::~CheckCombo()
{
    d->checkTime->stop();
    disconnect(d->listForm, nullptr, this, nullptr);
    delete d->listForm;
}

// Persistence -----------------------------------------------------------------------------------

void CheckCombo::InitProperties()
{
    d->setFieldText(allText());
    d->listForm->setMaxLine(5);
    d->listForm->setDelay(1);
    applyEnabled(true);
    d->text->setReadOnly(false);
    d->listForm->setActiveList(1);
    d->listForm->SetInvert(false);
    d->listForm->setSingleCheck(false);
    d->allSelect = false;
    d->applyLook(1, 1);
}

void CheckCombo::ReadProperties(PropertyBag &bag)
{
    frmList *form = d->listForm;
    qint32 appearance = 1;
    qint32 border = 1;
    const auto read = [&bag](const char *key, const QVariant &defaultValue) {
        return bag.ReadProperty(QString::fromLatin1(key), defaultValue);
    };
    // A damaged value is skipped, so one bad entry does not cost the form its other settings.
    ignoreErrors({
        [&] { d->setFieldText(CStr(read("Title", allText()))); },
        [&] { form->setMaxLine(CInt(read("MaxLine", qint16(5)))); },
        [&] { form->setDelay(CInt(read("Delay", qint16(1)))); },
        [&] { applyEnabled(CBool(read("Enabled", true))); },
        [&] { d->text->setReadOnly(!CBool(read("EditEnabled", true))); },
        [&] { form->setActiveList(CBool(read("Sorting", true)) ? 1 : 0); },
        [&] { form->SetInvert(CBool(read("Inv", false))); },
        [&] { form->setSingleCheck(CBool(read("SingleCheck", false))); },
        [&] { d->allSelect = CBool(read("AllSelect", false)); },
        [&] { appearance = CLng(read("Appearance", qint32(1))); },
        [&] { border = CLng(read("Border", qint32(1))); },
    });
    readExtent(*this, bag);
    d->applyLook(appearance, border);
}

void CheckCombo::WriteProperties(PropertyBag &bag)
{
    const auto write = [&bag](const char *key, const QVariant &value, const QVariant &def) {
        bag.WriteProperty(QString::fromLatin1(key), value, def);
    };
    write("Title", Title(), allText());
    write("MaxLine", MaxLine(), qint16(5));
    write("Delay", Delay(), qint16(1));
    write("Enabled", Enabled(), true);
    write("EditEnabled", EditEnabled(), true);
    write("Sorting", Sorting(), true);
    write("Inv", Inv(), false);
    write("SingleCheck", SingleCheck(), false);
    write("AllSelect", d->allSelect, false);
    write("Appearance", Appearance(), qint32(1));
    write("Border", Border(), qint32(1));
    writeExtent(*this, bag);
}

// Look properties -------------------------------------------------------------------------------

QString CheckCombo::Title() const
{
    return d->text->text();
}

void CheckCombo::setTitle(const QString &title)
{
    d->setFieldText(title);
    notifyPut(QStringLiteral("Title"));
}

qint16 CheckCombo::MaxLine() const
{
    return d->listForm->MaxLine();
}

void CheckCombo::setMaxLine(qint16 rows)
{
    d->listForm->setMaxLine(rows);
    notifyPut(QStringLiteral("MaxLine"));
}

void CheckCombo::setMaxLine(int rows)
{
    setMaxLine(CInt(rows));
}

qint16 CheckCombo::Delay() const
{
    return d->listForm->Delay();
}

void CheckCombo::setDelay(qint16 milliseconds)
{
    d->listForm->setDelay(milliseconds);
    notifyPut(QStringLiteral("Delay"));
}

void CheckCombo::setDelay(int milliseconds)
{
    setDelay(CInt(milliseconds));
}

QFont CheckCombo::Font() const
{
    return d->text->font();
}

void CheckCombo::putFont(const QFont &font)
{
    if (font != d->text->font()) {
        d->text->setFont(font);
        updateGeometry();
        d->layoutChildren();
    }
    notifyPut(QStringLiteral("Font"));
}

bool CheckCombo::EditEnabled() const
{
    return !d->text->isReadOnly();
}

void CheckCombo::setEditEnabled(bool enabled)
{
    d->text->setReadOnly(!enabled);
    notifyPut(QStringLiteral("EditEnabled"));
}

bool CheckCombo::Sorting() const
{
    return d->listForm->ActiveList() == 1;
}

void CheckCombo::setSorting(bool sorting)
{
    d->listForm->setActiveList(sorting ? 1 : 0);
    notifyPut(QStringLiteral("Sorting"));
}

bool CheckCombo::Inv() const
{
    // The flag is the check mark of "Not In ...": the user's toggle needs no copying back.
    return d->listForm->Invert();
}

void CheckCombo::setInv(bool inverted)
{
    d->listForm->SetInvert(inverted);
    notifyPut(QStringLiteral("Inv"));
}

bool CheckCombo::SingleCheck() const
{
    return d->listForm->SingleCheck();
}

void CheckCombo::setSingleCheck(bool single)
{
    d->listForm->setSingleCheck(single);
    notifyPut(QStringLiteral("SingleCheck"));
}

bool CheckCombo::AllSelect() const
{
    return d->allSelect;
}

void CheckCombo::setAllSelect(bool allSelect)
{
    put(d->allSelect, allSelect, QStringLiteral("AllSelect"));
}

qint32 CheckCombo::Appearance() const
{
    return frameAppearance();
}

void CheckCombo::setAppearance(qint32 appearance)
{
    if (appearance != Appearance())
        d->applyLook(appearance, Border());
    notifyPut(QStringLiteral("Appearance"));
}

qint32 CheckCombo::Border() const
{
    return frameBorder();
}

void CheckCombo::setBorder(qint32 border)
{
    if (border != Border())
        d->applyLook(Appearance(), border);
    notifyPut(QStringLiteral("Border"));
}

void CheckCombo::setLeft(float left)
{
    attempt([&] { move(toPixels(left), y()); });
    notifyPut(QStringLiteral("Left"));
}

void CheckCombo::setTop(float top)
{
    attempt([&] { move(x(), toPixels(top)); });
    notifyPut(QStringLiteral("Top"));
}

void CheckCombo::setHeight(float height)
{
    attempt([&] { resize(width(), qMax(0, toPixels(height))); });
    notifyPut(QStringLiteral("Height"));
}

void CheckCombo::setWidth(float width)
{
    attempt([&] { resize(qMax(0, toPixels(width)), height()); });
    notifyPut(QStringLiteral("Width"));
}

void CheckComboPrivate::applyLook(qint32 appearance, qint32 border)
{
    q->setFrameLook(appearance, border);
    layoutChildren();
}

void CheckCombo::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    d->layoutChildren();
}

int CheckComboPrivate::dropDownButtonWidth() const
{
    // The arrow is a symbol glyph as wide as the field's font is high, framed on either side as
    // the style frames a button, so the button grows with the font and the screen's scale.
    const int frame = button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button);
    return QFontMetrics(text->font()).height() + 2 * qMax(0, frame);
}

QSize CheckCombo::sizeHint() const
{
    // As high as a line edit and as wide as one of its usual width, with the button beside.
    return lineSizeHint(17) + QSize(d->dropDownButtonWidth(), 0);
}

QSize CheckCombo::minimumSizeHint() const
{
    return lineSizeHint(1) + QSize(d->dropDownButtonWidth(), 0);
}

void CheckComboPrivate::layoutChildren()
{
    const QRect client = q->contentsRect();
    const int buttonWidth = dropDownButtonWidth();
    button->setGeometry(client.right() + 1 - buttonWidth, client.top(), buttonWidth,
                        client.height());
    text->setGeometry(client.left(), client.top(), qMax(0, client.width() - buttonWidth),
                      client.height());
}

void CheckCombo::setAccessibleName(const QString &name)
{
    QWidget::setAccessibleName(name);
    d->syncAccessibleNames();
}

void CheckComboPrivate::syncAccessibleNames()
{
    const QString name = q->accessibleName();
    text->setAccessibleName(name.isEmpty() ? loadString("filter") : name);
    button->setAccessibleName(listOpen ? loadString("closeList") : loadString("openList"));
}

void CheckComboPrivate::setFieldText(const QString &value)
{
    text->setText(value);
    text->setCursorPosition(0);
}

// Data sources ----------------------------------------------------------------------------------

CheckCombo::ExDate CheckCombo::TypeData() const
{
    return ExDate(d->listForm->TypeData());
}

void CheckCombo::setTypeData(ExDate type)
{
    d->listForm->setTypeData(type);
    notifyPut(QStringLiteral("TypeData"));
}

QVariant CheckCombo::SArrayData() const
{
    return d->listForm->SourceArray();
}

void CheckCombo::setSArrayData(const QVariant &array)
{
    frmList *form = d->listForm;
    const QVariant saved = form->readCheckedTexts(); // restored by text after the load
    form->setSourceArray(array);
    d->arraySource = true;
    form->InsertArray();
    form->setCheckedTexts(saved);
    form->RepairCheck();
    form->setFieldTips(false);

    // A list with rows had its checks read back by RepairCheck a moment ago.
    if (form->List()->model()->rowCount() == 0)
        form->GetChecked();
    const QVariantList checked = frmList::elementsOf(form->CheckedTexts());
    if (checked.isEmpty())
        d->setFieldText(allText());
    else if (checked.size() > 1)
        d->setFieldText(ListText);
    else
        d->setFieldText(CStr(checked.first()));
    notifyPut(QStringLiteral("SArrayData"));
}

QObject *CheckCombo::RecordsetData() const
{
    return d->listForm->SourceRecordset();
}

void CheckCombo::setRecordsetData(QObject *recordset)
{
    frmList *form = d->listForm;
    const QVariant saved = form->readCheckedTexts(); // restored by text after the load
    form->setSourceRecordset(recordset);
    d->arraySource = false;
    if (d->ownRecordset && d->ownRecordset != recordset) {
        d->ownRecordset->deleteLater();
        d->ownRecordset = nullptr;
    }
    form->InsertRecord();
    form->setCheckedTexts(saved);
    form->RepairCheck();
    attempt([&] { form->setFieldTips(RecordsetAccess(recordset).fieldCount() >= 2); });
    notifyPut(QStringLiteral("RecordsetData"));
}

QString CheckCombo::CommandText() const
{
    return d->commandText;
}

void CheckCombo::setCommandText(const QString &text)
{
    put(d->commandText, text, QStringLiteral("CommandText"));
}

qint32 CheckCombo::CommandType() const
{
    return d->commandType.toInt();
}

void CheckCombo::setCommandType(qint32 type)
{
    d->commandType = QVariant(type);
    notifyPut(QStringLiteral("CommandType"));
}

QObject *CheckCombo::Connect() const
{
    return d->connection;
}

void CheckCombo::setConnect(QObject *connection)
{
    d->connection = connection;
    notifyPut(QStringLiteral("Connect"));
    Refresh();
}

void CheckCombo::Refresh()
{
    QObject *recordset = createObject(QStringLiteral("ADODB.Recordset"), this);
    if (!recordset)
        throw Error(429, QStringLiteral("ActiveX component can't create object"));
    QObject *old = d->ownRecordset;
    d->ownRecordset = recordset;
    d->listForm->setSourceRecordset(recordset);
    d->arraySource = false;
    if (old && old != recordset)
        old->deleteLater();
    // Cursor and lock type: static (3) and optimistic (3).
    RecordsetAccess(recordset).open(d->commandText,
                                    QVariant::fromValue<QObject *>(d->connection.data()), qint32(3),
                                    qint32(3), d->commandType);
    d->listForm->InsertRecord();
    attempt([&] { d->listForm->setFieldTips(RecordsetAccess(recordset).fieldCount() >= 2); });
}

// Selection -------------------------------------------------------------------------------------

QVariant CheckCombo::ArrayChecked()
{
    d->listForm->GetChecked();
    return d->listForm->CheckedTexts();
}

QVariant CheckCombo::ArrayCheckedID()
{
    d->listForm->GetChecked();
    d->setTips(d->listForm->CheckedTexts());
    return d->listForm->CheckedIDs();
}

void CheckComboPrivate::showChecks(const QVariant &texts)
{
    setTips(texts);
    setFieldText(fieldTextFor(texts));
}

void CheckCombo::setArrayChecked(QVariant &texts)
{
    d->listForm->setCheckedTexts(texts);
    d->listForm->RepairCheck();
    texts = d->listForm->CheckedTexts();
    d->showChecks(texts);
    notifyPut(QStringLiteral("ArrayChecked"));
}

void CheckCombo::setArrayChecked(const QVariant &texts)
{
    QVariant copy = texts;
    setArrayChecked(copy);
}

void CheckCombo::setArrayCheckedID(QVariant &ids)
{
    d->listForm->setCheckedIDs(ids);
    d->listForm->RepairCheckID();
    ids = d->listForm->CheckedIDs();
    d->showChecks(d->listForm->CheckedTexts());
    notifyPut(QStringLiteral("ArrayCheckedID"));
}

void CheckCombo::setArrayCheckedID(const QVariant &ids)
{
    QVariant copy = ids;
    setArrayCheckedID(copy);
}

QVariant CheckCombo::ArrayVisible() const
{
    return d->listForm->ArVis();
}

void CheckCombo::setArrayVisible(const QVariant &rows)
{
    // Applied at the next rebuild (a load or the Show/Hide dialog), not now: hosts set it before
    // loading the rows it refers to.
    d->listForm->setArVis(rows);
    notifyPut(QStringLiteral("ArrayVisible"));
}

void CheckCombo::SelectAll()
{
    // Without a source array (rows from a recordset) the list of texts is Empty, which checks
    // nothing: the popup menu's "Select All" is the one that works for every source.
    QVariant texts;
    const QVariant source = SArrayData();
    if (d->arraySource && !IsEmpty(source)) {
        texts = source;
        if (d->listForm->SourceIs2D()) {
            attempt([&] {
                const auto array = source.value<VariantArray>();
                const qint32 upper = array.UBound(2);
                QVariantList column;
                column.reserve(upper + 1);
                for (qint32 i = 0; i <= upper; ++i)
                    column.append(array.at({0, i}));
                texts = column;
            });
        }
    }
    d->listForm->setCheckedTexts(texts);
    d->listForm->RepairCheck();
    d->setFieldText(allText());
}

void CheckCombo::ClearAll()
{
    d->listForm->setCheckedTexts(QVariant());
    d->listForm->RepairCheck();
}

void CheckComboPrivate::setTips(const QVariant &texts)
{
    QString tip = allText();
    if (!IsEmpty(texts)) {
        QStringList parts;
        for (const QVariant &value : frmList::elementsOf(texts)) {
            QString part;
            attempt([&] { part = CStr(value); });
            parts.append(part);
        }
        tip = parts.join(QLatin1Char(','));
    }
    text->setToolTip(tip);
    button->setToolTip(tip);
}

QString CheckComboPrivate::fieldTextFor(const QVariant &texts) const
{
    const QVariantList checked = frmList::elementsOf(texts);
    if (checked.isEmpty())
        return allText();
    if (checked.size() == 1) {
        QString one;
        attempt([&] { one = CStr(checked.first()); });
        return one;
    }
    const qint32 upper = qint32(checked.size()) - 1;
    if (!arraySource) {
        // Rows from a recordset: every loaded row checked is no restriction at all.
        return checked.size() == listForm->snapshotRows() ? allText() : ListText;
    }
    qint32 sourceUpper = -1;
    attempt([&] { sourceUpper = UBound(listForm->SourceArray(), listForm->SourceIs2D() ? 2 : 1); });
    return upper == sourceUpper ? allText() : ListText;
}

// The drop-down ---------------------------------------------------------------------------------

void CheckCombo::dropDown()
{
    if (d->listOpen)
        d->closeList();
    else
        d->openList();
}

bool CheckCombo::isDroppedDown() const
{
    return d->listOpen;
}

void CheckComboPrivate::openList()
{
    listOpen = true;
    if (connection && listForm->snapshotRows() == 0)
        attempt([&] { q->Refresh(); });

    const QRect field(q->mapToGlobal(QPoint(0, 0)), q->size());
    QRect popup(field.left(), field.bottom() + 1, field.width(),
                listForm->heightForRows(listForm->MaxLine()));
    if (const QScreen *s = q->screen()) {
        const QRect available = s->availableGeometry();
        if (popup.bottom() > available.bottom())
            popup.moveBottom(field.top() - 1);
        if (popup.right() > available.right())
            popup.moveRight(available.right());
        if (popup.left() < available.left())
            popup.moveLeft(available.left());
    }
    listForm->popUp(popup);

    watched = q->window();
    checkTime->start();
    syncAccessibleNames();
    Q_EMIT q->Click();
}

void CheckComboPrivate::closeList()
{
    listOpen = false;
    checkTime->stop();
    listForm->popDown();
    syncAccessibleNames();
}

void CheckComboPrivate::onCheckTime()
{
    checkTime->stop();
    if (watched && !watched->isVisible()) {
        if (listOpen)
            closeList();
        return;
    }
    checkTime->start();
}

void CheckComboPrivate::ListForm_Change(bool cancel)
{
    const QVariant texts = listForm->CheckedTexts();
    setFieldText(fieldTextFor(texts));
    if (!cancel) {
        setTips(texts);
        leftAt.start();
    }
    Q_EMIT q->Quite(cancel);
    if (listOpen)
        closeList();
}

void CheckComboPrivate::ListForm_UnloadMe()
{
    listOpen = false;
    syncAccessibleNames();
}

bool CheckCombo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->text && watched != d->button)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::WindowActivate:
        d->syncAccessibleNames();
        break;
    case QEvent::KeyPress:
        // The keys that open a combo box's list open this one too. They are no mouse press, so
        // only Click follows.
        if (!d->listOpen && isOpenKey(static_cast<QKeyEvent *>(event))) {
            d->openList();
            return true;
        }
        break;
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

void CheckCombo::childMouseEvent(QWidget *, MouseAction action, MouseArgs &args)
{
    switch (action) {
    case MouseAction::Down: {
        Q_EMIT MouseDown(args.Button, args.Shift, args.X, args.Y);
        const bool closedByThisClick = d->leftAt.isValid() && d->leftAt.elapsed() < ReopenGuardMs;
        if (args.Button == LeftButtonCode && !d->listOpen && !closedByThisClick)
            d->openList();
        break;
    }
    case MouseAction::Up:
        Q_EMIT MouseUp(args.Button, args.Shift, args.X, args.Y);
        break;
    case MouseAction::Move:
        Q_EMIT MouseMove();
        Q_EMIT MouseMoveXY(args.Button, args.Shift, args.X, args.Y);
        break;
    }
}

} // namespace zelkon
