/// \file
/// zelkon::RelativeDate: a date bound held as a day count from today, as an absolute date, or as
/// "All" (no bound), with the rules that derive one form from the other.
#pragma once

#include <zelkon/common/global.h>

#include <QDateTime>
#include <QSharedDataPointer>
#include <QVariant>

#include <optional>

namespace zelkon {

class RelativeDatePrivate;

/// The value of a RelDate: a date bound held as a day count from today, as an absolute date, or as
/// "All" (no bound), with the rules that derive one form from the other.
///
/// Today is always an argument: a relative value read on a later day yields a later date, so no
/// rule may keep a "today" of its own.
class ZELKON_EXPORT RelativeDate
{
public:
    /// A newly placed field: absolute mode, no stored date (Empty), day count 0, "All" not allowed.
    RelativeDate();
    ///@{
    /// Values: a copy shares its data until one of the two is written to.
    RelativeDate(const RelativeDate &other);
    RelativeDate &operator=(const RelativeDate &other);
    ~RelativeDate();
    ///@}

    /// "All" is the one marker of no date bound, recognised as a string and nothing else.
    static bool isAll(const QVariant &value);
    /// Whether the value is "All".
    bool isAll() const;

    /// Whether the value is held as a day count.
    bool isRelative() const;
    ///@{
    /// Whether setAll() is allowed.
    bool allowAll() const;
    void setAllowAll(bool allow);
    ///@}

    ///@{
    /// The fields as they are: in relative mode the stored date is the one last derived from the
    /// day count, in absolute mode the day count the one last derived from the date. Bounds
    /// between partner fields compare the stored date as it is.
    QVariant storedDate() const;
    qint32 storedDayCount() const;
    void setStoredDate(const QVariant &date);
    void setDayCount(qint32 days);
    ///@}

    ///@{
    /// The value read as a date or as a day count. In the mode that does not hold it the value is
    /// derived from the other form and kept; with "All" nothing is derived, and the day count keeps
    /// its last number.
    QVariant date(const QDate &today);
    qint32 dayCount(const QDate &today);
    ///@}

    /// Switches the mode, carrying the value over so that the calendar day stays the same (and
    /// "All" stays "All"). False when the value already has that mode: nothing changes.
    bool setRelative(bool relative, const QDate &today);
    /// Sets "All"; false, and nothing changes, when "All" is not allowed.
    bool setAll();
    /// A value as it was saved: the form its mode holds is taken as it is, the other is derived.
    void restore(bool relative, qint32 days, const QVariant &date, const QDate &today);

    /// The date `days` days from today, at midnight; nothing outside the platform's date range.
    static std::optional<QDateTime> dateFromToday(qint64 days, const QDate &today);
    /// Calendar days from today to a date (any time of that day counts alike); nothing when the
    /// value is no date.
    static std::optional<qint32> daysFromToday(const QVariant &date, const QDate &today);
    /// Whether a day count lands within [min, max], counted by calendar day as the picker clamps.
    static bool dayCountInRange(qint64 days, const QDate &today, const QDate &min,
                                const QDate &max);
    /// A day count typed by the user: its number when the text is numeric and lands in the range;
    /// nothing otherwise, and the field then shows the previous count again.
    static std::optional<qint32> typedDayCount(const QString &text, const QDate &today,
                                               const QDate &min, const QDate &max);

private:
    QSharedDataPointer<RelativeDatePrivate> d;
};

} // namespace zelkon
