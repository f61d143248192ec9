#include <zelkon/data/criterion_p.h>
#include <zelkon/data/dataerror.h>

#include <zelkon/common/conversions.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/variants.h>

#include <QLocale>

#include <algorithm>

namespace zelkon {

namespace {

[[noreturn]] void refuse(const QString &criterion, const QString &why)
{
    throw Error(BadArguments,
                QStringLiteral("Cannot read the criterion \"%1\": %2").arg(criterion, why));
}

bool isWildcard(QChar c)
{
    return c == QLatin1Char('%') || c == QLatin1Char('*');
}

// Dates between number signs are read in the invariant forms only, never in the user's locale,
// so that a criterion built by code means the same date on every machine.
QDateTime readDate(const QString &text)
{
    const QString t = text.trimmed();
    // QDate's ISO reading stops after the day and would drop a time that follows it.
    const QDate day = t.size() == 10 ? QDate::fromString(t, Qt::ISODate) : QDate();
    if (day.isValid())
        return QDateTime(day, QTime(0, 0));
    const QDateTime moment = QDateTime::fromString(t, Qt::ISODate);
    if (moment.isValid())
        return moment;
    static const QStringList formats
        = {QStringLiteral("yyyy-MM-dd HH:mm:ss"), QStringLiteral("yyyy-MM-dd HH:mm"),
           QStringLiteral("M/d/yyyy"), QStringLiteral("M/d/yyyy H:mm:ss"),
           QStringLiteral("M/d/yyyy H:mm")};
    const QLocale c = QLocale::c();
    for (const QString &format : formats) {
        const QDateTime dt = c.toDateTime(t, format);
        if (dt.isValid())
            return dt;
    }
    return {};
}

bool readNumber(QStringView text, double *number)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (ok)
        *number = value;
    return ok;
}

QDateTime toDateTime(const QVariant &v)
{
    if (v.metaType().id() == QMetaType::QDate)
        return QDateTime(v.toDate(), QTime(0, 0));
    return v.toDateTime();
}

QString toText(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return v.toString(); // exact, where a trip through double would round
    default:
        break;
    }
    QString text;
    if (attempt([&] { text = CStr(v); }))
        return text;
    return v.toString();
}

template<typename T>
int threeWay(const T &a, const T &b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

int compareText(QStringView a, QStringView b)
{
    const int c = a.compare(b, Qt::CaseInsensitive);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

} // namespace

Criterion::Criterion(const QString &text)
{
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto skipBlanks = [&] {
        while (i < n && text.at(i).isSpace())
            ++i;
    };

    skipBlanks();
    if (i < n && text.at(i) == QLatin1Char('[')) {
        const qsizetype close = text.indexOf(QLatin1Char(']'), i + 1);
        if (close < 0)
            refuse(text, QStringLiteral("unclosed '['"));
        m_column = text.mid(i + 1, close - i - 1).trimmed();
        i = close + 1;
    } else {
        const qsizetype begin = i;
        while (i < n && (text.at(i).isLetterOrNumber() || text.at(i) == QLatin1Char('_')))
            ++i;
        m_column = text.mid(begin, i - begin);
    }
    if (m_column.isEmpty())
        refuse(text, QStringLiteral("no column name"));

    skipBlanks();
    const QStringView rest = QStringView(text).mid(i);
    if (rest.startsWith(u"<=")) {
        m_op = Operator::LessOrEqual;
        i += 2;
    } else if (rest.startsWith(u">=")) {
        m_op = Operator::GreaterOrEqual;
        i += 2;
    } else if (rest.startsWith(u"<>")) {
        m_op = Operator::NotEqual;
        i += 2;
    } else if (rest.startsWith(u"=")) {
        m_op = Operator::Equal;
        i += 1;
    } else if (rest.startsWith(u"<")) {
        m_op = Operator::Less;
        i += 1;
    } else if (rest.startsWith(u">")) {
        m_op = Operator::Greater;
        i += 1;
    } else if (rest.startsWith(u"like", Qt::CaseInsensitive)
               && (rest.size() == 4 || rest.at(4).isSpace() || rest.at(4) == QLatin1Char('\'')
                   || rest.at(4) == QLatin1Char('#'))) {
        m_op = Operator::Like;
        i += 4;
    } else {
        refuse(text, QStringLiteral("no comparison operator after the column name"));
    }

    skipBlanks();
    if (i >= n)
        refuse(text, QStringLiteral("no value"));
    const QChar open = text.at(i);
    if (open == QLatin1Char('\'') || open == QLatin1Char('#')) {
        // No escape for the delimiter: an apostrophe inside the text ends it early, and the
        // rest of the text then makes the criterion unreadable.
        const qsizetype close = text.indexOf(open, i + 1);
        if (close < 0)
            refuse(text, QStringLiteral("unclosed %1").arg(open));
        m_text = text.mid(i + 1, close - i - 1);
        i = close + 1;
        m_kind = Kind::Text;
        if (open == QLatin1Char('#')) {
            m_date = readDate(m_text);
            if (m_date.isValid())
                m_kind = Kind::Date;
        }
        m_textIsNumber = m_kind == Kind::Text && readNumber(m_text, &m_number);
    } else {
        const qsizetype begin = i;
        if (i < n && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
            ++i;
        while (
            i < n
            && (text.at(i).isDigit() || text.at(i) == QLatin1Char('.')
                || text.at(i) == QLatin1Char('e') || text.at(i) == QLatin1Char('E')
                || ((text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))
                    && (text.at(i - 1) == QLatin1Char('e') || text.at(i - 1) == QLatin1Char('E')))))
            ++i;
        m_text = text.mid(begin, i - begin);
        if (!readNumber(m_text, &m_number))
            refuse(text, QStringLiteral("the value is neither 'text', #date# nor a number"));
        m_kind = Kind::Number;
    }
    skipBlanks();
    if (i < n)
        refuse(text, QStringLiteral("unexpected \"%1\" after the value").arg(text.mid(i)));

    if (m_op == Operator::Like) {
        if (open != QLatin1Char('\'') && open != QLatin1Char('#'))
            refuse(text, QStringLiteral("LIKE needs a quoted text"));
        m_kind = Kind::Text;
        QString pattern = m_text;
        if (pattern.size() == 1 && isWildcard(pattern.at(0))) {
            m_pattern = Pattern::Prefix;
            pattern.clear();
        } else {
            const bool leading = !pattern.isEmpty() && isWildcard(pattern.front());
            const bool trailing = pattern.size() > 1 && isWildcard(pattern.back());
            if (leading && !trailing)
                refuse(text,
                       QStringLiteral("a wildcard may stand only at the end or at both ends"));
            if (trailing)
                pattern.chop(1);
            if (leading)
                pattern.remove(0, 1);
            m_pattern = leading ? Pattern::Contains : (trailing ? Pattern::Prefix : Pattern::Whole);
        }
        if (std::any_of(pattern.cbegin(), pattern.cend(), isWildcard))
            refuse(text, QStringLiteral("a wildcard may stand only at the end or at both ends"));
        m_text = pattern;
    }
}

bool Criterion::holds(int comparison) const
{
    switch (m_op) {
    case Operator::Equal:
    case Operator::Like:
        return comparison == 0;
    case Operator::NotEqual:
        return comparison != 0;
    case Operator::Less:
        return comparison < 0;
    case Operator::Greater:
        return comparison > 0;
    case Operator::LessOrEqual:
        return comparison <= 0;
    case Operator::GreaterOrEqual:
        return comparison >= 0;
    }
    return false;
}

bool Criterion::matchesText(QStringView text) const
{
    if (m_op == Operator::Like) {
        switch (m_pattern) {
        case Pattern::Prefix:
            return text.startsWith(m_text, Qt::CaseInsensitive);
        case Pattern::Contains:
            return text.contains(m_text, Qt::CaseInsensitive);
        case Pattern::Whole:
            return text.compare(m_text, Qt::CaseInsensitive) == 0;
        }
        return false;
    }
    switch (m_kind) {
    case Kind::Text:
        return holds(compareText(text, m_text));
    case Kind::Number: {
        double number = 0;
        if (readNumber(text, &number))
            return holds(threeWay(number, m_number));
        return holds(compareText(text, m_text));
    }
    case Kind::Date: {
        const QDateTime date = readDate(text.toString());
        if (date.isValid())
            return holds(threeWay(date, m_date));
        return holds(compareText(text, m_text));
    }
    }
    return false;
}

bool Criterion::matches(const QVariant &value) const
{
    if (value.metaType().id() == QMetaType::QString)
        return matchesText(*static_cast<const QString *>(value.constData()));
    if (IsNull(value) || IsEmpty(value))
        return false; // Null is no value: it neither equals nor differs from anything
    return matchesOther(value);
}

bool Criterion::matchesOther(const QVariant &value) const
{
    if (m_op == Operator::Like)
        return matchesText(toText(value));
    const bool number = isNumberType(value) || value.metaType().id() == QMetaType::Bool;
    const bool date = isDateType(value) || value.metaType().id() == QMetaType::QDate;
    switch (m_kind) {
    case Kind::Number:
        if (number)
            return holds(threeWay(CDbl(value), m_number));
        if (date)
            return holds(threeWay(toSerialDate(toDateTime(value)), m_number));
        break;
    case Kind::Date:
        if (date)
            return holds(threeWay(toDateTime(value), m_date));
        if (number)
            return holds(threeWay(CDbl(value), toSerialDate(m_date)));
        break;
    case Kind::Text:
        if (number && m_textIsNumber)
            return holds(threeWay(CDbl(value), m_number));
        if (date) {
            const QDateTime literal = readDate(m_text);
            if (literal.isValid())
                return holds(threeWay(toDateTime(value), literal));
        }
        break;
    }
    return holds(compareText(toText(value), m_text));
}

} // namespace zelkon
