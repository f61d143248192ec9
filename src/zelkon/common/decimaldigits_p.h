// Private: a double as decimal significant digits and an exponent, shared by CStr and Format.
#pragma once

#include <array>
#include <charconv>
#include <cstring>

namespace zelkon::detail {

// value = 0.d1d2d3... x 10^(exponent + 1), i.e. digits[0] stands at the 10^exponent place.
struct DecimalDigits
{
    std::array<char, 24> digits{};
    int count = 0;
    int exponent = 0;
};

// Decimal digits of |value| (value finite and non-zero). precision 0 = the shortest digits that
// read back as the same double; otherwise that many significant digits, rounded to nearest.
inline DecimalDigits decimalDigits(double value, int precision)
{
    if (value < 0)
        value = -value;
    char buf[64];
    const std::to_chars_result r = precision > 0
        ? std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific, precision - 1)
        : std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific);
    DecimalDigits d;
    const char *p = buf;
    while (p < r.ptr && *p != 'e') {
        if (*p >= '0' && *p <= '9' && d.count < int(d.digits.size()))
            d.digits[std::size_t(d.count++)] = *p;
        ++p;
    }
    if (p < r.ptr && *p == 'e') {
        ++p;
        int sign = 1;
        if (*p == '-') {
            sign = -1;
            ++p;
        } else if (*p == '+') {
            ++p;
        }
        int e = 0;
        while (p < r.ptr) {
            e = e * 10 + (*p - '0');
            ++p;
        }
        d.exponent = sign * e;
    }
    while (d.count > 1 && d.digits[std::size_t(d.count - 1)] == '0')
        --d.count;
    return d;
}

} // namespace zelkon::detail
