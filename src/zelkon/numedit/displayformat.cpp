#include <zelkon/numedit/displayformat_p.h>

namespace zelkon {

QString DisplayFormat::pattern(qint16 digits)
{
    QString text = QStringLiteral("#,##0");
    if (digits > 0) {
        text += QLatin1Char('.');
        text += QString(digits - 1, QLatin1Char('#'));
        text += QLatin1Char('0');
    }
    return text;
}

void DisplayFormat::setDigits(qint16 digits)
{
    if (digits < 0)
        digits = 0;
    if (digits == m_digits)
        return;
    m_digits = digits;
    m_pattern = NumberPattern(pattern(digits));
}

} // namespace zelkon
