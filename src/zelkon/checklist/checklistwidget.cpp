#include <zelkon/checklist/checklistwidget.h>

#include <zelkon/common/error.h>

#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace zelkon {

namespace {

constexpr int ItemValueRole = Qt::UserRole;

} // namespace

CheckListWidget::CheckListWidget(bool sorted, QWidget *parent)
    : QListWidget(parent)
    , m_sorted(sorted)
{
    // Every row has the same height; without this the view measures each of up to 32767 rows.
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
}

bool CheckListWidget::lessThan(const QString &a, const QString &b)
{
    return QString::compare(a, b, Qt::CaseInsensitive) < 0;
}

void CheckListWidget::sortRows(QList<CheckRow> &rows)
{
    const auto less = [](const CheckRow &a, const CheckRow &b) { return lessThan(a.text, b.text); };
    if (!std::is_sorted(rows.cbegin(), rows.cend(), less))
        std::stable_sort(rows.begin(), rows.end(), less);
}

void CheckListWidget::fill(QList<CheckRow> rows)
{
    if (rows.size() > MaxRows)
        throw Error(Overflow);
    if (m_sorted)
        sortRows(rows);
    const bool updates = updatesEnabled();
    setUpdatesEnabled(false);
    clear();
    for (const CheckRow &row : std::as_const(rows)) {
        auto *item = new QListWidgetItem(row.text);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setData(ItemValueRole, row.id);
        item->setCheckState(row.checked ? Qt::Checked : Qt::Unchecked);
        addItem(item);
    }
    setUpdatesEnabled(updates);
}

void CheckListWidget::clearRows()
{
    clear();
}

QString CheckListWidget::rowText(int row) const
{
    const QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    return it->text();
}

qint32 CheckListWidget::itemValue(int row) const
{
    const QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    return it->data(ItemValueRole).value<qint32>();
}

bool CheckListWidget::isChecked(int row) const
{
    const QListWidgetItem *it = item(row);
    if (!it)
        throw Error(SubscriptOutOfRange);
    return it->checkState() == Qt::Checked;
}

int CheckListWidget::checkedCount() const
{
    int checked = 0;
    const int rows = count();
    for (int i = 0; i < rows; ++i) {
        if (item(i)->checkState() == Qt::Checked)
            ++checked;
    }
    return checked;
}

int CheckListWidget::setChecks(const std::function<bool(int, bool)> &state)
{
    int newest = -1;
    {
        const QSignalBlocker blocker(model());
        const int rows = count();
        for (int i = 0; i < rows; ++i) {
            QListWidgetItem *it = item(i);
            const bool was = it->checkState() == Qt::Checked;
            const bool now = state(i, was);
            if (now == was)
                continue;
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
