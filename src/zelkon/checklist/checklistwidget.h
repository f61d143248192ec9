// zelkon::CheckListWidget: a list of check-box rows, each with a text and a 32-bit item value,
// either in the order added or sorted by text without regard to case.
#pragma once

#include <zelkon/common/global.h>

#include <QListWidget>

#include <functional>

namespace zelkon {

struct CheckRow
{
    QString text;
    qint32 id = 0;
    bool checked = false;
};

class ZELKON_EXPORT CheckListWidget : public QListWidget
{
    Q_OBJECT

public:
    // The row counters of the list are 16-bit: one row more is an overflow.
    static constexpr int MaxRows = 32767;
    // The role under which a row's item value is read and written.
    static constexpr int ItemValueRole = Qt::UserRole;

    explicit CheckListWidget(bool sorted, QWidget *parent = nullptr);

    bool isSorted() const { return m_sorted; }

    // Replaces every row. A sorted list puts the rows in ascending order of their texts without
    // regard to case; rows that compare equal keep the order given, which is where the list would
    // have put each of them had they been added one after the other. `inOrder` says that the
    // rows are in that order already.
    void fill(QList<CheckRow> rows, bool inOrder = false);
    void clearRows();

    QString rowText(int row) const;
    qint32 itemValue(int row) const;
    bool isChecked(int row) const;
    int checkedCount() const;
    // The texts and item values of the checked rows, in list order.
    void checkedRows(QVariantList *texts, QVariantList *ids) const;
    // Every row as text, item value and check, in list order.
    QList<CheckRow> rows() const;

    // Sets every row's check to what `state(row, checked)` gives, as one change: the list is
    // repainted once and no itemChanged is emitted per row. Returns the last row that went from
    // unchecked to checked, or -1.
    int setChecks(const std::function<bool(int row, bool checked)> &state);

    // The height of one row as the style draws it, also while the list is empty.
    int rowHeight() const;

    // The row shown at the top (the scroll position).
    int topRow() const;
    void setTopRow(int row);

    // Puts rows in the order in which a sorted list shows them: texts compared by their case
    // folding, code unit by code unit; rows with equal texts keep their order.
    static void sortRows(QList<CheckRow> &rows);

    // Tells the view, and itemChanged, that a row's text, check or item value changed.
    void rowDataChanged(QListWidgetItem *row, int role);

private:
    bool m_sorted;
};

} // namespace zelkon
