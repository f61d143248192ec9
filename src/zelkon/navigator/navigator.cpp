#include <zelkon/common/colors_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/keycodes_p.h>
#include <zelkon/common/propertybag.h>
#include <zelkon/common/registry.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/navigator/lookup_p.h>
#include <zelkon/navigator/navigator.h>

#include <QApplication>
#include <QHash>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QStringListModel>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace zelkon {

ZELKON_REGISTER_CONTROL(Navigator);

namespace {

constexpr int defaultListLines = 4;
constexpr int hintChars = 20;
constexpr int minimumHintChars = 4;
// The text box's length limit that stands for "no limit".
constexpr int noLengthLimit = 32767;

} // namespace

class NavigatorPrivate
{
public:
    explicit NavigatorPrivate(Navigator *q);

    void SearchText();
    void FillList();
    void ShowList();
    void HideList();
    void textChanged();
    void keyUp(int code);
    bool listKeyPress(int code);
    void takeListLine(int row);
    void focusIn();
    void focusOut(Qt::FocusReason reason);

    bool isClosed() const { return text1->height() == q->height(); }
    bool hasFocusInside() const;
    int lineHeight() const;
    int listFrame() const;
    void applyListHeight();
    void layoutChildren();
    void resizeTo(int height);
    void setColors(bool match);
    void selectRow(int row);
    int firstRowOf(const QString &text);
    void indexLines(const QStringList &lines);
    void writeText(const QString &text);

    Navigator *const q;
    QLineEdit *const text1;
    QListView *const list1;
    QLineEdit *const text2;
    QStringListModel *const model;
    Lookup lookup;
    // The first line of each text: a keystroke's lookup of the matching line is one hash probe,
    // not a walk over the list. Rebuilt when anything else changes the list's lines.
    QHash<QString, int> firstRow;
    bool indexStale = true;

    qint32 fieldInd = 0;
    qint32 fieldInd2 = 0;
    bool allCaps = false;
    bool upDown = false;
    qint16 listLines = defaultListLines;
    int listHeight = 0;
    int textHeight = 0;
    bool open = false;
    bool openedUpward = false;
    int movedBy = 0; // how far ShowList moved the control up, for HideList to undo
    bool searching = false;
    bool takingListText = false;
    bool resizing = false;
    bool focused = false;
    std::optional<bool> matchColors; // the colours last set: a match's or no match's
};

NavigatorPrivate::NavigatorPrivate(Navigator *q)
    : q(q)
    , text1(new QLineEdit(q))
    , list1(new QListView(q))
    , text2(new QLineEdit(q))
    , model(new QStringListModel(q))
{ }

// ---- lookup

void NavigatorPrivate::SearchText()
{
    const QString typed = text1->text();
    if (typed.isEmpty()) {
        selectRow(-1);
        list1->scrollToTop();
        return; // the colours stay as they are until the next match or list click
    }
    // Without any data source there is nothing to search: nothing is selected and the colours
    // stay. A source that fails (closed, without the members, refusing the criterion) is a
    // source without a match.
    if (!lookup.hasSource()) {
        selectRow(-1);
        return;
    }
    const QString column = lookup.fieldName(fieldInd);
    // The text goes in as typed: an apostrophe makes a criterion the recordset refuses, which
    // counts as no match. Our own recordset evaluates it in memory: nothing reaches a database.
    const std::optional<QString> value = column.isEmpty()
        ? std::nullopt
        : lookup.find(column + QLatin1String(" LIKE '") + typed + QLatin1String("%'"), fieldInd);
    searching = true;
    if (value) {
        setColors(true);
        selectRow(firstRowOf(*value));
    } else {
        selectRow(-1);
        setColors(false);
    }
    searching = false;
}

void NavigatorPrivate::FillList()
{
    const QStringList lines = lookup.hasSource() ? lookup.column(fieldInd) : QStringList();
    const bool wasSearching = searching;
    searching = true; // the reset is no click on a line
    model->setStringList(lines);
    searching = wasSearching;
    indexLines(lines); // now, so that filling costs what it costs, not the first keystroke
    applyListHeight(); // the lines are now the list's own, which may be of another height
    SearchText();
}

int NavigatorPrivate::firstRowOf(const QString &text)
{
    if (indexStale)
        indexLines(model->stringList());
    return firstRow.value(text, -1);
}

void NavigatorPrivate::indexLines(const QStringList &lines)
{
    firstRow.clear();
    firstRow.reserve(lines.size());
    // From the last line to the first, so that each text ends on its first line.
    for (qsizetype row = lines.size() - 1; row >= 0; --row)
        firstRow.insert(lines.at(row), int(row));
    indexStale = false;
}

void NavigatorPrivate::selectRow(int row)
{
    const QModelIndex index = model->index(row, 0);
    if (!index.isValid()) {
        list1->selectionModel()->clear();
        return;
    }
    list1->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    // At the top, so that the lines after the match (the next candidates) are in view.
    list1->scrollTo(index, QAbstractItemView::PositionAtTop);
}

void NavigatorPrivate::setColors(bool match)
{
    // A palette change repolishes the text box: a keystroke that keeps the state skips it.
    if (matchColors == match)
        return;
    matchColors = match;
    applyOleColor(text1, QPalette::Base, match ? SystemWindowBackground : SystemInfoBackground);
    applyOleColor(text1, QPalette::Text, match ? SystemWindowText : SystemInfoText);
}

// ---- opening and closing

void NavigatorPrivate::ShowList()
{
    if (!q->Enabled())
        return;
    if (!open) {
        textHeight = text1->height();
        openedUpward = upDown;
        movedBy = upDown ? listHeight : 0;
        // The control grows upward by moving itself up: the text box keeps its place on the form.
        if (movedBy)
            q->move(q->x(), q->y() - movedBy);
        open = true;
    }
    resizeTo(textHeight + listHeight);
    list1->show();
    q->raise(); // over the widgets below (or above) the field
    FillList();
}

void NavigatorPrivate::HideList()
{
    if (!open)
        return;
    open = false;
    if (movedBy)
        q->move(q->x(), q->y() + movedBy);
    movedBy = 0;
    list1->hide();
    resizeTo(textHeight);
}

void NavigatorPrivate::resizeTo(int height)
{
    resizing = true;
    q->resize(q->width(), height);
    resizing = false;
    layoutChildren();
}

void NavigatorPrivate::layoutChildren()
{
    const int width = q->width();
    if (!open) {
        text1->setGeometry(0, 0, width, q->height());
        list1->setGeometry(0, q->height(), width, listHeight);
    } else if (openedUpward) {
        list1->setGeometry(0, 0, width, listHeight);
        text1->setGeometry(0, listHeight, width, textHeight);
    } else {
        text1->setGeometry(0, 0, width, textHeight);
        list1->setGeometry(0, textHeight, width, listHeight);
    }
}

int NavigatorPrivate::lineHeight() const
{
    // The height of the list's first line, as the list lays it out; before it has one, the height
    // the style gives one line of text in the list's font.
    if (model->rowCount() > 0)
        return qMax(1, list1->sizeHintForRow(0));
    QStyleOptionViewItem option;
    option.initFrom(list1);
    option.font = list1->font();
    option.fontMetrics = list1->fontMetrics();
    option.features = QStyleOptionViewItem::HasDisplay;
    option.text = QStringLiteral("Xg");
    const QSize size
        = list1->style()->sizeFromContents(QStyle::CT_ItemViewItem, &option, QSize(), list1);
    return qMax(1, size.height());
}

int NavigatorPrivate::listFrame() const
{
    // The part of the list's height that is not lines: its frame, above and below.
    return 2 * list1->frameWidth();
}

void NavigatorPrivate::applyListHeight()
{
    listHeight = listLines * lineHeight() + listFrame();
    if (!open) {
        layoutChildren();
        return;
    }
    // A list open upward grows or shrinks at its top: the text box keeps its place on the form.
    if (openedUpward && movedBy != listHeight) {
        q->move(q->x(), q->y() - (listHeight - movedBy));
        movedBy = listHeight;
    }
    resizeTo(textHeight + listHeight);
}

// ---- user input

void NavigatorPrivate::textChanged()
{
    Q_EMIT q->ContextChange();
    if (takingListText)
        return;
    if (allCaps) {
        const QString upper = text1->text().toUpper();
        if (upper != text1->text()) {
            // The upper-case text is a change of its own and is searched there.
            const int caret = text1->cursorPosition();
            text1->setText(upper);
            text1->setCursorPosition(caret);
            return;
        }
    }
    SearchText();
}

void NavigatorPrivate::keyUp(int code)
{
    switch (code) {
    case KeyReturn:
    case KeyEscape:
        HideList();
        break;
    case KeyUp:
    case KeyDown:
        if (isClosed())
            ShowList();
        if (open)
            list1->setFocus(Qt::OtherFocusReason);
        break;
    default:
        if (isClosed())
            ShowList();
        break;
    }
}

bool NavigatorPrivate::listKeyPress(int code)
{
    if (code != KeyReturn && code != KeyEscape && code != KeySpace)
        return false;
    text1->setFocus(Qt::OtherFocusReason);
    HideList();
    return true;
}

void NavigatorPrivate::takeListLine(int row)
{
    if (searching || row < 0 || row >= model->rowCount())
        return;
    takingListText = true;
    text1->setText(model->index(row, 0).data().toString());
    takingListText = false;
    setColors(true);
}

bool NavigatorPrivate::hasFocusInside() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && (focus == q || q->isAncestorOf(focus));
}

void NavigatorPrivate::focusIn()
{
    if (focused)
        return; // within the control: from the text box to the list and back
    focused = true;
    ShowList();
}

void NavigatorPrivate::focusOut(Qt::FocusReason reason)
{
    // A context menu takes the keyboard for a moment; the field keeps its list meanwhile.
    if (reason == Qt::PopupFocusReason || hasFocusInside())
        return;
    focused = false;
    HideList();
}

void NavigatorPrivate::writeText(const QString &text)
{
    text1->setText(text);
}

// ---- Navigator

Navigator::Navigator(QWidget *parent)
    : Control(parent)
    , d(std::make_unique<NavigatorPrivate>(this))
{
    d->text1->setObjectName(QStringLiteral("Text1"));
    d->text1->setAccessibleName(loadString("lookupText"));
    d->text1->setMouseTracking(true); // mouse moves are reported without a button held
    d->text1->installEventFilter(this);
    forwardMouse(d->text1);
    setFocusProxy(d->text1);
    setFocusPolicy(d->text1->focusPolicy());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    d->list1->setObjectName(QStringLiteral("List1"));
    d->list1->setAccessibleName(loadString("lookupList"));
    d->list1->setModel(d->model);
    d->list1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    d->list1->setSelectionMode(QAbstractItemView::SingleSelection);
    d->list1->setUniformItemSizes(true); // lays out 100,000 lines without measuring each
    d->list1->setFocusPolicy(Qt::ClickFocus); // reached by the arrow keys, not by Tab
    d->list1->installEventFilter(this);
    d->list1->hide();

    // Hosts find it by name; nothing uses it, so it stays out of sight.
    d->text2->setObjectName(QStringLiteral("Text2"));
    d->text2->hide();

    connect(d->text1, &QLineEdit::textChanged, this,
            [this] { attempt([this] { d->textChanged(); }); });
    // A move of the selection (mouse or keys) counts as a click on the line.
    connect(d->list1->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) { d->takeListLine(current.row()); });
    connect(d->list1, &QAbstractItemView::clicked, this,
            [this](const QModelIndex &index) { d->takeListLine(index.row()); });
    connect(d->list1, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &index) {
        if (d->searching)
            return;
        d->takeListLine(index.row());
        d->text1->setFocus(Qt::OtherFocusReason);
        d->HideList();
    });
    const auto stale = [this] { d->indexStale = true; };
    connect(d->model, &QAbstractItemModel::dataChanged, this, stale);
    connect(d->model, &QAbstractItemModel::rowsInserted, this, stale);
    connect(d->model, &QAbstractItemModel::rowsRemoved, this, stale);
    connect(d->model, &QAbstractItemModel::rowsMoved, this, stale);
    connect(d->model, &QAbstractItemModel::modelReset, this, stale);

    resize(sizeHint());
    d->applyListHeight();
    d->setColors(true);
}

Navigator::~Navigator()
{
    // The children outlive this part of the object while QWidget deletes them: they must not call
    // back into it (a focus change or a text change during destruction).
    d->text1->removeEventFilter(this);
    d->list1->removeEventFilter(this);
    disconnect(d->text1, nullptr, this, nullptr);
    disconnect(d->list1, nullptr, this, nullptr);
    disconnect(d->list1->selectionModel(), nullptr, this, nullptr);
    disconnect(d->model, nullptr, this, nullptr);
}

// ---- persistence

void Navigator::InitProperties()
{
    d->writeText(QStringLiteral(" "));
}

void Navigator::ReadProperties(PropertyBag &bag)
{
    attempt(
        [&] { d->writeText(CStr(bag.ReadProperty(QStringLiteral("Text"), QStringLiteral(" ")))); });
    attempt([&] {
        d->text1->setReadOnly(CBool(bag.ReadProperty(QStringLiteral("LockEdits"), false)));
    });
    attempt([&] { d->allCaps = CBool(bag.ReadProperty(QStringLiteral("AllCaps"), false)); });
    attempt([&] { d->upDown = CBool(bag.ReadProperty(QStringLiteral("UpDown"), false)); });
    attempt([&] { d->fieldInd = CLng(bag.ReadProperty(QStringLiteral("FieldInd"), qint32(0))); });
    attempt([&] { d->fieldInd2 = CLng(bag.ReadProperty(QStringLiteral("FieldInd2"), qint32(0))); });
    attempt([&] {
        const qint16 count = CInt(bag.ReadProperty(QStringLiteral("CharCount"), qint16(0)));
        d->text1->setMaxLength(count > 0 ? count : noLengthLimit);
    });
    attempt([&] {
        const qint16 lines
            = CInt(bag.ReadProperty(QStringLiteral("ListLine"), qint16(defaultListLines)));
        if (lines >= 0)
            d->listLines = lines;
    });
    d->applyListHeight();
    attempt([&] { applyEnabled(CBool(bag.ReadProperty(QStringLiteral("Enabled"), true))); });
}

void Navigator::WriteProperties(PropertyBag &bag)
{
    const auto write = [&](const char *key, const QVariant &value, const QVariant &defaultValue) {
        return [&bag, key, value, defaultValue] {
            bag.WriteProperty(QLatin1String(key), value, defaultValue);
        };
    };
    ignoreErrors({
        write("Text", d->text1->text(), QStringLiteral(" ")),
        write("LockEdits", LockEdits(), false),
        write("AllCaps", d->allCaps, false),
        write("UpDown", d->upDown, false),
        write("FieldInd", d->fieldInd, qint32(0)),
        write("FieldInd2", d->fieldInd2, qint32(0)),
        write("CharCount", CharCount(), qint16(0)),
        write("ListLine", ListLine(), qint16(defaultListLines)),
        write("Enabled", Enabled(), true),
    });
}

// ---- properties

QString Navigator::Text()
{
    if (!d->text1->text().isEmpty())
        attempt([this] { d->SearchText(); });
    return d->text1->text();
}

void Navigator::setText(const QString &text)
{
    d->writeText(text);
    notifyPut(QStringLiteral("Text"));
}

QVariant Navigator::DataSourthe() const
{
    return d->lookup.source();
}

void Navigator::setDataSourthe(const QVariant &source)
{
    d->lookup.setSource(source);
    // Filled at once, also while the list is closed or the control disabled.
    attempt([this] { d->FillList(); });
    notifyPut(QStringLiteral("DataSourthe"));
}

bool Navigator::LockEdits() const
{
    return d->text1->isReadOnly();
}

void Navigator::setLockEdits(bool locked)
{
    d->text1->setReadOnly(locked);
    notifyPut(QStringLiteral("LockEdits"));
}

qint16 Navigator::ListLine() const
{
    return qint16((d->listHeight - d->listFrame()) / d->lineHeight());
}

void Navigator::setListLine(qint16 lines)
{
    // A negative count would make a negative height: it is refused and the list stays.
    if (lines >= 0) {
        d->listLines = lines;
        d->applyListHeight();
    }
    notifyPut(QStringLiteral("ListLine"));
}

void Navigator::setListLine(int lines)
{
    setListLine(CInt(lines));
}

bool Navigator::AllCaps() const
{
    return d->allCaps;
}

void Navigator::setAllCaps(bool allCaps)
{
    d->allCaps = allCaps;
    if (allCaps) {
        const int caret = d->text1->cursorPosition();
        d->writeText(d->text1->text().toUpper());
        d->text1->setCursorPosition(caret);
    }
    notifyPut(QStringLiteral("AllCaps"));
}

qint16 Navigator::CharCount() const
{
    const int limit = d->text1->maxLength();
    return limit >= noLengthLimit ? qint16(0) : qint16(limit);
}

void Navigator::setCharCount(qint16 count)
{
    // A negative length is no limit the text box can take: it keeps the one it has.
    if (count >= 0)
        d->text1->setMaxLength(count == 0 ? noLengthLimit : count);
    notifyPut(QStringLiteral("CharCount"));
}

void Navigator::setCharCount(int count)
{
    setCharCount(CInt(count));
}

bool Navigator::UpDown() const
{
    return d->upDown;
}

void Navigator::setUpDown(bool upward)
{
    d->upDown = upward; // an open list keeps its side until it closes
    notifyPut(QStringLiteral("UpDown"));
}

qint32 Navigator::FieldInd() const
{
    return d->fieldInd;
}

void Navigator::setFieldInd(qint32 index)
{
    d->fieldInd = index;
    notifyPut(QStringLiteral("FieldInd"));
}

QString Navigator::Text2()
{
    const QString column = d->lookup.fieldName(d->fieldInd);
    const std::optional<QString> value = column.isEmpty()
        ? std::nullopt
        : d->lookup.find(column + QLatin1String(" = '") + d->text1->text() + QLatin1Char('\''),
                         d->fieldInd2);
    d->setColors(value.has_value());
    return value.value_or(QString());
}

void Navigator::setText2(const QString &text)
{
    const QString column = d->lookup.fieldName(d->fieldInd2);
    const std::optional<QString> value = column.isEmpty()
        ? std::nullopt
        : d->lookup.find(column + QLatin1String(" = '") + text + QLatin1Char('\''), d->fieldInd);
    d->writeText(value.value_or(QString()));
    d->setColors(value.has_value());
    notifyPut(QStringLiteral("Text2"));
}

qint32 Navigator::FieldInd2() const
{
    return d->fieldInd2;
}

void Navigator::setFieldInd2(qint32 index)
{
    d->fieldInd2 = index;
    notifyPut(QStringLiteral("FieldInd2"));
}

QString Navigator::FontName() const
{
    return d->text1->font().family();
}

void Navigator::setFontName(const QString &name)
{
    if (!name.isEmpty()) {
        QFont f = font();
        f.setFamily(name);
        setFont(f); // the children follow, and the font change sizes the list again
    }
    notifyPut(QStringLiteral("FontName"));
}

qint16 Navigator::FontSize() const
{
    const qreal points = d->text1->font().pointSizeF();
    return points > 0 ? qint16(qRound(points)) : qint16(0);
}

void Navigator::setFontSize(qint16 points)
{
    if (points > 0) {
        QFont f = font();
        f.setPointSize(points);
        setFont(f);
    }
    notifyPut(QStringLiteral("FontSize"));
}

void Navigator::setFontSize(int points)
{
    setFontSize(CInt(points));
}

QSize Navigator::sizeHint() const
{
    return lineSizeHint(hintChars);
}

QSize Navigator::minimumSizeHint() const
{
    return lineSizeHint(minimumHintChars);
}

// ---- events

void Navigator::childMouseEvent(QWidget *, MouseAction action, MouseArgs &args)
{
    raiseMouseEvents(this, action, args);
}

bool Navigator::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->text1 && watched != d->list1)
        return Control::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        if (watched == d->text1)
            d->text1->selectAll();
        d->focusIn();
        break;
    case QEvent::FocusOut:
        d->focusOut(static_cast<QFocusEvent *>(event)->reason());
        break;
    case QEvent::KeyRelease:
        if (watched == d->text1 && !static_cast<QKeyEvent *>(event)->isAutoRepeat())
            d->keyUp(keyCode(static_cast<QKeyEvent *>(event)));
        break;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        const int code = keyCode(static_cast<QKeyEvent *>(event));
        // Escape over an open list closes the list, not the dialog around the field.
        if (code == KeyEscape && d->open) {
            event->accept();
            if (watched == d->list1 && event->type() == QEvent::KeyPress)
                d->listKeyPress(code);
            return true;
        }
        if (watched == d->list1 && event->type() == QEvent::KeyPress && d->listKeyPress(code))
            return true;
        break;
    }
    case QEvent::MouseButtonRelease: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (watched == d->text1 && mouse->button() == Qt::LeftButton
            && d->text1->rect().contains(mouse->position().toPoint()) && d->isClosed())
            d->ShowList();
        break;
    }
    default:
        break;
    }
    return Control::eventFilter(watched, event);
}

void Navigator::resizeEvent(QResizeEvent *event)
{
    Control::resizeEvent(event);
    if (!d->resizing && !d->open)
        d->textHeight = height();
    d->layoutChildren();
}

void Navigator::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        d->applyListHeight();
    Control::changeEvent(event);
}

} // namespace zelkon
