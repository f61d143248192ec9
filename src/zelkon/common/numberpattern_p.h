// NumberPattern: a parsed number format such as "#,##0.00", applied with halves away from zero.
#pragma once

#include <zelkon/common/global.h>

#include <QLocale>
#include <QString>

namespace zelkon {

// Understands digit placeholders "0" (always shown) and "#" (shown when significant), one "."
// for the decimal separator, "," between integer placeholders for grouping in threes, literal
// text before and after the digits, and an optional second section after ";" for negative
// numbers. The value is first taken to 15 significant digits, as the platform does, so 2.675
// formats as 2.68 with two decimals. Output uses the locale's separators.
class NumberPattern
{
public:
    NumberPattern() = default;
    explicit NumberPattern(const QString &pattern);

    QString format(double value) const; // with Platform::current().numberLocale()
    QString format(double value, const QLocale &locale) const;
    QString format(double value, QChar decimalPoint, QStringView groupSeparator) const;

    int decimals() const { return m_maxDecimals; }

private:
    struct Section
    {
        QString prefix;
        QString suffix;
        int minIntegerDigits = 1;
        int minDecimals = 0;
        int maxDecimals = 0;
        bool grouping = false;
        bool decimalPoint = false;
    };
    static Section parseSection(const QString &text);
    QString formatSection(const Section &s, double magnitude, bool negative, QChar decimalPoint,
                          QStringView groupSeparator) const;

    Section m_positive;
    Section m_negative;
    bool m_hasNegative = false;
    int m_maxDecimals = 0;
};

} // namespace zelkon
