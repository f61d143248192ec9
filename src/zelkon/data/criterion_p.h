// zelkon::Criterion: one "column operator value" condition of Find, evaluated in memory.
#pragma once

#include <zelkon/common/global.h>

#include <QDateTime>
#include <QString>
#include <QVariant>

namespace zelkon {

// Grammar: column (a name, or [a name with blanks]), an operator (=, <>, <, >, <=, >=, LIKE),
// then a value: 'text' (no apostrophe inside: there is no escape), #date# (#yyyy-MM-dd# or
// #M/d/yyyy#, an optional time; #text# that is no date is text), or a number. LIKE takes text
// with % or * at the end (prefix) or at both ends (contains); without them it is equality.
// Text is compared without regard to case. Null never matches, not even "<>".
// The criterion is only ever evaluated here, never handed to a database.
class Criterion
{
public:
    enum class Operator { Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual, Like };

    // Error 3001 when the text does not follow the grammar.
    explicit Criterion(const QString &text);

    QString columnName() const { return m_column; }
    Operator op() const { return m_op; }
    bool matches(const QVariant &value) const;

private:
    enum class Kind { Text, Number, Date };
    enum class Pattern { Whole, Prefix, Contains };

    bool holds(int comparison) const;
    bool matchesText(QStringView text) const;
    bool matchesOther(const QVariant &value) const;

    QString m_column;
    Operator m_op = Operator::Equal;
    Kind m_kind = Kind::Text;
    Pattern m_pattern = Pattern::Whole;
    QString m_text; // the literal as written (the LIKE pattern without its wildcards)
    double m_number = 0;
    bool m_textIsNumber = false; // a 'text' literal that also reads as a number
    QDateTime m_date;
};

} // namespace zelkon
