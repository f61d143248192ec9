#include <zelkon/query/filtercondition.h>
#include <zelkon/query/filtercondition_p.h>

#include <zelkon/common/variants.h>

#include <QDate>
#include <QDateTime>
#include <QSqlDriver>
#include <QSqlQuery>

#include <optional>

namespace zelkon {

namespace {

const FilterConditionPrivate &emptyCondition()
{
    static const FilterConditionPrivate empty;
    return empty;
}

// Whether the text is one quoted name, or several joined by '.', in a form some SQL dialect
// reads as a name: "a""b", `a``b` or [a b].
bool isQuotedName(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size()) {
        const QChar open = text.at(at);
        const QChar close = open == u'[' ? QChar(u']') : open;
        if (open != u'"' && open != u'`' && open != u'[')
            return false;
        for (++at;; ++at) {
            if (at >= text.size())
                return false;
            if (text.at(at) != close)
                continue;
            if (close != u']' && at + 1 < text.size() && text.at(at + 1) == close)
                ++at; // a doubled quote inside the name
            else
                break;
        }
        if (++at < text.size() && (text.at(at) != u'.' || ++at == text.size()))
            return false;
    }
    return !text.isEmpty();
}

QString quoted(const QString &column, const QSqlDriver *driver)
{
    // A driver leaves a name alone that looks quoted to it at one end, so its answer is taken
    // only when it is a quoted name through and through; otherwise standard SQL quoting.
    if (driver) {
        // "table.column" names a column of a table; a name the host quoted itself stays whole.
        const bool plain
            = !column.contains(u'"') && !column.contains(u'`') && !column.contains(u'[');
        QStringList parts = plain ? column.split(u'.') : QStringList{column};
        for (QString &part : parts)
            part = driver->escapeIdentifier(part, QSqlDriver::FieldName);
        const QString escaped = parts.join(u'.');
        if (isQuotedName(escaped))
            return escaped;
    }
    QString text = column;
    text.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QLatin1String operatorText(FilterTerm::Op op)
{
    switch (op) {
    case FilterTerm::Op::In:
        return QLatin1String(" IN (");
    case FilterTerm::Op::NotIn:
        return QLatin1String(" NOT IN (");
    case FilterTerm::Op::AtLeast:
        return QLatin1String(" >= ?");
    case FilterTerm::Op::AtMost:
        return QLatin1String(" <= ?");
    case FilterTerm::Op::Below:
        return QLatin1String(" < ?");
    case FilterTerm::Op::Equal:
        break;
    }
    return QLatin1String(" = ?");
}

// -1, 0 or 1 as a database orders the two values in the term's kind; nullopt when the cell does
// not read as that kind (which a database would not match either).
std::optional<int> compare(const QVariant &cell, const QVariant &value, FilterTerm::Kind kind)
{
    const auto order = [](const auto &a, const auto &b) { return a < b ? -1 : (b < a ? 1 : 0); };
    switch (kind) {
    case FilterTerm::Kind::Integer: {
        bool ok = false;
        const qlonglong n = cell.toLongLong(&ok);
        return ok ? std::optional<int>(order(n, value.toLongLong())) : std::nullopt;
    }
    case FilterTerm::Kind::Number: {
        bool ok = false;
        const double n = cell.toDouble(&ok);
        return ok ? std::optional<int>(order(n, value.toDouble())) : std::nullopt;
    }
    case FilterTerm::Kind::Date: {
        const QDate date
            = cell.typeId() == QMetaType::QDateTime ? cell.toDateTime().date() : cell.toDate();
        return date.isValid() ? std::optional<int>(order(date, value.toDate())) : std::nullopt;
    }
    case FilterTerm::Kind::DateTime: {
        const QDateTime time = cell.toDateTime();
        return time.isValid() ? std::optional<int>(order(time, value.toDateTime())) : std::nullopt;
    }
    case FilterTerm::Kind::Variant:
        if (isNumberType(value))
            return compare(cell, value, FilterTerm::Kind::Number);
        break;
    case FilterTerm::Kind::Text:
        break;
    }
    return order(cell.toString(), value.toString());
}

} // namespace

bool FilterTerm::accepts(const QVariant &cell) const
{
    if (!cell.isValid() || cell.isNull())
        return false;
    const auto is = [&](const QVariant &value, auto test) {
        const std::optional<int> c = compare(cell, value, kind);
        return c && test(*c);
    };
    switch (op) {
    case Op::In:
    case Op::NotIn: {
        bool found = false;
        bool readable = true;
        for (const QVariant &value : values) {
            const std::optional<int> c = compare(cell, value, kind);
            readable = readable && c.has_value();
            if (c == 0) {
                found = true;
                break;
            }
        }
        return op == Op::In ? found : readable && !found;
    }
    case Op::AtLeast:
        return is(values.first(), [](int c) { return c >= 0; });
    case Op::AtMost:
        return is(values.first(), [](int c) { return c <= 0; });
    case Op::Below:
        return is(values.first(), [](int c) { return c < 0; });
    case Op::Equal:
        break;
    }
    return is(values.first(), [](int c) { return c == 0; });
}

FilterCondition FilterConditionPrivate::make(QList<FilterTerm> terms, const QSqlDriver *driver)
{
    auto p = std::make_shared<FilterConditionPrivate>();
    qsizetype marks = 0;
    for (const FilterTerm &term : terms)
        marks += term.values.size();
    p->where.reserve(marks * 3 + terms.size() * 40);
    // Every term adds its quoted column, a fixed operator and one "?" per value, nothing else.
    // The values stay with their terms: a check list's thousands of identifiers are not copied.
    for (const FilterTerm &term : terms) {
        if (!p->where.isEmpty())
            p->where += QLatin1String(" AND ");
        p->where += quoted(term.column, driver);
        p->where += operatorText(term.op);
        if (term.op == FilterTerm::Op::In || term.op == FilterTerm::Op::NotIn) {
            for (qsizetype i = 0; i < term.values.size(); ++i)
                p->where += i ? QLatin1String(", ?") : QLatin1String("?");
            p->where += QLatin1Char(')');
        }
    }
    p->terms = std::move(terms);
    FilterCondition condition;
    condition.d = std::move(p);
    return condition;
}

const QList<FilterTerm> &FilterConditionPrivate::termsOf(const FilterCondition &condition)
{
    return condition.d ? condition.d->terms : emptyCondition().terms;
}

FilterCondition::FilterCondition() = default;
FilterCondition::FilterCondition(const FilterCondition &other) = default;
FilterCondition &FilterCondition::operator=(const FilterCondition &other) = default;
FilterCondition::~FilterCondition() = default;

bool FilterCondition::isEmpty() const
{
    return !d || d->terms.isEmpty();
}

QString FilterCondition::where() const
{
    return d ? d->where : QString();
}

QVariantList FilterCondition::values() const
{
    if (!d)
        return {};
    if (d->terms.size() == 1)
        return d->terms.first().values;
    QVariantList values;
    for (const FilterTerm &term : d->terms)
        values += term.values;
    return values;
}

void FilterCondition::bindValues(QSqlQuery &query) const
{
    if (!d)
        return;
    for (const FilterTerm &term : d->terms) {
        for (const QVariant &value : term.values)
            query.addBindValue(value);
    }
}

} // namespace zelkon
