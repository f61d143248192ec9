// zelkon::DisplayFormat: the grouped text with a fixed count of decimals that NumEdit shows
// while it is not being edited.
#pragma once

#include <zelkon/common/numberpattern_p.h>

#include <QLocale>
#include <QString>

namespace zelkon {

class DisplayFormat
{
public:
    explicit DisplayFormat(qint16 digits = 0) { setDigits(digits); }

    // "#,##0" for no decimals, else "#,##0." with digits - 1 "#" and a closing "0": the closing
    // "0" forces every decimal up to it, so the display always shows exactly `digits` decimals.
    static QString pattern(qint16 digits);

    // Parses the pattern again only when the count changes.
    void setDigits(qint16 digits);

    QString format(double value, const QLocale &locale) const
    {
        return m_pattern.format(value, locale);
    }

private:
    qint16 m_digits = -1;
    NumberPattern m_pattern;
};

} // namespace zelkon
