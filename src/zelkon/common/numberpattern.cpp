#include <zelkon/common/conversions.h>
#include <zelkon/common/decimaldigits_p.h>
#include <zelkon/common/numberpattern_p.h>
#include <zelkon/common/platform.h>

#include <cmath>

namespace zelkon {

namespace {

bool isPlaceholder(QChar c)
{
    return c == QLatin1Char('0') || c == QLatin1Char('#');
}

// Literal text of a pattern: quotes and backslashes only escape.
QString literal(QStringView text)
{
    QString out;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (c == QLatin1Char('\\') && !quoted && i + 1 < text.size()) {
            out += text.at(++i);
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace

NumberPattern::NumberPattern(const QString &pattern)
{
    const qsizetype split = pattern.indexOf(QLatin1Char(';'));
    m_positive = parseSection(split < 0 ? pattern : pattern.left(split));
    if (split >= 0) {
        const QString rest = pattern.mid(split + 1);
        const qsizetype zeroSplit = rest.indexOf(QLatin1Char(';'));
        const QString negative = zeroSplit < 0 ? rest : rest.left(zeroSplit);
        if (!negative.isEmpty()) {
            m_negative = parseSection(negative);
            m_hasNegative = true;
        }
    }
    m_maxDecimals = m_positive.maxDecimals;
}

NumberPattern::Section NumberPattern::parseSection(const QString &text)
{
    Section s;
    qsizetype first = -1;
    qsizetype last = -1;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"'))
            quoted = !quoted;
        if (quoted || c == QLatin1Char('"'))
            continue;
        if (c == QLatin1Char('\\')) {
            ++i;
            continue;
        }
        if (isPlaceholder(c) || (first >= 0 && (c == QLatin1Char(',') || c == QLatin1Char('.')))
            || (first < 0 && c == QLatin1Char('.'))) {
            if (first < 0)
                first = i;
            last = i;
        }
    }
    if (first < 0) {
        s.prefix = literal(text);
        s.minIntegerDigits = 1;
        return s;
    }
    s.prefix = literal(QStringView(text).left(first));
    s.suffix = literal(QStringView(text).mid(last + 1));
    s.minIntegerDigits = 0;
    bool inFraction = false;
    bool seenIntegerDigit = false;
    for (qsizetype i = first; i <= last; ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('.')) {
            inFraction = true;
            s.decimalPoint = true;
        } else if (c == QLatin1Char(',')) {
            if (!inFraction && seenIntegerDigit)
                s.grouping = true;
        } else if (inFraction) {
            ++s.maxDecimals;
            if (c == QLatin1Char('0'))
                s.minDecimals = s.maxDecimals;
        } else {
            seenIntegerDigit = true;
            if (c == QLatin1Char('0'))
                ++s.minIntegerDigits;
        }
    }
    return s;
}

QString NumberPattern::format(double value) const
{
    return format(value, Platform::current().numberLocale());
}

QString NumberPattern::format(double value, const QLocale &locale) const
{
    return format(value, locale.decimalPoint().at(0), locale.groupSeparator());
}

QString NumberPattern::format(double value, QChar decimalPoint, QStringView groupSeparator) const
{
    if (!std::isfinite(value))
        return CStr(value);
    const bool negative = value < 0;
    const Section &section = negative && m_hasNegative ? m_negative : m_positive;
    return formatSection(section, std::fabs(value), negative, decimalPoint, groupSeparator);
}

QString NumberPattern::formatSection(const Section &s, double magnitude, bool negative,
                                     QChar decimalPoint, QStringView groupSeparator) const
{
    // Fixed-point digits: integer part and exactly maxDecimals fraction digits, rounded half away
    // from zero on the 15-significant-digit decimal form of the value.
    char integer[340];
    int integerCount = 0;
    char fraction[64];
    const int decimals = s.maxDecimals < 60 ? s.maxDecimals : 60;
    for (int i = 0; i < decimals; ++i)
        fraction[i] = '0';
    if (magnitude != 0) {
        detail::DecimalDigits d = detail::decimalDigits(magnitude, 15);
        int keep = d.exponent + 1 + decimals; // significant digits that survive the rounding
        if (keep < 0) {
            d.count = 0;
        } else if (keep < d.count) {
            const bool up = d.digits[std::size_t(keep)] >= '5';
            d.count = keep;
            if (up) {
                int i = keep - 1;
                while (i >= 0 && d.digits[std::size_t(i)] == '9') {
                    d.digits[std::size_t(i)] = '0';
                    --i;
                }
                if (i >= 0) {
                    ++d.digits[std::size_t(i)];
                } else {
                    // all nines (or nothing kept): the carry makes a new leading 1
                    for (int j = d.count; j > 0; --j)
                        d.digits[std::size_t(j)] = d.digits[std::size_t(j - 1)];
                    d.digits[0] = '1';
                    ++d.count;
                    ++d.exponent;
                }
            }
        }
        for (int i = 0; i < d.count; ++i) {
            const int place = d.exponent - i; // power of ten of this digit
            if (place >= 0) {
                if (integerCount == 0 && place + 1 > int(sizeof integer))
                    return CStr(negative ? -magnitude : magnitude);
                while (integerCount < d.exponent - place)
                    integer[integerCount++] = '0';
                integer[integerCount++] = d.digits[std::size_t(i)];
            } else if (-place <= decimals) {
                fraction[-place - 1] = d.digits[std::size_t(i)];
            }
        }
        while (d.exponent >= 0 && integerCount < d.exponent + 1)
            integer[integerCount++] = '0';
    }
    int fractionCount = decimals;
    while (fractionCount > s.minDecimals && fraction[fractionCount - 1] == '0')
        --fractionCount;
    int skip = 0;
    while (skip < integerCount && integer[skip] == '0')
        ++skip;
    const int significantInteger = integerCount - skip;
    const int shownInteger
        = significantInteger > s.minIntegerDigits ? significantInteger : s.minIntegerDigits;
    bool allZero = significantInteger == 0;
    for (int i = 0; allZero && i < fractionCount; ++i)
        allZero = fraction[i] == '0';

    QString out;
    out.reserve(s.prefix.size() + s.suffix.size() + shownInteger + shownInteger / 3 + fractionCount
                + 3);
    if (negative && !allZero && !m_hasNegative)
        out += QLatin1Char('-');
    out += s.prefix;
    for (int i = 0; i < shownInteger; ++i) {
        const int fromRight = shownInteger - i;
        const int source = integerCount - fromRight;
        out += QLatin1Char(source >= 0 ? integer[source] : '0');
        if (s.grouping && fromRight > 1 && (fromRight - 1) % 3 == 0)
            out += groupSeparator;
    }
    // The decimal point stands whenever the pattern has one, even with no digit after it ("5."):
    // that is how the platform formats "#.##" and hosts compare such texts.
    if (s.decimalPoint) {
        out += decimalPoint;
        for (int i = 0; i < fractionCount; ++i)
            out += QLatin1Char(fraction[i]);
    }
    out += s.suffix;
    return out;
}

} // namespace zelkon
