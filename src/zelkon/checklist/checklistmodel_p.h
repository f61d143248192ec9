// zelkon::CheckListModel: the rows of a check list, loaded once, and the shown rows with their
// checks.
#pragma once

#include <QAbstractListModel>

#include <functional>
#include <vector>

namespace zelkon {

// One loaded row: its text and its 32-bit item value.
struct CheckListItem
{
    QString text;
    qint32 id = 0;
};

// Holds every loaded row once (the snapshot) and the rows that the list shows: each shown row
// names a loaded row and carries its own check, so one loaded row may be shown more than once.
// A sorted model shows its rows in ascending order of their texts without regard to case; rows
// whose texts compare equal keep the order in which they were given, as if each had been added
// at its place one after the other.
class CheckListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    // The row counters of the list are 16-bit: one row more is an overflow.
    static constexpr int MaxRows = 32767;
    // The role under which a row's item value is read.
    static constexpr int ItemValueRole = Qt::UserRole;

    explicit CheckListModel(QObject *parent = nullptr);
    ~CheckListModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    bool isSorted() const { return m_sorted; }
    void setSorted(bool sorted) { m_sorted = sorted; }

    // The loaded rows. Loading puts them in the model's order and shows every one of them,
    // unchecked; an overflow of the row counters is error 6.
    const std::vector<CheckListItem> &items() const { return m_items; }
    void load(std::vector<CheckListItem> items);
    // No loaded rows and no shown rows.
    void clear();
    // Shows the loaded rows named (numbers that name none are skipped, at most MaxRows), each
    // checked when `checked(text)` says so; a sorted model puts them in its order.
    void show(const std::vector<qint32> &items,
              const std::function<bool(const QString &)> &checked);
    void clearRows();

    const QString &text(int row) const { return m_items[size_t(m_rows[size_t(row)].item)].text; }
    qint32 id(int row) const { return m_items[size_t(m_rows[size_t(row)].item)].id; }
    bool isChecked(int row) const { return m_rows[size_t(row)].checked; }
    int checkedCount() const;

    // Sets every row's check to what `state(row, checked)` gives, as one change for the views.
    void setChecks(const std::function<bool(int row, bool checked)> &state);

Q_SIGNALS:
    // A row was checked through setData (a click or the space key on the row).
    void rowChecked(int row);

private:
    struct Row
    {
        qint32 item;
        bool checked;
    };
    // The place of every loaded row in the sorted order; rows with equal texts share one.
    const std::vector<qint32> &ranks();

    std::vector<CheckListItem> m_items;
    std::vector<qint32> m_ranks; // empty until a sorted model needs them
    std::vector<Row> m_rows;
    bool m_sorted = false;
};

} // namespace zelkon
