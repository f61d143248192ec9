#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/variants.h>
#include <zelkon/reldate/relativedate.h>

#include <limits>

namespace zelkon {

class RelativeDatePrivate : public QSharedData
{
public:
    bool relative = false;
    QVariant date;
    qint32 dayCount = 0;
    bool allowAll = false;
};

RelativeDate::RelativeDate()
    : d(new RelativeDatePrivate)
{ }

RelativeDate::RelativeDate(const RelativeDate &other) = default;
RelativeDate &RelativeDate::operator=(const RelativeDate &other) = default;
RelativeDate::~RelativeDate() = default;

bool RelativeDate::isAll(const QVariant &value)
{
    return value.metaType().id() == QMetaType::QString && value.toString() == allText();
}

bool RelativeDate::isAll() const
{
    return isAll(d->date);
}

bool RelativeDate::isRelative() const
{
    return d->relative;
}

bool RelativeDate::allowAll() const
{
    return d->allowAll;
}

void RelativeDate::setAllowAll(bool allow)
{
    d->allowAll = allow;
}

QVariant RelativeDate::storedDate() const
{
    return d->date;
}

qint32 RelativeDate::storedDayCount() const
{
    return d->dayCount;
}

void RelativeDate::setStoredDate(const QVariant &date)
{
    d->date = date;
}

void RelativeDate::setDayCount(qint32 days)
{
    d->dayCount = days;
}

QVariant RelativeDate::date(const QDate &today)
{
    if (d->relative && !isAll()) {
        if (const auto date = dateFromToday(d->dayCount, today))
            d->date = *date;
    }
    return d->date;
}

qint32 RelativeDate::dayCount(const QDate &today)
{
    if (!d->relative && !isAll()) {
        if (const auto days = daysFromToday(d->date, today))
            d->dayCount = *days;
    }
    return d->dayCount;
}

bool RelativeDate::setRelative(bool relative, const QDate &today)
{
    if (relative == d->relative)
        return false;
    // Reading the value in the mode being left derives the other form, which the new mode holds.
    if (relative)
        dayCount(today);
    else
        date(today);
    d->relative = relative;
    return true;
}

bool RelativeDate::setAll()
{
    if (!d->allowAll)
        return false;
    d->date = allText();
    return true;
}

void RelativeDate::restore(bool relative, qint32 days, const QVariant &date, const QDate &today)
{
    d->relative = relative;
    d->dayCount = days;
    d->date = date;
    if (relative)
        this->date(today);
    else
        dayCount(today);
}

// Counted on calendar days, as DateAdd and DateDiff count the interval "d": a date at midnight
// is made once, at the end, since every local date and time asks the system for its zone.
std::optional<QDateTime> RelativeDate::dateFromToday(qint64 days, const QDate &today)
{
    static const QDate first(100, 1, 1); // the platform's range of dates
    static const QDate last(9999, 12, 31);
    if (days < first.toJulianDay() - today.toJulianDay()
        || days > last.toJulianDay() - today.toJulianDay())
        return std::nullopt;
    return QDateTime(today.addDays(days), QTime(0, 0));
}

std::optional<qint32> RelativeDate::daysFromToday(const QVariant &date, const QDate &today)
{
    qint64 days = 0;
    try {
        days = today.daysTo(CDate(date).date());
    } catch (const Error &) {
        return std::nullopt;
    }
    if (days < std::numeric_limits<qint32>::min() || days > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return qint32(days);
}

bool RelativeDate::dayCountInRange(qint64 days, const QDate &today, const QDate &min,
                                   const QDate &max)
{
    const auto date = dateFromToday(days, today);
    return date && date->date() >= min && date->date() <= max;
}

std::optional<qint32> RelativeDate::typedDayCount(const QString &text, const QDate &today,
                                                  const QDate &min, const QDate &max)
{
    if (!IsNumeric(text))
        return std::nullopt;
    try {
        const qint32 days = CLng(text);
        if (dayCountInRange(days, today, min, max))
            return days;
    } catch (const Error &) { }
    return std::nullopt;
}

} // namespace zelkon
