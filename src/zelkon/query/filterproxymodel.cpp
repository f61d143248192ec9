#include <zelkon/query/filterproxymodel.h>

#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filtercondition_p.h>

#include <algorithm>
#include <vector>

namespace zelkon {

namespace {

// A list of identifiers or texts sorted once, so that each row costs a binary search rather
// than a pass over thousands of checked values. Other terms are tested as they stand.
struct SortedList
{
    explicit SortedList(const FilterTerm &term)
    {
        const bool list = term.op == FilterTerm::Op::In || term.op == FilterTerm::Op::NotIn;
        if (!list || term.values.isEmpty())
            return;
        if (term.kind == FilterTerm::Kind::Integer) {
            integers.reserve(size_t(term.values.size()));
            for (const QVariant &value : term.values)
                integers.push_back(value.toLongLong());
            std::sort(integers.begin(), integers.end());
            used = true;
        } else if (term.kind == FilterTerm::Kind::Text) {
            for (const QVariant &value : term.values)
                texts.append(value.toString());
            std::sort(texts.begin(), texts.end());
            used = true;
        }
    }

    // As FilterTerm::accepts: a cell that does not read as the term's kind matches neither way.
    bool accepts(const FilterTerm &term, const QVariant &cell) const
    {
        if (!cell.isValid() || cell.isNull())
            return false;
        bool found = false;
        if (term.kind == FilterTerm::Kind::Integer) {
            bool ok = false;
            const qlonglong n = cell.toLongLong(&ok);
            if (!ok)
                return false;
            found = std::binary_search(integers.begin(), integers.end(), n);
        } else {
            found = std::binary_search(texts.begin(), texts.end(), cell.toString());
        }
        return term.op == FilterTerm::Op::In ? found : !found;
    }

    bool used = false;
    std::vector<qlonglong> integers;
    QStringList texts;
};

} // namespace

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

    void sortLists()
    {
        lists.clear();
        for (const FilterTerm &term : FilterConditionPrivate::termsOf(condition))
            lists.emplace_back(term);
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
    std::vector<SortedList> lists; // one a term
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
    d->sortLists();
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
        if (column < 0)
            return false;
        const QVariant cell = source->index(sourceRow, column, sourceParent).data();
        const SortedList &list = d->lists.at(size_t(i));
        if (!(list.used ? list.accepts(terms.at(i), cell) : terms.at(i).accepts(cell)))
            return false;
    }
    return true;
}

} // namespace zelkon
