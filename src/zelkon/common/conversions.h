/// \file
/// Conversions and date arithmetic with the platform's rules, shared by every control.
///
/// All conversions read separators from Platform::current().numberLocale() unless given a locale.
/// Failures throw zelkon::Error: 13 type mismatch, 6 overflow, 94 invalid use of Null.
#pragma once

#include <zelkon/common/global.h>

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QVariant>

namespace zelkon {

///@{
/// Shortest text that reads back as the same double, at most 15 significant digits; scientific
/// notation ("1E+15", "1.5E-05") outside 1E-4 .. 1E15.
ZELKON_EXPORT QString CStr(double value);
ZELKON_EXPORT QString CStr(double value, const QLocale &locale);
///@}
/// Empty gives "", booleans "True"/"False", dates the locale's short form.
ZELKON_EXPORT QString CStr(const QVariant &value);

/// A number, or numeric text under the number locale; error 13 for anything else, 94 for Null.
ZELKON_EXPORT double CDbl(const QVariant &value);
/// Rounded half to even; error 6 outside the 32-bit range.
ZELKON_EXPORT qint32 CLng(const QVariant &value);
/// Rounded half to even; error 6 outside the 16-bit range.
ZELKON_EXPORT qint16 CInt(const QVariant &value);
/// Empty is false, numbers are true when not 0, texts "True" and "False" (any case) or numeric;
/// error 13 otherwise.
ZELKON_EXPORT bool CBool(const QVariant &value);
/// A date, a serial date number (see fromSerialDate()), or text the locale reads as a date or a
/// number; error 13 otherwise.
ZELKON_EXPORT QDateTime CDate(const QVariant &value);

/// Optional blanks, an optional sign, digits with the locale's grouping separators, at most one
/// decimal separator, an optional exponent, optional blanks. Numbers themselves are numeric.
ZELKON_EXPORT bool IsNumeric(const QVariant &value);
/// Whether the value is a valid date, or text the locale reads as a date (numbers are no dates).
ZELKON_EXPORT bool IsDate(const QVariant &value);
/// Parses text under a locale's rules; false when it is not numeric.
ZELKON_EXPORT bool parseNumber(QStringView text, const QLocale &locale, double *result);

///@{
/// Bounds of a QVariantList (lower bound 0) or a VariantArray; error 9 for a missing dimension,
/// error 13 when the value is no array.
ZELKON_EXPORT qint32 UBound(const QVariant &array, int dimension = 1);
ZELKON_EXPORT qint32 LBound(const QVariant &array, int dimension = 1);
///@}

/// Adds `number` intervals to `date`. Intervals: "yyyy", "q", "m", "y", "d", "w", "ww", "h", "n",
/// "s" (case-insensitive). "y" (day of year) and "d" add whole days alike; error 5 for an unknown
/// interval or a result outside 100-01-01 .. 9999-12-31.
ZELKON_EXPORT QDateTime DateAdd(const QString &interval, double number, const QDateTime &date);
/// Counts the boundaries crossed between the two moments: for "d" and "y" the midnights, so the
/// time of day never counts.
ZELKON_EXPORT qint64 DateDiff(const QString &interval, const QDateTime &date1,
                              const QDateTime &date2);

///@{
/// The platform's serial date: days since 1899-12-30, the time as the fraction.
ZELKON_EXPORT double toSerialDate(const QDateTime &date);
ZELKON_EXPORT QDateTime fromSerialDate(double serial);
///@}

/// Removes leading and trailing spaces (only spaces, as the platform's Trim does).
ZELKON_EXPORT QString Trim(const QString &text);

/// Formats a number with a pattern such as "#,##0.00": digit placeholders "0" and "#", "." and ","
/// for the separators, literal text around the digits, an optional ";" section for negatives.
ZELKON_EXPORT QString Format(double value, const QString &pattern);

} // namespace zelkon
