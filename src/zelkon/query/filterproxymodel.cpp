#include <zelkon/query/filterproxymodel.h>

#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filtercondition_p.h>

namespace zelkon {

class FilterProxyModelPrivate
{
public:
    // The source column of each term, -1 when the model has none of that name; found again
    // whenever the condition or the source's columns change.
    void mapColumns(const QAbstractItemModel *source)
    {
        columns.clear();
        for (const FilterTerm &term : FilterConditionPrivate::termsOf(condition))
            columns.append(source ? columnOf(source, term.column) : -1);
    }

    static int columnOf(const QAbstractItemModel *source, const QString &name)
    {
        const QString bare = name.mid(name.lastIndexOf(QLatin1Char('.')) + 1);
        for (int c = 0; c < source->columnCount(); ++c) {
            const QString header = source->headerData(c, Qt::Horizontal).toString();
            if (header.compare(name, Qt::CaseInsensitive) == 0
                || header.compare(bare, Qt::CaseInsensitive) == 0)
                return c;
        }
        return -1;
    }

    FilterCondition condition;
    QList<int> columns;
};

FilterProxyModel::FilterProxyModel(QObject *parent)
    : QSortFilterProxyModel(parent)
    , d(std::make_unique<FilterProxyModelPrivate>())
{
    const auto remap = [this] {
        d->mapColumns(sourceModel());
        invalidateFilter();
    };
    connect(this, &QSortFilterProxyModel::sourceModelChanged, this, [this, remap] {
        if (QAbstractItemModel *source = sourceModel()) {
            connect(source, &QAbstractItemModel::headerDataChanged, this, remap);
            connect(source, &QAbstractItemModel::modelReset, this, remap);
            connect(source, &QAbstractItemModel::columnsInserted, this, remap);
            connect(source, &QAbstractItemModel::columnsRemoved, this, remap);
        }
        remap();
    });
}

FilterProxyModel::~FilterProxyModel() = default;

void FilterProxyModel::setCondition(const FilterCondition &condition)
{
    d->condition = condition;
    d->mapColumns(sourceModel());
    invalidateFilter();
}

FilterCondition FilterProxyModel::condition() const
{
    return d->condition;
}

bool FilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const QList<FilterTerm> &terms = FilterConditionPrivate::termsOf(d->condition);
    const QAbstractItemModel *source = sourceModel();
    for (qsizetype i = 0; i < terms.size(); ++i) {
        const int column = d->columns.value(i, -1);
        if (column < 0
            || !terms.at(i).accepts(source->index(sourceRow, column, sourceParent).data()))
            return false;
    }
    return true;
}

} // namespace zelkon
