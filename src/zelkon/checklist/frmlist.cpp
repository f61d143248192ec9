#include <zelkon/checklist/frmlist_p.h>

#include <zelkon/checklist/checklistmodel_p.h>
#include <zelkon/checklist/checklistview_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/strings_p.h>
#include <zelkon/common/variants.h>
#include <zelkon/data/recordsetaccess_p.h>
#include <zelkon/dropdown/frmshowhide_p.h>

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QResizeEvent>
#include <QSet>
#include <QTimer>

#include <numeric>
#include <vector>

namespace zelkon {

namespace {

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

} // namespace

QVariantList frmList::elementsOf(const QVariant &value)
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

frmList::frmList(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("frmList"));

    // One model holds the rows; the list in use shows it, the other one stays empty and hidden.
    m_model = new CheckListModel(this);
    connect(m_model, &CheckListModel::rowChecked, this, [this](int row) { applySingleCheck(row); });
    for (int index : {0, 1})
        m_views[index] = new CheckListView(index, this);
    for (CheckListView *view : m_views) {
        view->installEventFilter(this);
        view->viewport()->installEventFilter(this);
        view->viewport()->setMouseTracking(true);
        view->setToolTip(loadString(101));
        // The tool tip gives way to a row's own text under the mouse; the description stays.
        view->setAccessibleDescription(loadString(101));
    }
    m_views[0]->setModel(m_model);
    m_views[1]->hide();
    setAccessibleName(loadString("filterList"));
    m_views[0]->setAccessibleName(loadString("rows"));
    m_views[1]->setAccessibleName(loadString("rowsSorted"));

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
    m_views[0]->setGeometry(rect());
    m_views[1]->setGeometry(rect());
}

void frmList::setActiveList(qint16 index)
{
    index = index ? 1 : 0;
    if (index == m_activeList)
        return;
    // The rows and their checks move over to the other list, which shows them in its order.
    const QStringList saved = checkedTextsOfList();
    List()->setModel(nullptr);
    List()->hide();
    m_activeList = index;
    m_model->setSorted(index == 1);
    List()->setModel(m_model);
    List()->show();
    if (!m_model->items().empty()) {
        const QSet<QString> checked(saved.cbegin(), saved.cend());
        showArVis([&checked](const QString &text) { return checked.contains(text); });
    }
}

QVariant frmList::AllItems() const
{
    const std::vector<CheckListItem> &items = m_model->items();
    if (items.empty())
        return {};
    VariantArray all({{0, qint32(items.size()) - 1}, {0, 1}});
    for (qint32 i = 0; i < qint32(items.size()); ++i) {
        all.at({i, 0}) = items[size_t(i)].text;
        all.at({i, 1}) = items[size_t(i)].id;
    }
    return QVariant::fromValue(all);
}

int frmList::snapshotRows() const
{
    return int(m_model->items().size());
}

bool frmList::Invert() const
{
    return m_menuItems[4]->isChecked();
}

QStringList frmList::checkedTextsOfList() const
{
    QStringList texts;
    for (int i = 0; i < m_model->rowCount(); ++i) {
        if (m_model->isChecked(i))
            texts.append(m_model->text(i));
    }
    return texts;
}

void frmList::InsertArray()
{
    qint32 upper2 = -1;
    attempt([&] { upper2 = UBound(m_sourceArray, 2); });
    m_sourceIs2D = upper2 >= 0;
    if (IsEmpty(m_sourceArray)) {
        m_model->clear();
        return;
    }

    // The rows an upper bound asks for: none for a bound below -1 (an array whose bounds lie
    // below zero), at most as many as the list holds.
    const auto reservedRows = [](qint32 upper) {
        return size_t(qBound(qint64(0), qint64(upper) + 1, qint64(CheckListModel::MaxRows)));
    };
    // A row that cannot be read ends the loading; the rows before it stay.
    std::vector<CheckListItem> rows;
    attempt([&] {
        if (m_sourceIs2D) {
            const auto array = m_sourceArray.value<VariantArray>();
            rows.reserve(reservedRows(upper2));
            for (qint32 i = 0; i <= upper2; ++i) {
                if (rows.size() == size_t(CheckListModel::MaxRows))
                    throw Error(Overflow);
                rows.push_back({CStr(array.at({0, i})), CLng(array.at({1, i}))});
            }
        } else {
            const qint32 upper = UBound(m_sourceArray, 1);
            const ElementReader array(m_sourceArray);
            rows.reserve(reservedRows(upper));
            for (qint32 i = 0; i <= upper; ++i) {
                if (rows.size() == size_t(CheckListModel::MaxRows))
                    throw Error(Overflow);
                const QVariant &text = array.at(i);
                rows.push_back({text.metaType() == QMetaType::fromType<QString>()
                                    ? *static_cast<const QString *>(text.constData())
                                    : CStr(text)});
            }
        }
    });
    // A fresh load has no checks to carry over: showing every row is the load itself.
    ReloadArVisFor(int(rows.size()));
    m_arVisReady = true;
    m_model->load(std::move(rows));
}

void frmList::InsertRecord()
{
    m_views[0]->setVisible(m_activeList == 0);
    m_views[1]->setVisible(m_activeList == 1);
    m_model->clear();

    RecordsetAccess recordset(m_sourceRecordset);
    std::vector<CheckListItem> rows;
    // A recordset that cannot even be positioned ends the operation here.
    if (!attempt([&] {
            recordset.moveLast();
            recordset.moveFirst();
        }))
        return;
    // Anything failing later ends the reading; the rows read so far are kept.
    attempt([&] {
        while (!recordset.atEOF()) {
            if (rows.size() == size_t(CheckListModel::MaxRows))
                throw Error(Overflow);
            // A Null text cannot be converted: that record adds no row.
            attempt([&] { rows.push_back({Trim(CStr(recordset.fieldValue(0)))}); });
            recordset.moveNext();
        }
    });
    if (!m_arVisReady) {
        ReloadArVisFor(int(rows.size()));
        m_arVisReady = true;
    }
    // The rows of an earlier load are gone: no check is carried over.
    m_model->load(std::move(rows));
    showArVis([](const QString &) { return false; });
}

void frmList::ReloadArVis()
{
    ReloadArVisFor(m_model->rowCount());
}

void frmList::ReloadArVisFor(int rows)
{
    m_arVis = QVariant();
    m_everyRow = rows > 0 ? rows : -1;
}

QVariant frmList::ArVis() const
{
    if (m_everyRow < 0)
        return m_arVis;
    QVariantList all;
    all.reserve(m_everyRow);
    for (qint32 i = 0; i < m_everyRow; ++i)
        all.append(i);
    return all;
}

void frmList::setArVis(const QVariant &rows)
{
    m_arVis = rows;
    m_everyRow = -1;
}

void frmList::showArVis(const std::function<bool(const QString &)> &checked)
{
    std::vector<qint32> shown;
    if (m_everyRow >= 0) {
        shown.resize(size_t(m_everyRow));
        std::iota(shown.begin(), shown.end(), 0);
    }
    const QVariantList numbers = elementsOf(m_arVis);
    shown.reserve(shown.size() + size_t(numbers.size()));
    for (const QVariant &k : numbers) {
        qint32 i = -1; // a row number that names no row adds nothing
        attempt([&] { i = CLng(k); });
        shown.push_back(i);
    }
    m_model->show(shown, checked);
}

void frmList::RebuildVisibleRows()
{
    // Matching is by text alone: every row with a saved text is checked, so rows that share a
    // text are checked or unchecked together. Each text keeps the last place it had.
    const QStringList saved = checkedTextsOfList();
    QHash<QString, int> lastPlace;
    for (int place = 0; place < saved.size(); ++place)
        lastPlace.insert(saved.at(place), place);
    showArVis([&lastPlace](const QString &text) { return lastPlace.contains(text); });

    if (m_singleCheck && !saved.isEmpty()) {
        // The newest check is the last row reached by the last saved text.
        int newest = -1;
        int newestPlace = -1;
        for (int j = 0; j < m_model->rowCount(); ++j) {
            const int place = lastPlace.value(m_model->text(j), -1);
            if (place >= 0 && place >= newestPlace) {
                newestPlace = place;
                newest = j;
            }
        }
        applySingleCheck(newest);
    }
}

void frmList::readCheckedIDs()
{
    QVariantList ids;
    ids.reserve(m_model->checkedCount());
    for (int i = 0; i < m_model->rowCount(); ++i) {
        if (m_model->isChecked(i))
            ids.append(m_model->id(i));
    }
    m_checkedIDs = ids.isEmpty() ? QVariant() : QVariant(std::move(ids));
}

QVariant frmList::readCheckedTexts() const
{
    QVariantList texts;
    texts.reserve(m_model->checkedCount());
    for (int i = 0; i < m_model->rowCount(); ++i) {
        if (m_model->isChecked(i))
            texts.append(m_model->text(i));
    }
    return texts.isEmpty() ? QVariantList{allText()} : std::move(texts);
}

void frmList::GetChecked()
{
    m_checkedTexts = readCheckedTexts();
    readCheckedIDs();
}

void frmList::RepairCheck()
{
    const int rows = m_model->rowCount();
    if (rows == 0)
        return;
    // When the rows checked are the texts asked for, one row each and in list order, reading the
    // checks back would give the same texts again: only the identifiers are read then.
    bool asAsked = m_checkedTexts.metaType() == QMetaType::fromType<QVariantList>();
    qsizetype asked = 0;
    const bool done = attempt([&] {
        const QVariantList wanted = elementsOf(m_checkedTexts);
        asked = wanted.size();
        std::vector<bool> marks(size_t(rows), false);
        int newest = -1;
        // A lone "All" means that nothing is checked; among several texts it is a row's text.
        const bool nothing = wanted.size() == 1 && wanted.first() == QVariant(allText());
        asAsked = asAsked && !nothing && !wanted.isEmpty();
        if (!nothing && !wanted.isEmpty()) {
            // Each text checks the first row that has it; the newest check is the row of the
            // last text that matched. The texts are looked at where they are.
            QHash<QStringView, int> firstRow;
            firstRow.reserve(rows);
            for (int j = rows - 1; j >= 0; --j)
                firstRow.insert(m_model->text(j), j);
            QString converted;
            for (const QVariant &text : wanted) {
                QStringView key;
                if (text.metaType() == QMetaType::fromType<QString>()) {
                    key = *static_cast<const QString *>(text.constData());
                } else {
                    asAsked = false;
                    if (!attempt([&] { converted = CStr(text); }))
                        continue;
                    key = converted;
                }
                const auto it = firstRow.constFind(key);
                if (it == firstRow.cend() || *it <= newest) {
                    asAsked = false;
                    if (it == firstRow.cend())
                        continue;
                }
                marks[size_t(*it)] = true;
                newest = *it;
            }
        }
        setCheckedRows(marks, newest);
    });
    if (done && asAsked && m_model->checkedCount() == asked)
        readCheckedIDs();
    else
        GetChecked();
    List()->setTopRow(0);
}

void frmList::RepairCheckID()
{
    const int rows = m_model->rowCount();
    if (rows == 0)
        return;
    attempt([&] {
        const QVariantList wanted = elementsOf(m_checkedIDs);
        std::vector<bool> marks(size_t(rows), false);
        int newest = -1;
        if (!wanted.isEmpty()) {
            QHash<qint32, int> firstRow;
            firstRow.reserve(rows);
            for (int j = rows - 1; j >= 0; --j)
                firstRow.insert(m_model->id(j), j);
            for (const QVariant &id : wanted) {
                qint32 key = 0;
                if (!attempt([&] { key = CLng(id); }))
                    continue;
                // An identifier given again is checked again in its turn.
                const auto it = firstRow.constFind(key);
                if (it != firstRow.cend()) {
                    marks[size_t(*it)] = true;
                    newest = *it;
                }
            }
        }
        setCheckedRows(marks, newest);
    });
    GetChecked();
    List()->setTopRow(0);
}

void frmList::SetInvert(bool value)
{
    m_menuItems[4]->setChecked(value);
}

void frmList::setCheckedRows(const std::vector<bool> &checked, int newest)
{
    m_model->setChecks([&](int row, bool) { return checked[size_t(row)]; });
    applySingleCheck(newest);
}

void frmList::setChecksInTurn(const std::function<bool(int, bool)> &state)
{
    const int top = List()->topRow();
    if (!m_singleCheck) {
        m_model->setChecks(state);
        List()->setTopRow(top);
        return;
    }
    // The rows are set one after the other, and each check that makes a second one leaves only
    // itself checked: a row that an earlier check unchecked is seen unchecked when its turn
    // comes, so the last row checked in turn wins even where it was checked before.
    const int n = m_model->rowCount();
    std::vector<bool> marks(static_cast<size_t>(n), false);
    int count = 0;
    for (int i = 0; i < n; ++i) {
        marks[size_t(i)] = m_model->isChecked(i);
        count += marks[size_t(i)] ? 1 : 0;
    }
    int sole = -1; // the one row left checked once the rule has run
    for (int i = 0; i < n; ++i) {
        const bool was = sole < 0 && marks[size_t(i)];
        const bool now = state(i, was);
        if (now == was)
            continue;
        if (sole >= 0) {
            sole = i;
            continue;
        }
        marks[size_t(i)] = now;
        count += now ? 1 : -1;
        if (now && count >= 2)
            sole = i;
    }
    if (sole >= 0) {
        marks.assign(size_t(n), false);
        marks[size_t(sole)] = true;
    }
    m_model->setChecks([&marks](int row, bool) { return bool(marks[size_t(row)]); });
    List()->setTopRow(top);
}

void frmList::CheckAllRows()
{
    setChecksInTurn([](int, bool) { return true; });
}

void frmList::UncheckAllRows()
{
    setChecksInTurn([](int, bool) { return false; });
}

void frmList::InvertRows()
{
    setChecksInTurn([](int, bool checked) { return !checked; });
}

void frmList::applySingleCheck(int newest)
{
    if (!m_singleCheck || newest < 0 || m_inSingleCheck || m_model->checkedCount() < 2)
        return;
    m_inSingleCheck = true;
    CheckListView *l = List();
    l->setUpdatesEnabled(false);
    m_model->setChecks([newest](int row, bool checked) { return row == newest && checked; });
    l->setUpdatesEnabled(true);
    m_inSingleCheck = false;
}

bool frmList::FillShowHideDialog()
{
    if (!m_showHideDialog)
        m_showHideDialog = new frmShowHide(this);
    QStringList texts;
    texts.reserve(qsizetype(m_model->items().size()));
    for (const CheckListItem &item : m_model->items())
        texts.append(item.text);
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
    // The dialog edits the shown rows in place: a declined dialog leaves its marks there too,
    // and they take effect at the next rebuild.
    QVariant shown = ArVis();
    const bool confirmed = m_showHideDialog->frmActivate(shown);
    setArVis(shown);
    if (watching && isVisible())
        m_timer->start();
    if (confirmed) {
        if (IsEmpty(m_arVis))
            m_model->clearRows();
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
