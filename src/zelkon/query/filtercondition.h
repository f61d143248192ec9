// zelkon::FilterCondition: one snapshot of a filter form, as a parameterised SQL condition.
#pragma once

#include <zelkon/common/global.h>

#include <QString>
#include <QVariantList>

#include <memory>

class QSqlQuery;

namespace zelkon {

class FilterConditionPrivate;

/// A filter condition taken from the bound controls at one moment: the text with one "?" per
/// value, the values in the order of their placeholders, and the terms that a FilterProxyModel
/// applies to rows in memory. Copies are cheap and independent of the controls.
class ZELKON_EXPORT FilterCondition
{
public:
    /// An empty condition: no restriction.
    FilterCondition();
    /// Copies the snapshot.
    FilterCondition(const FilterCondition &other);
    /// Copies the snapshot.
    FilterCondition &operator=(const FilterCondition &other);
    /// Releases this copy of the snapshot.
    ~FilterCondition();

    /// True when no control restricts anything: where() is then "".
    bool isEmpty() const;
    /// The condition without the word WHERE, terms joined by AND, identifiers quoted by the
    /// driver the condition was built for; "" when empty.
    QString where() const;
    /// The values of the placeholders of where(), in order.
    QVariantList values() const;
    /// Adds values() to a query prepared with where() in it (QSqlQuery::addBindValue).
    void bindValues(QSqlQuery &query) const;

private:
    friend class FilterConditionPrivate;
    std::shared_ptr<const FilterConditionPrivate> d;
};

} // namespace zelkon
