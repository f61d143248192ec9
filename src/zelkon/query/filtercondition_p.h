// The terms of a filter condition, shared by the builder, the SQL text and the proxy model.
#pragma once

#include <zelkon/query/filtercondition.h>

#include <QList>
#include <QVariant>

class QSqlDriver;

namespace zelkon {

// One restriction on one column.
struct FilterTerm
{
    enum class Op { In, NotIn, AtLeast, AtMost, Below, Equal };
    // How a cell is compared with the values: the type the database compares in.
    enum class Kind { Integer, Number, Text, Date, DateTime, Variant };

    QString column;
    Op op;
    Kind kind;
    QVariantList values; // one for the comparisons, one or more for the lists

    // Whether a cell of the column satisfies the term; null and empty cells never do.
    bool accepts(const QVariant &cell) const;
};

class FilterConditionPrivate
{
public:
    // Builds the text for the driver (standard SQL quoting when null).
    static FilterCondition make(QList<FilterTerm> terms, const QSqlDriver *driver);
    static const QList<FilterTerm> &termsOf(const FilterCondition &condition);

    QList<FilterTerm> terms;
    QString where;
};

} // namespace zelkon
