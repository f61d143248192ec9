#include <zelkon/common/conversions.h>
#include <zelkon/common/decimaldigits_p.h>
#include <zelkon/common/error.h>
#include <zelkon/common/numberpattern_p.h>
#include <zelkon/common/platform.h>
#include <zelkon/common/variants.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace zelkon {

namespace {

const QDate serialBase(1899, 12, 30);
const QDate firstValidDate(100, 1, 1);
const QDate lastValidDate(9999, 12, 31);

QLocale currentLocale()
{
    return Platform::current().numberLocale();
}

[[noreturn]] void typeMismatch()
{
    throw Error(TypeMismatch);
}

void requireNotNull(const QVariant &value)
{
    if (IsNull(value))
        throw Error(InvalidUseOfNull);
}

QString layoutDigits(const detail::DecimalDigits &d, bool negative, QChar decimalPoint)
{
    QString out;
    out.reserve(d.count + 8);
    if (negative)
        out += QLatin1Char('-');
    const int e = d.exponent;
    if (e >= -4 && e <= 14) {
        if (e < 0) {
            out += QLatin1Char('0');
            out += decimalPoint;
            for (int i = 0; i < -e - 1; ++i)
                out += QLatin1Char('0');
            for (int i = 0; i < d.count; ++i)
                out += QLatin1Char(d.digits[std::size_t(i)]);
        } else {
            for (int i = 0; i <= e; ++i)
                out += QLatin1Char(i < d.count ? d.digits[std::size_t(i)] : '0');
            if (d.count > e + 1) {
                out += decimalPoint;
                for (int i = e + 1; i < d.count; ++i)
                    out += QLatin1Char(d.digits[std::size_t(i)]);
            }
        }
        return out;
    }
    out += QLatin1Char(d.digits[0]);
    if (d.count > 1) {
        out += decimalPoint;
        for (int i = 1; i < d.count; ++i)
            out += QLatin1Char(d.digits[std::size_t(i)]);
    }
    out += QLatin1Char('E');
    out += QLatin1Char(e < 0 ? '-' : '+');
    const int a = e < 0 ? -e : e;
    if (a < 10)
        out += QLatin1Char('0');
    out += QString::number(a);
    return out;
}

QString cstrFloating(double value, int maxDigits, const QLocale &locale)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    if (value == 0)
        return QStringLiteral("0");
    detail::DecimalDigits d = detail::decimalDigits(value, 0);
    if (d.count > maxDigits)
        d = detail::decimalDigits(value, maxDigits);
    return layoutDigits(d, value < 0, locale.decimalPoint().at(0));
}

double roundHalfEven(double value)
{
    return std::nearbyint(value); // the default rounding mode rounds halves to even
}

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

std::optional<QDateTime> parseDate(const QString &raw, const QLocale &locale)
{
    const QString text = raw.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    const auto valid = [](const QDateTime &dt) {
        return dt.isValid() && dt.date() >= firstValidDate && dt.date() <= lastValidDate;
    };
    static const char *const formats[] = {
        "yyyy-MM-dd HH:mm:ss",
        "yyyy-MM-dd HH:mm",
        "yyyy-MM-ddTHH:mm:ss",
        "yyyy-MM-ddTHH:mm:ss.zzz",
    };
    for (const char *f : formats) {
        const QDateTime dt = QDateTime::fromString(text, QLatin1String(f));
        if (valid(dt))
            return dt;
    }
    const QDate isoDate = QDate::fromString(text, Qt::ISODate);
    if (isoDate.isValid() && valid(isoDate.startOfDay()))
        return isoDate.startOfDay();
    for (QLocale::FormatType type : {QLocale::ShortFormat, QLocale::LongFormat}) {
        QDateTime dt = locale.toDateTime(text, type);
        if (valid(dt))
            return dt;
        const QDate date = locale.toDate(text, type);
        if (date.isValid() && valid(date.startOfDay()))
            return date.startOfDay();
    }
    // Short formats often name a two-digit year, while people type all four digits.
    QString fullYear = locale.dateFormat(QLocale::ShortFormat);
    if (!fullYear.contains(QLatin1String("yyyy"))) {
        fullYear.replace(QLatin1String("yy"), QLatin1String("yyyy"));
        const QDate date = locale.toDate(text, fullYear);
        if (date.isValid() && valid(date.startOfDay()))
            return date.startOfDay();
        const QDateTime dt = locale.toDateTime(text, fullYear + QLatin1String(" HH:mm:ss"));
        if (valid(dt))
            return dt;
    }
    return std::nullopt;
}

} // namespace

QString CStr(double value)
{
    return CStr(value, currentLocale());
}

QString CStr(double value, const QLocale &locale)
{
    return cstrFloating(value, 15, locale);
}

QString CStr(const QVariant &value)
{
    requireNotNull(value);
    if (!value.isValid())
        return QString();
    switch (value.metaType().id()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Double:
        return CStr(value.toDouble());
    case QMetaType::Float:
        return cstrFloating(double(value.toFloat()), 7, currentLocale());
    case QMetaType::QDate:
        return currentLocale().toString(value.toDate(), QLocale::ShortFormat);
    case QMetaType::QDateTime: {
        const QDateTime dt = value.toDateTime();
        const QLocale locale = currentLocale();
        if (dt.time() == QTime(0, 0))
            return locale.toString(dt.date(), QLocale::ShortFormat);
        if (dt.date() == serialBase)
            return locale.toString(dt.time(), QLocale::LongFormat);
        return locale.toString(dt.date(), QLocale::ShortFormat) + QLatin1Char(' ')
            + locale.toString(dt.time(), QLocale::LongFormat);
    }
    default:
        if (isNumberType(value))
            return value.toString();
        typeMismatch();
    }
}

bool parseNumber(QStringView text, const QLocale &locale, double *result)
{
    const QChar decimal = locale.decimalPoint().at(0);
    const QString groupText = locale.groupSeparator();
    const QChar group = groupText.isEmpty() ? QChar() : groupText.at(0);
    // A no-break space as the grouping separator is typed as a plain space more often than not.
    const bool spaceGroups = group == QChar(0x00A0) || group == QChar(0x202F);

    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n && isBlank(text.at(i)))
        ++i;
    qsizetype end = n;
    while (end > i && isBlank(text.at(end - 1)))
        --end;

    // Digits are copied in plain ASCII for from_chars; a number may have any count of them.
    std::string buf;
    buf.reserve(std::size_t(end - i));
    const auto put = [&](char c) {
        buf.push_back(c);
        return true;
    };
    if (i < end && (text.at(i) == QLatin1Char('+') || text.at(i) == QLatin1Char('-'))) {
        if (text.at(i) == QLatin1Char('-'))
            put('-');
        ++i;
    }
    int digits = 0;
    bool seenDecimal = false;
    for (; i < end; ++i) {
        const QChar c = text.at(i);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            if (!put(char(c.unicode())))
                return false;
            ++digits;
        } else if (c == decimal && !seenDecimal) {
            seenDecimal = true;
            put('.');
        } else if (!seenDecimal && !group.isNull()
                   && (c == group || (spaceGroups && c == QLatin1Char(' ')))) {
            if (digits == 0)
                return false; // a grouping separator needs digits before it
        } else {
            break;
        }
    }
    if (digits == 0)
        return false;
    if (i < end && (text.at(i) == QLatin1Char('e') || text.at(i) == QLatin1Char('E'))) {
        put('e');
        ++i;
        if (i < end && (text.at(i) == QLatin1Char('+') || text.at(i) == QLatin1Char('-'))) {
            put(char(text.at(i).unicode()));
            ++i;
        }
        int expDigits = 0;
        for (; i < end && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
            if (!put(char(text.at(i).unicode())))
                return false;
            ++expDigits;
        }
        if (expDigits == 0)
            return false;
    }
    if (i != end)
        return false;
    double value = 0;
    const char *first = buf.data();
    const char *last = first + buf.size();
    const std::from_chars_result r = std::from_chars(first, last, value);
    if (r.ec != std::errc() || r.ptr != last || !std::isfinite(value))
        return false;
    if (result)
        *result = value;
    return true;
}

double CDbl(const QVariant &value)
{
    requireNotNull(value);
    if (!value.isValid())
        return 0;
    switch (value.metaType().id()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::QString: {
        double result = 0;
        if (!parseNumber(value.toString(), currentLocale(), &result))
            typeMismatch();
        return result;
    }
    case QMetaType::QDateTime:
        return toSerialDate(value.toDateTime());
    case QMetaType::QDate:
        return toSerialDate(value.toDate().startOfDay());
    default:
        if (isNumberType(value))
            return value.toDouble();
        typeMismatch();
    }
}

qint32 CLng(const QVariant &value)
{
    const double rounded = roundHalfEven(CDbl(value));
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        throw Error(Overflow);
    return qint32(rounded);
}

qint16 CInt(const QVariant &value)
{
    const double rounded = roundHalfEven(CDbl(value));
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw Error(Overflow);
    return qint16(rounded);
}

bool CBool(const QVariant &value)
{
    requireNotNull(value);
    if (!value.isValid())
        return false;
    if (value.metaType().id() == QMetaType::Bool)
        return value.toBool();
    if (value.metaType().id() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        if (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return false;
    }
    return CDbl(value) != 0;
}

QDateTime CDate(const QVariant &value)
{
    requireNotNull(value);
    switch (value.metaType().id()) {
    case QMetaType::QDateTime: {
        const QDateTime dt = value.toDateTime();
        if (!dt.isValid())
            typeMismatch();
        return dt;
    }
    case QMetaType::QDate:
        if (!value.toDate().isValid())
            typeMismatch();
        return value.toDate().startOfDay();
    case QMetaType::QString: {
        const std::optional<QDateTime> parsed = parseDate(value.toString(), currentLocale());
        if (parsed)
            return *parsed;
        double serial = 0;
        if (parseNumber(value.toString(), currentLocale(), &serial))
            return fromSerialDate(serial);
        typeMismatch();
    }
    default:
        if (isNumberType(value) || value.metaType().id() == QMetaType::Bool || !value.isValid())
            return fromSerialDate(CDbl(value));
        typeMismatch();
    }
}

bool IsNumeric(const QVariant &value)
{
    if (!value.isValid())
        return true; // Empty converts to 0
    if (isNumberType(value) || value.metaType().id() == QMetaType::Bool)
        return true;
    if (value.metaType().id() == QMetaType::QString)
        return parseNumber(value.toString(), currentLocale(), nullptr);
    return false;
}

bool IsDate(const QVariant &value)
{
    if (isDateType(value))
        return CDate(value).isValid();
    if (value.metaType().id() == QMetaType::QString)
        return parseDate(value.toString(), currentLocale()).has_value();
    return false;
}

qint32 UBound(const QVariant &array, int dimension)
{
    if (array.metaType() == QMetaType::fromType<QVariantList>()) {
        if (dimension != 1)
            throw Error(SubscriptOutOfRange);
        return qint32(array.toList().size() - 1);
    }
    if (isVariantArray(array))
        return array.value<VariantArray>().UBound(dimension);
    typeMismatch();
}

qint32 LBound(const QVariant &array, int dimension)
{
    if (array.metaType() == QMetaType::fromType<QVariantList>()) {
        if (dimension != 1)
            throw Error(SubscriptOutOfRange);
        return 0;
    }
    if (isVariantArray(array))
        return array.value<VariantArray>().LBound(dimension);
    typeMismatch();
}

double toSerialDate(const QDateTime &date)
{
    if (!date.isValid())
        typeMismatch();
    const double days = double(serialBase.daysTo(date.date()));
    const double fraction = date.time().msecsSinceStartOfDay() / 86400000.0;
    return days >= 0 ? days + fraction : days - fraction;
}

QDateTime fromSerialDate(double serial)
{
    if (!std::isfinite(serial) || serial < -657434.0 || serial >= 2958466.0)
        throw Error(Overflow);
    const double whole = std::trunc(serial);
    const double fraction = std::fabs(serial - whole);
    qint64 msecs = qint64(std::llround(fraction * 86400000.0));
    qint64 days = qint64(whole);
    if (msecs >= 86400000) {
        msecs -= 86400000;
        days += serial < 0 ? -1 : 1;
    }
    return QDateTime(serialBase.addDays(days), QTime::fromMSecsSinceStartOfDay(int(msecs)));
}

QString Trim(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text.at(begin) == QLatin1Char(' '))
        ++begin;
    while (end > begin && text.at(end - 1) == QLatin1Char(' '))
        --end;
    return text.mid(begin, end - begin);
}

namespace {

enum class Interval { Year, Quarter, Month, Day, Week, WeekOfYear, Hour, Minute, Second };

Interval parseInterval(const QString &interval)
{
    const QString i = interval.toLower();
    if (i == QLatin1String("yyyy"))
        return Interval::Year;
    if (i == QLatin1String("q"))
        return Interval::Quarter;
    if (i == QLatin1String("m"))
        return Interval::Month;
    if (i == QLatin1String("y") || i == QLatin1String("d"))
        return Interval::Day;
    if (i == QLatin1String("w"))
        return Interval::Week;
    if (i == QLatin1String("ww"))
        return Interval::WeekOfYear;
    if (i == QLatin1String("h"))
        return Interval::Hour;
    if (i == QLatin1String("n"))
        return Interval::Minute;
    if (i == QLatin1String("s"))
        return Interval::Second;
    throw Error(InvalidProcedureCall,
                QStringLiteral("Invalid procedure call or argument: unknown interval \"%1\"")
                    .arg(interval));
}

QDateTime checkedDate(const QDate &date, const QTime &time, Qt::TimeSpec timeSpec)
{
    if (!date.isValid() || date < firstValidDate || date > lastValidDate)
        throw Error(InvalidProcedureCall);
    return QDateTime(date, time, timeSpec);
}

} // namespace

QDateTime DateAdd(const QString &interval, double number, const QDateTime &date)
{
    if (!date.isValid())
        typeMismatch();
    const Interval kind = parseInterval(interval);
    const double rounded = roundHalfEven(number);
    if (!(std::fabs(rounded) < 1e12))
        throw Error(InvalidProcedureCall);
    const qint64 n = qint64(rounded);
    const QDate d = date.date();
    const QTime t = date.time();
    switch (kind) {
    case Interval::Year:
        if (std::llabs(n) > 10000)
            throw Error(InvalidProcedureCall);
        return checkedDate(d.addYears(int(n)), t, date.timeSpec());
    case Interval::Quarter:
    case Interval::Month: {
        const qint64 months = kind == Interval::Quarter ? n * 3 : n;
        if (std::llabs(months) > 120000)
            throw Error(InvalidProcedureCall);
        return checkedDate(d.addMonths(int(months)), t, date.timeSpec());
    }
    case Interval::Day:
    case Interval::Week:
        if (std::llabs(n) > 4000000)
            throw Error(InvalidProcedureCall);
        return checkedDate(d.addDays(n), t, date.timeSpec());
    case Interval::WeekOfYear:
        if (std::llabs(n) > 600000)
            throw Error(InvalidProcedureCall);
        return checkedDate(d.addDays(n * 7), t, date.timeSpec());
    case Interval::Hour:
    case Interval::Minute:
    case Interval::Second: {
        const qint64 unit = kind == Interval::Hour ? 3600000
            : kind == Interval::Minute             ? 60000
                                                   : 1000;
        if (std::llabs(n) > qint64(4000000) * 86400000 / unit)
            throw Error(InvalidProcedureCall);
        const qint64 total = t.msecsSinceStartOfDay() + n * unit;
        qint64 days = total / 86400000;
        qint64 rest = total % 86400000;
        if (rest < 0) {
            rest += 86400000;
            --days;
        }
        return checkedDate(d.addDays(days), QTime::fromMSecsSinceStartOfDay(int(rest)),
                           date.timeSpec());
    }
    }
    return date;
}

qint64 DateDiff(const QString &interval, const QDateTime &date1, const QDateTime &date2)
{
    if (!date1.isValid() || !date2.isValid())
        typeMismatch();
    const QDate a = date1.date();
    const QDate b = date2.date();
    const auto floorDiv
        = [](qint64 x, qint64 y) { return x / y - ((x % y != 0) && ((x < 0) != (y < 0))); };
    const auto seconds = [&](const QDateTime &dt) {
        return serialBase.daysTo(dt.date()) * 86400 + dt.time().msecsSinceStartOfDay() / 1000;
    };
    switch (parseInterval(interval)) {
    case Interval::Year:
        return b.year() - a.year();
    case Interval::Quarter:
        return (b.year() * 4 + (b.month() - 1) / 3) - (a.year() * 4 + (a.month() - 1) / 3);
    case Interval::Month:
        return (qint64(b.year()) * 12 + b.month()) - (qint64(a.year()) * 12 + a.month());
    case Interval::Day:
        return a.daysTo(b);
    case Interval::Week:
        return a.daysTo(b) / 7;
    case Interval::WeekOfYear: {
        // Sundays crossed: compare the Sundays that start each date's week.
        const QDate weekA = a.addDays(-(a.dayOfWeek() % 7));
        const QDate weekB = b.addDays(-(b.dayOfWeek() % 7));
        return weekA.daysTo(weekB) / 7;
    }
    case Interval::Hour:
        return floorDiv(seconds(date2), 3600) - floorDiv(seconds(date1), 3600);
    case Interval::Minute:
        return floorDiv(seconds(date2), 60) - floorDiv(seconds(date1), 60);
    case Interval::Second:
        return seconds(date2) - seconds(date1);
    }
    return 0;
}

QString Format(double value, const QString &pattern)
{
    if (pattern.isEmpty())
        return CStr(value);
    return NumberPattern(pattern).format(value);
}

} // namespace zelkon
