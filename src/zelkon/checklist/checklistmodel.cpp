#include <zelkon/checklist/checklistmodel_p.h>

#include <zelkon/common/error.h>

#include <algorithm>

namespace zelkon {

namespace {

// The case-folded texts of the rows, all in one buffer. Most row texts are plain ASCII, where
// folding is lowering A to Z; anything else takes the full Unicode case folding.
class FoldedKeys
{
public:
    explicit FoldedKeys(const std::vector<CheckListItem> &items)
    {
        size_t total = 0;
        for (const CheckListItem &item : items)
            total += size_t(item.text.size());
        m_units.reserve(total);
        m_start.reserve(items.size() + 1);
        for (const CheckListItem &item : items) {
            m_start.push_back(m_units.size());
            append(item.text);
        }
        m_start.push_back(m_units.size());
    }
    QStringView operator[](size_t i) const
    {
        return QStringView(m_units.data() + m_start[i], qsizetype(m_start[i + 1] - m_start[i]));
    }
    size_t size() const { return m_start.size() - 1; }

private:
    void append(const QString &text)
    {
        const size_t start = m_units.size();
        for (const QChar c : text) {
            if (c.unicode() >= 0x80) {
                m_units.resize(start);
                const QString folded = text.toCaseFolded();
                m_units.insert(m_units.end(), folded.cbegin(), folded.cend());
                return;
            }
            m_units.push_back(c.unicode() >= u'A' && c.unicode() <= u'Z' ? QChar(c.unicode() + 32)
                                                                         : c);
        }
    }

    std::vector<QChar> m_units;
    std::vector<size_t> m_start;
};

// The order of the rows by their case-folded texts, rows with equal texts in the order given,
// and for each place of that order whether its text equals the one before.
std::vector<qint32> sortedOrder(const std::vector<CheckListItem> &items, std::vector<bool> *same)
{
    const FoldedKeys keys(items);
    const size_t n = keys.size();
    // Texts often share a long beginning (codes, numbered names): the first four code units
    // after the beginning that all share, in one integer, decide most comparisons at once.
    qsizetype common = n > 0 ? keys[0].size() : 0;
    for (size_t i = 1; i < n && common > 0; ++i) {
        const QStringView a = keys[0], b = keys[i];
        qsizetype k = 0;
        const qsizetype limit = std::min({common, a.size(), b.size()});
        while (k < limit && a[k] == b[k])
            ++k;
        common = k;
    }
    struct Entry
    {
        quint64 head;
        qint32 row;
    };
    std::vector<Entry> order(n);
    for (size_t i = 0; i < n; ++i) {
        const QStringView key = keys[i];
        quint64 head = 0;
        for (qsizetype j = common; j < common + 4; ++j)
            head = (head << 16) | (j < key.size() ? key[j].unicode() : 0);
        order[i] = {head, qint32(i)};
    }
    const auto compare = [&keys, common](const Entry &a, const Entry &b) {
        if (a.head != b.head)
            return a.head < b.head ? -1 : 1;
        return keys[size_t(a.row)].mid(common).compare(keys[size_t(b.row)].mid(common));
    };
    const auto less = [&compare](const Entry &a, const Entry &b) { return compare(a, b) < 0; };
    if (!std::is_sorted(order.cbegin(), order.cend(), less))
        std::stable_sort(order.begin(), order.end(), less);
    same->assign(n, false);
    std::vector<qint32> rows(n);
    for (size_t j = 0; j < n; ++j) {
        rows[j] = order[j].row;
        if (j > 0)
            (*same)[j] = compare(order[j - 1], order[j]) == 0;
    }
    return rows;
}

} // namespace

CheckListModel::CheckListModel(QObject *parent)
    : QAbstractListModel(parent)
{ }

CheckListModel::~CheckListModel() = default;

int CheckListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant CheckListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return text(index.row());
    case Qt::CheckStateRole:
        return int(isChecked(index.row()) ? Qt::Checked : Qt::Unchecked);
    case ItemValueRole:
        return id(index.row());
    default:
        return {};
    }
}

bool CheckListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const bool checked = value.toInt() == Qt::Checked;
    Row &row = m_rows[size_t(index.row())];
    if (row.checked == checked)
        return true;
    row.checked = checked;
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    if (checked)
        Q_EMIT rowChecked(index.row());
    return true;
}

Qt::ItemFlags CheckListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
        | Qt::ItemNeverHasChildren;
}

void CheckListModel::load(std::vector<CheckListItem> items)
{
    if (items.size() > size_t(MaxRows))
        throw Error(Overflow);
    beginResetModel();
    m_ranks.clear();
    m_items.clear();
    m_items.reserve(items.size());
    // Each text is copied into memory of the model's own, in the model's order: every later walk
    // over the rows (checks read back, texts matched) then reads memory in order, instead of
    // jumping about the caller's array and the other holders of its texts.
    const auto add = [this](const CheckListItem &item) {
        m_items.push_back({QString(item.text.constData(), item.text.size()), item.id});
    };
    if (m_sorted) {
        // Loaded in the sorted order, a row's place is its rank: equal texts share the first.
        std::vector<bool> same;
        const std::vector<qint32> order = sortedOrder(items, &same);
        m_ranks.resize(items.size());
        for (size_t j = 0; j < order.size(); ++j) {
            add(items[size_t(order[j])]);
            m_ranks[j] = same[j] ? m_ranks[j - 1] : qint32(j);
        }
    } else {
        for (const CheckListItem &item : items)
            add(item);
    }
    m_rows.resize(m_items.size());
    for (size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i] = {qint32(i), false};
    endResetModel();
}

void CheckListModel::clear()
{
    beginResetModel();
    m_items.clear();
    m_ranks.clear();
    m_rows.clear();
    endResetModel();
}

const std::vector<qint32> &CheckListModel::ranks()
{
    if (m_ranks.size() != m_items.size()) {
        std::vector<bool> same;
        const std::vector<qint32> order = sortedOrder(m_items, &same);
        m_ranks.resize(order.size());
        for (size_t j = 0; j < order.size(); ++j)
            m_ranks[size_t(order[j])] = same[j] ? m_ranks[size_t(order[j - 1])] : qint32(j);
    }
    return m_ranks;
}

void CheckListModel::show(const std::vector<qint32> &items,
                          const std::function<bool(const QString &)> &checked)
{
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(std::min(items.size(), size_t(MaxRows)));
    for (const qint32 item : items) {
        if (m_rows.size() == size_t(MaxRows))
            break;
        if (item >= 0 && size_t(item) < m_items.size())
            m_rows.push_back({item, checked(m_items[size_t(item)].text)});
    }
    if (m_sorted) {
        const std::vector<qint32> &rank = ranks();
        const auto less = [&rank](const Row &a, const Row &b) {
            return rank[size_t(a.item)] < rank[size_t(b.item)];
        };
        if (!std::is_sorted(m_rows.cbegin(), m_rows.cend(), less))
            std::stable_sort(m_rows.begin(), m_rows.end(), less);
    }
    endResetModel();
}

void CheckListModel::clearRows()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

int CheckListModel::checkedCount() const
{
    return int(
        std::count_if(m_rows.cbegin(), m_rows.cend(), [](const Row &r) { return r.checked; }));
}

void CheckListModel::setChecks(const std::function<bool(int, bool)> &state)
{
    bool changed = false;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const bool now = state(int(i), m_rows[i].checked);
        changed = changed || now != m_rows[i].checked;
        m_rows[i].checked = now;
    }
    if (changed)
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {Qt::CheckStateRole});
}

} // namespace zelkon
