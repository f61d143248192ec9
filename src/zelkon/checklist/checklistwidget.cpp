#include <zelkon/checklist/checklistwidget.h>

#include <zelkon/common/error.h>

#include <QSignalBlocker>

#include <algorithm>
#include <numeric>
#include <vector>

namespace zelkon {

namespace {

constexpr int CheckItemType = QListWidgetItem::UserType + 1;

// A row that keeps its text, item value and check in plain members, so that reading the checks
// of tens of thousands of rows does not build a variant per row and role. The view still reads
// and writes them through data() and setData().
class CheckItem : public QListWidgetItem
{
public:
    explicit CheckItem(const CheckRow &row)
        : QListWidgetItem(nullptr, CheckItemType)
        , m_text(row.text)
        , m_id(row.id)
        , m_checked(row.checked)
    {
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    }

    QVariant data(int role) const override
    {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return m_text;
        case Qt::CheckStateRole:
            return int(m_checked ? Qt::Checked : Qt::Unchecked);
        case CheckListWidget::ItemValueRole:
            return m_id;
        default:
            return QListWidgetItem::data(role);
        }
    }

    void setData(int role, const QVariant &value) override
    {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            if (value.toString() == m_text)
                return;
            m_text = value.toString();
            break;
        case Qt::CheckStateRole:
            if ((value.toInt() == Qt::Checked) == m_checked)
                return;
            m_checked = value.toInt() == Qt::Checked;
            break;
        case CheckListWidget::ItemValueRole:
            if (value.toInt() == m_id)
                return;
            m_id = value.toInt();
            break;
        default:
            QListWidgetItem::setData(role, value);
            return;
        }
        if (auto *list = qobject_cast<CheckListWidget *>(listWidget()))
            list->rowDataChanged(this, role);
    }

    const QString &text() const { return m_text; }
    qint32 id() const { return m_id; }
    bool checked() const { return m_checked; }
    void setCheckedQuietly(bool checked) { m_checked = checked; }

private:
    QString m_text;
    qint32 m_id;
    bool m_checked;
};

CheckItem *checkItem(QListWidgetItem *item)
{
    return item && item->type() == CheckItemType ? static_cast<CheckItem *>(item) : nullptr;
}

} // namespace

CheckListWidget::CheckListWidget(bool sorted, QWidget *parent)
    : QListWidget(parent)
    , m_sorted(sorted)
{
    // Every row has the same height; without this the view measures each of up to 32767 rows.
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

QString CheckListWidget::foldedKey(const QString &text)
{
    // Most row texts are plain ASCII, where folding is lowering A to Z; anything else takes the
    // full Unicode case folding.
    const qsizetype n = text.size();
    QString key(n, Qt::Uninitialized);
    const auto *from = reinterpret_cast<const char16_t *>(text.constData());
    auto *to = reinterpret_cast<char16_t *>(key.data());
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = from[i];
        if (c >= 0x80)
            return text.toCaseFolded();
        to[i] = c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    }
    return key;
}

bool CheckListWidget::lessThan(const QString &a, const QString &b)
{
    return foldedKey(a) < foldedKey(b);
}

void CheckListWidget::sortRows(QList<CheckRow> &rows)
{
    // Each text is folded once, not once per comparison.
    const qsizetype n = rows.size();
    QList<QString> keys;
    keys.reserve(n);
    for (const CheckRow &row : std::as_const(rows))
        keys.append(foldedKey(row.text));
    bool inOrder = true;
    for (qsizetype i = 1; i < n && inOrder; ++i)
        inOrder = !(keys.at(i) < keys.at(i - 1));
    if (inOrder)
        return;
    std::vector<qsizetype> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&keys](qsizetype a, qsizetype b) { return keys.at(a) < keys.at(b); });
    QList<CheckRow> sorted;
    sorted.reserve(n);
    for (qsizetype i : order)
        sorted.append(std::move(rows[i]));
    rows = std::move(sorted);
}

void CheckListWidget::fill(QList<CheckRow> rows, bool inOrder)
{
    if (rows.size() > MaxRows)
        throw Error(Overflow);
    if (m_sorted && !inOrder)
        sortRows(rows);
    const bool updates = updatesEnabled();
    setUpdatesEnabled(false);
    clear();
    for (const CheckRow &row : std::as_const(rows))
        addItem(new CheckItem(row));
    setUpdatesEnabled(updates);
}

void CheckListWidget::rowDataChanged(QListWidgetItem *row, int role)
{
    const QModelIndex index = indexFromItem(row);
    if (index.isValid())
        Q_EMIT model()->dataChanged(index, index, {role});
}

void CheckListWidget::clearRows()
{
    clear();
}

QString CheckListWidget::rowText(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->text() : it->text();
}

qint32 CheckListWidget::itemValue(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->id() : it->data(ItemValueRole).toInt();
}

bool CheckListWidget::isChecked(int row) const
{
    QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    const CheckItem *fast = checkItem(it);
    return fast ? fast->checked() : it->checkState() == Qt::Checked;
}

int CheckListWidget::checkedCount() const
{
    int checked = 0;
    const int n = count();
    for (int i = 0; i < n; ++i) {
        if (const CheckItem *it = checkItem(item(i)))
            checked += it->checked() ? 1 : 0;
        else
            checked += item(i)->checkState() == Qt::Checked ? 1 : 0;
    }
    return checked;
}

void CheckListWidget::checkedRows(QVariantList *texts, QVariantList *ids) const
{
    const int n = count();
    texts->clear();
    ids->clear();
    texts->reserve(n);
    ids->reserve(n);
    for (int i = 0; i < n; ++i) {
        QListWidgetItem *it = item(i);
        if (const CheckItem *row = checkItem(it)) {
            if (row->checked()) {
                texts->append(row->text());
                ids->append(row->id());
            }
        } else if (it->checkState() == Qt::Checked) {
            texts->append(it->text());
            ids->append(it->data(ItemValueRole).toInt());
        }
    }
}

QList<CheckRow> CheckListWidget::rows() const
{
    QList<CheckRow> all;
    const int n = count();
    all.reserve(n);
    for (int i = 0; i < n; ++i) {
        QListWidgetItem *it = item(i);
        if (const CheckItem *row = checkItem(it))
            all.append({row->text(), row->id(), row->checked()});
        else
            all.append(
                {it->text(), it->data(ItemValueRole).toInt(), it->checkState() == Qt::Checked});
    }
    return all;
}

int CheckListWidget::setChecks(const std::function<bool(int, bool)> &state)
{
    int newest = -1;
    {
        const QSignalBlocker blocker(model());
        const int n = count();
        for (int i = 0; i < n; ++i) {
            QListWidgetItem *it = item(i);
            CheckItem *row = checkItem(it);
            const bool was = row ? row->checked() : it->checkState() == Qt::Checked;
            const bool now = state(i, was);
            if (now == was)
                continue;
            // The view learns of the change by the one repaint below.
            if (row)
                row->setCheckedQuietly(now);
            else
                it->setCheckState(now ? Qt::Checked : Qt::Unchecked);
            if (now)
                newest = i;
        }
    }
    viewport()->update();
    return newest;
}

int CheckListWidget::topRow() const
{
    const QModelIndex top = indexAt(QPoint(1, 1));
    return top.isValid() ? top.row() : 0;
}

void CheckListWidget::setTopRow(int row)
{
    if (QListWidgetItem *it = item(row))
        scrollToItem(it, QAbstractItemView::PositionAtTop);
}

} // namespace zelkon
