// zelkon::FilterProxyModel: a FilterCondition applied to the rows of a model in memory.
#pragma once

#include <zelkon/common/global.h>

#include <QSortFilterProxyModel>

#include <memory>

namespace zelkon {

class FilterCondition;
class FilterProxyModelPrivate;

/// Shows the rows of its source model that a FilterCondition accepts: the rows a database
/// returns for the same condition on the same data. Columns are found by their horizontal
/// header text (case-insensitive, a "table." prefix of the condition's column ignored); a
/// condition on a column the model lacks accepts no row. A cell that is null or empty fails
/// every term, as NULL does in SQL.
class ZELKON_EXPORT FilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    /// A proxy with an empty condition: every row.
    explicit FilterProxyModel(QObject *parent = nullptr);
    /// Leaves the source model as it is.
    ~FilterProxyModel() override;

    /// The condition applied to the rows; the rows are filtered again at once.
    void setCondition(const FilterCondition &condition);
    /// The condition applied.
    FilterCondition condition() const;

protected:
    /// Whether the condition accepts the source row.
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    std::unique_ptr<FilterProxyModelPrivate> d;
};

} // namespace zelkon
