#include <zelkon/checklist/frmlist.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/recordsetaccess_p.h>
#include <zelkon/dropdown/frmshowhide.h>

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QResizeEvent>
#include <QSet>
#include <QTimer>

#include <vector>

namespace zelkon {

namespace {

const QString AllText = QStringLiteral("All");

// The elements of a one-dimensional array in index order. Any other single value stands for
// itself; an array of more dimensions has no element that a one-index lookup could read.
QVariantList elementsOf(const QVariant &value)
{
    if (IsEmpty(value))
        return {};
    if (value.metaType() == QMetaType::fromType<QVariantList>())
        return value.toList();
    if (isVariantArray(value)) {
        const auto array = value.value<VariantArray>();
        return array.dimensions() == 1 ? array.elements() : QVariantList();
    }
    return {value};
}

// Reads element i of a one-dimensional array, indices counted from 0, without copying the
// array per element.
class ElementReader
{
public:
    explicit ElementReader(const QVariant &array)
    {
        if (isVariantArray(array))
            m_array = array.value<VariantArray>();
        else if (array.metaType() == QMetaType::fromType<QVariantList>())
            m_list = array.toList();
        else
            throw Error(TypeMismatch);
        m_isList = !isVariantArray(array);
    }
    const QVariant &at(qint32 i) const
    {
        if (!m_isList)
            return m_array.at({i});
        if (i < 0 || i >= m_list.size())
            throw Error(SubscriptOutOfRange);
        return m_list.at(i);
    }

private:
    bool m_isList = true;
    QVariantList m_list;
    VariantArray m_array;
};

// Where each of a set of texts first stands among the texts added, for the length of one
// operation. A reload looks every row up once: open addressing over the caller's order with a
// light hash keeps that well below the cost of filling the list.
class FirstPlaces
{
public:
    explicit FirstPlaces(qsizetype expected)
    {
        size_t capacity = 16;
        while (capacity < size_t(expected) * 2)
            capacity <<= 1;
        m_mask = capacity - 1;
        m_slots.assign(capacity, Slot{0, -1});
        m_texts.reserve(expected);
    }

    // Adds the text at the next place; false when it was there already.
    bool add(const QString &text)
    {
        const int place = int(m_texts.size());
        m_texts.append(text);
        const quint32 hash = hashOf(text);
        for (size_t i = hash & m_mask;; i = (i + 1) & m_mask) {
            Slot &slot = m_slots[i];
            if (slot.place < 0) {
                slot = {hash, place};
                return true;
            }
            if (slot.hash == hash && m_texts.at(slot.place) == text)
                return false;
        }
    }
    void skip() { m_texts.append(QString()); } // a place that no text can be found at

    // The first place of the text, or -1.
    int find(const QString &text) const
    {
        const quint32 hash = hashOf(text);
        for (size_t i = hash & m_mask;; i = (i + 1) & m_mask) {
            const Slot &slot = m_slots[i];
            if (slot.place < 0)
                return -1;
            if (slot.hash == hash && m_texts.at(slot.place) == text)
                return slot.place;
        }
    }
    int size() const { return int(m_texts.size()); }

private:
    struct Slot
    {
        quint32 hash;
        int place; // -1: empty
    };
    static quint32 hashOf(QStringView text)
    {
        quint32 h = 2166136261u;
        for (const QChar c : text)
            h = (h ^ c.unicode()) * 16777619u;
        return h ^ (h >> 15);
    }

    size_t m_mask = 0;
    std::vector<Slot> m_slots;
    QList<QString> m_texts;
};

} // namespace

frmList::frmList(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("frmList"));

    m_unsorted = new CheckListWidget(false, this);
    m_sorted = new CheckListWidget(true, this);
    for (CheckListWidget *widget : {m_unsorted, m_sorted}) {
        widget->setObjectName(QStringLiteral("List"));
        widget->setProperty("Index", widget == m_sorted ? 1 : 0);
        widget->installEventFilter(this);
        widget->viewport()->installEventFilter(this);
        widget->viewport()->setMouseTracking(true);
        connect(widget, &QListWidget::itemChanged, this,
                [this](QListWidgetItem *item) { onItemChanged(item); });
    }

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer"));
    m_timer->setInterval(1);
    connect(m_timer, &QTimer::timeout, this, [this] { onTimer(); });

    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("MenuPopUp"));
    const int textIds[] = {102, 103, 104, 105, 108};
    for (int i = 0; i < 5; ++i) {
        auto *action = m_menu->addAction(loadString(textIds[i]));
        action->setObjectName(QStringLiteral("mnuPopup"));
        action->setProperty("Index", i);
        m_menuItems.append(action);
    }
    m_menuItems[4]->setCheckable(true);
    connect(m_menuItems[0], &QAction::triggered, this, [this] { CheckAllRows(); });
    connect(m_menuItems[1], &QAction::triggered, this, [this] { UncheckAllRows(); });
    connect(m_menuItems[2], &QAction::triggered, this, [this] { InvertRows(); });
    connect(m_menuItems[3], &QAction::triggered, this, [this] { ShowHideRows(); });
    connect(m_menuItems[4], &QAction::triggered, this,
            [this](bool checked) { Q_EMIT ChangeInv(checked); });
    connect(m_menu, &QMenu::aboutToHide, this, [this] {
        if (isVisible())
            m_timer->start();
    });

    m_sorted->hide();
    m_unsorted->setToolTip(loadString(101));
    m_sorted->setToolTip(loadString(101));
    // The tool tip gives way to a row's own text under the mouse; the description stays the hint.
    setAccessibleName(tr("Filter list"));
    m_unsorted->setAccessibleName(tr("Rows"));
    m_sorted->setAccessibleName(tr("Rows, sorted"));
    m_unsorted->setAccessibleDescription(loadString(101));
    m_sorted->setAccessibleDescription(loadString(101));
}

frmList::~frmList()
{
    delete m_showHideDialog;
    Q_EMIT UnloadMe();
}

void frmList::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // The list fills the window exactly: a layout would impose the list's own minimum size on
    // a popup that is sized by its row count.
    m_unsorted->setGeometry(rect());
    m_sorted->setGeometry(rect());
}

QAction *frmList::mnuPopup(int index) const
{
    return m_menuItems.value(index);
}

void frmList::setSourceRecordset(QObject *recordset)
{
    m_sourceRecordset = recordset;
}

void frmList::setActiveList(qint16 index)
{
    index = index ? 1 : 0;
    if (index == m_activeList)
        return;
    // Only the list in use holds rows; its rows and checks move over to the other one.
    CheckListWidget *old = List();
    const QStringList saved = checkedTextsOfList();
    old->clearRows();
    old->hide();
    m_activeList = index;
    List()->show();
    if (!m_allItems.isEmpty()) {
        attempt([&] {
            QList<CheckRow> rows;
            const QSet<QString> checked(saved.cbegin(), saved.cend());
            for (const QVariant &k : elementsOf(m_arVis)) {
                const qint32 i = CLng(k);
                if (i >= 0 && i < m_allItems.size())
                    rows.append({m_allItems.at(i).text, m_allItems.at(i).id,
                                 checked.contains(m_allItems.at(i).text)});
            }
            List()->fill(rows);
        });
    }
}

QVariant frmList::AllItems() const
{
    if (m_allItems.isEmpty())
        return {};
    VariantArray items({{0, qint32(m_allItems.size()) - 1}, {0, 1}});
    for (qint32 i = 0; i < m_allItems.size(); ++i) {
        items.at({i, 0}) = m_allItems.at(i).text;
        items.at({i, 1}) = m_allItems.at(i).id;
    }
    return QVariant::fromValue(items);
}

QStringList frmList::checkedTextsOfList() const
{
    QStringList texts;
    const CheckListWidget *l = List();
    for (int i = 0; i < l->count(); ++i) {
        if (l->isChecked(i))
            texts.append(l->rowText(i));
    }
    return texts;
}

void frmList::InsertArray()
{
    qint32 upper2 = -1;
    attempt([&] { upper2 = UBound(m_sourceArray, 2); });
    m_sourceIs2D = upper2 >= 0;

    // The new rows replace the old ones in one fill below, which lets the list reuse its rows.
    m_allItems.clear();
    if (IsEmpty(m_sourceArray)) {
        List()->clearRows();
        return;
    }

    // A row that cannot be read ends the loading; the rows before it stay.
    QList<CheckRow> rows;
    attempt([&] {
        if (m_sourceIs2D) {
            const auto array = m_sourceArray.value<VariantArray>();
            for (qint32 i = 0; i <= upper2; ++i) {
                if (rows.size() == CheckListWidget::MaxRows)
                    throw Error(Overflow);
                CheckRow row{CStr(array.at({0, i})), CLng(array.at({1, i}))};
                rows.append(row);
            }
        } else {
            const qint32 upper = UBound(m_sourceArray, 1);
            const ElementReader array(m_sourceArray);
            rows.reserve(qMin(upper + 1, CheckListWidget::MaxRows));
            for (qint32 i = 0; i <= upper; ++i) {
                if (rows.size() == CheckListWidget::MaxRows)
                    throw Error(Overflow);
                rows.append({CStr(array.at(i))});
            }
        }
    });
    if (List()->isSorted())
        CheckListWidget::sortRows(rows);

    // The rows go into the list once: a freshly loaded list has no checks to carry over, so
    // showing every row again is the same as the load itself.
    m_arVis = QVariant();
    if (!rows.isEmpty()) {
        QVariantList all;
        all.reserve(rows.size());
        for (qint32 i = 0; i < rows.size(); ++i)
            all.append(i);
        m_arVis = all;
    }
    if (!m_arVisReady)
        m_arVisReady = true;
    m_allItems = rows;
    List()->fill(std::move(rows), true);
}

void frmList::InsertRecord()
{
    m_unsorted->setVisible(m_activeList == 0);
    m_sorted->setVisible(m_activeList == 1);
    List()->clearRows();
    m_allItems.clear();

    RecordsetAccess recordset(m_sourceRecordset);
    QList<CheckRow> rows;
    // A recordset that cannot even be positioned ends the operation here.
    if (!attempt([&] {
            recordset.moveLast();
            recordset.moveFirst();
        }))
        return;
    // Anything failing later ends the reading; the rows read so far are kept.
    attempt([&] {
        while (!recordset.atEOF()) {
            if (rows.size() == CheckListWidget::MaxRows)
                throw Error(Overflow);
            // A Null text cannot be converted: that record adds no row.
            attempt([&] { rows.append({Trim(CStr(recordset.fieldValue(0)))}); });
            recordset.moveNext();
        }
    });
    if (List()->isSorted())
        CheckListWidget::sortRows(rows);

    if (!m_arVisReady) {
        ReloadArVisFor(rows.size());
        m_arVisReady = true;
    }
    m_allItems = rows;
    RebuildVisibleRows();
}

void frmList::ReloadArVis()
{
    ReloadArVisFor(List()->count());
}

void frmList::ReloadArVisFor(int rows)
{
    m_arVis = QVariant();
    if (rows == 0)
        return;
    QVariantList all;
    all.reserve(rows);
    for (qint32 i = 0; i < rows; ++i)
        all.append(i);
    m_arVis = all;
}

void frmList::TakeSnapshot()
{
    if (!m_arVisReady) {
        ReloadArVis();
        m_arVisReady = true;
    }
    m_allItems.clear();
    const CheckListWidget *l = List();
    const int rows = l->count();
    m_allItems.reserve(rows);
    for (int i = 0; i < rows; ++i)
        m_allItems.append({l->rowText(i), l->itemValue(i)});
}

void frmList::RebuildVisibleRows()
{
    const QStringList saved = checkedTextsOfList();
    List()->clearRows();

    // Matching is by text alone: every row with a saved text is checked, so rows that share a
    // text are checked or unchecked together.
    FirstPlaces savedOrder(saved.size());
    // Where each text stands last among the saved: rows that share a text are checked again in
    // the later turn of that text.
    std::vector<int> lastPlace(size_t(saved.size()));
    for (int place = 0; place < saved.size(); ++place) {
        lastPlace[size_t(place)] = place;
        if (!savedOrder.add(saved.at(place)))
            lastPlace[size_t(savedOrder.find(saved.at(place)))] = place;
    }

    QList<CheckRow> rows;
    for (const QVariant &k : elementsOf(m_arVis)) {
        // A host's ArrayVisible may name rows more than once: the row counters end the list.
        if (rows.size() == CheckListWidget::MaxRows)
            break;
        qint32 i = -1;
        if (!attempt([&] { i = CLng(k); }) || i < 0 || i >= m_allItems.size())
            continue; // a row number that names no row adds nothing
        const CheckRow &row = m_allItems.at(i);
        rows.append({row.text, row.id, savedOrder.find(row.text) >= 0});
    }
    List()->fill(std::move(rows));

    if (m_singleCheck && saved.size() > 0) {
        // The newest check is the last row reached by the last saved text.
        int newest = -1;
        int newestOrder = -1;
        const CheckListWidget *l = List();
        for (int j = 0; j < l->count(); ++j) {
            const int place = savedOrder.find(l->rowText(j));
            if (place >= 0 && lastPlace[size_t(place)] >= newestOrder) {
                newestOrder = lastPlace[size_t(place)];
                newest = j;
            }
        }
        applySingleCheck(newest);
    }
}

void frmList::GetChecked()
{
    QVariantList texts;
    QVariantList ids;
    List()->checkedRows(&texts, &ids);
    if (texts.isEmpty()) {
        m_checkedTexts = QVariantList{AllText};
        m_checkedIDs = QVariant();
    } else {
        texts.squeeze();
        ids.squeeze();
        m_checkedTexts = std::move(texts);
        m_checkedIDs = std::move(ids);
    }
}

void frmList::RepairCheck()
{
    CheckListWidget *l = List();
    if (l->count() == 0)
        return;
    attempt([&] {
        const QVariantList wanted = elementsOf(m_checkedTexts);
        QList<bool> marks(l->count(), false);
        int newest = -1;
        // A lone "All" means that nothing is checked; among several texts it is a row's text.
        const bool nothing = wanted.size() == 1 && wanted.first() == QVariant(AllText);
        if (!nothing && !wanted.isEmpty()) {
            // Each text checks the first row that has it. The index of the wanted texts lives
            // for this call only: the list stays the one authority for the checks.
            FirstPlaces places(wanted.size());
            int unmatched = 0;
            // Where each text stands last among the wanted: a repeated text is checked again
            // in its later turn.
            std::vector<int> lastPlace;
            lastPlace.reserve(size_t(wanted.size()));
            for (const QVariant &text : wanted) {
                const int place = int(lastPlace.size());
                lastPlace.push_back(place);
                QString key;
                if (!attempt([&] { key = CStr(text); }))
                    places.skip();
                else if (places.add(key))
                    ++unmatched;
                else
                    lastPlace[size_t(places.find(key))] = place;
            }
            // A text checks one row only; the newest check is the row of the text that came
            // last among the wanted.
            std::vector<bool> used(size_t(places.size()), false);
            int newestPlace = -1;
            const int rows = l->count();
            for (int j = 0; j < rows && unmatched > 0; ++j) {
                const int place = places.find(l->rowText(j));
                if (place < 0 || used[size_t(place)])
                    continue;
                used[size_t(place)] = true;
                --unmatched;
                marks[j] = true;
                if (lastPlace[size_t(place)] > newestPlace) {
                    newestPlace = lastPlace[size_t(place)];
                    newest = j;
                }
            }
        }
        setCheckedRows(marks, newest);
    });
    GetChecked();
    l->setTopRow(0);
}

void frmList::RepairCheckID()
{
    CheckListWidget *l = List();
    if (l->count() == 0)
        return;
    attempt([&] {
        const QVariantList wanted = elementsOf(m_checkedIDs);
        QList<bool> marks(l->count(), false);
        int newest = -1;
        if (!wanted.isEmpty()) {
            QHash<qint32, int> firstRow;
            firstRow.reserve(l->count());
            for (int j = l->count() - 1; j >= 0; --j)
                firstRow.insert(l->itemValue(j), j);
            for (const QVariant &id : wanted) {
                qint32 key = 0;
                if (!attempt([&] { key = CLng(id); }))
                    continue;
                // An identifier given again is checked again in its turn.
                const auto it = firstRow.constFind(key);
                if (it != firstRow.cend()) {
                    marks[*it] = true;
                    newest = *it;
                }
            }
        }
        setCheckedRows(marks, newest);
    });
    GetChecked();
    l->setTopRow(0);
}

void frmList::SetInvert(bool value)
{
    m_menuItems[4]->setChecked(value);
}

void frmList::setCheckedRows(const QList<bool> &checked, int newest)
{
    List()->setChecks([&](int row, bool) { return checked.value(row); });
    applySingleCheck(newest);
}

void frmList::setChecksInTurn(const std::function<bool(int, bool)> &state)
{
    CheckListWidget *l = List();
    if (!m_singleCheck) {
        l->setChecks(state);
        return;
    }
    // The rows are set one after the other, and each check that makes a second one leaves only
    // itself checked: a row that an earlier check unchecked is seen unchecked when its turn
    // comes, so the last row checked in turn wins even where it was checked before.
    const int n = l->count();
    QList<bool> marks(n);
    int count = 0;
    for (int i = 0; i < n; ++i) {
        marks[i] = l->isChecked(i);
        count += marks.at(i) ? 1 : 0;
    }
    int sole = -1; // the one row left checked once the rule has run
    for (int i = 0; i < n; ++i) {
        const bool was = sole < 0 && marks.at(i);
        const bool now = state(i, was);
        if (now == was)
            continue;
        if (sole >= 0) {
            sole = i;
            continue;
        }
        marks[i] = now;
        count += now ? 1 : -1;
        if (now && count >= 2)
            sole = i;
    }
    if (sole >= 0) {
        marks.fill(false);
        marks[sole] = true;
    }
    l->setChecks([&marks](int row, bool) { return marks.at(row); });
}

void frmList::CheckAllRows()
{
    CheckListWidget *l = List();
    const int top = l->topRow();
    setChecksInTurn([](int, bool) { return true; });
    l->setTopRow(top);
}

void frmList::UncheckAllRows()
{
    CheckListWidget *l = List();
    const int top = l->topRow();
    l->setChecks([](int, bool) { return false; });
    l->setTopRow(top);
}

void frmList::InvertRows()
{
    CheckListWidget *l = List();
    const int top = l->topRow();
    setChecksInTurn([](int, bool checked) { return !checked; });
    l->setTopRow(top);
}

void frmList::applySingleCheck(int newest)
{
    if (!m_singleCheck || newest < 0 || m_inSingleCheck)
        return;
    CheckListWidget *l = List();
    if (l->checkedCount() < 2)
        return;
    m_inSingleCheck = true;
    l->setUpdatesEnabled(false);
    l->setChecks([newest](int row, bool checked) { return row == newest && checked; });
    l->setUpdatesEnabled(true);
    m_inSingleCheck = false;
}

void frmList::onItemChanged(QListWidgetItem *item)
{
    CheckListWidget *l = List();
    if (item->listWidget() != l || item->checkState() != Qt::Checked)
        return;
    applySingleCheck(l->row(item));
}

bool frmList::FillShowHideDialog()
{
    if (!m_showHideDialog)
        m_showHideDialog = new frmShowHide(this);
    QStringList texts;
    texts.reserve(m_allItems.size());
    for (const CheckRow &row : std::as_const(m_allItems))
        texts.append(row.text);
    m_showHideDialog->fill(texts);
    return !m_showHideDialog.isNull();
}

void frmList::ShowHideRows()
{
    if (!FillShowHideDialog())
        return;
    // The dialog takes the activation from the popup while it runs; that is not the user leaving
    // the popup, so the activation check waits for it.
    const bool watching = m_timer->isActive();
    m_timer->stop();
    QVariant shown = m_arVis;
    const bool confirmed = m_showHideDialog->frmActivate(shown);
    if (watching && isVisible())
        m_timer->start();
    // A declined dialog hands back its marks too; they are not applied.
    if (confirmed) {
        m_arVis = shown;
        if (IsEmpty(shown))
            List()->clearRows();
        else
            RebuildVisibleRows();
    }
    delete m_showHideDialog;
    GetChecked();
    Q_EMIT Change(true);
}

void frmList::loadRows()
{
    if (m_typeData < 2)
        InsertRecord();
    else
        InsertArray();
    RepairCheck();
}

} // namespace zelkon
