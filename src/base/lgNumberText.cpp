#include "base/lgNumberText.h"

#include "base/compiler.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace Zu
{

namespace
{

// For a product wider than any type of the language.
using Wide = Compiler::UInt128;

constexpr int MANTISSA_BITS = 52;
constexpr int EXPONENT_BIAS = 1075;
constexpr std::uint64_t MICRO = 1'000'000;

// An absolute value as whole units and millionths.
struct Micros
{
    std::uint64_t _whole;
    std::uint64_t _millionths;
};

// Computes mantissa / 2^shift, with the millionths rounded from the exact value, ties to even.
Micros roundedMicros(std::uint64_t mantissa, int shift)
{
    // The mantissa has 53 bits and a million has 20: beyond that everything rounds down to 0.
    if (shift > MANTISSA_BITS + 22) return {0, 0};
    const std::uint64_t whole = shift < 64 ? mantissa >> shift : 0;
    const Wide fraction = Wide{mantissa} - (Wide{whole} << shift);
    const Wide scaled = fraction * MICRO;
    const Wide half = Wide{1} << (shift - 1);
    const Wide rest = scaled & ((Wide{1} << shift) - 1);
    auto millionths = static_cast<std::uint64_t>(scaled >> shift);
    if (rest > half || (rest == half && (millionths & 1) != 0)) ++millionths;
    return millionths < MICRO ? Micros{whole, millionths} : Micros{whole + 1, 0};
}

char* writeMicros(char* to, const Micros& micros)
{
    constexpr int digits = 6;
    to = std::to_chars(to, to + 20, micros._whole).ptr;
    *to = '.';
    std::uint64_t left = micros._millionths;
    for (int i = digits; i > 0; --i)
    {
        to[i] = static_cast<char>('0' + left % 10);
        left /= 10;
    }
    return to + 1 + digits;
}

char* writeText(char* to, std::string_view text)
{
    return std::copy(text.begin(), text.end(), to);
}

} // namespace

char* lgWriteDouble(char* buffer, double value)
{
    if (std::isnan(value)) return writeText(buffer, "nan");
    if (std::signbit(value)) *buffer++ = '-';
    if (std::isinf(value)) return writeText(buffer, "inf");

    const auto bits = std::bit_cast<std::uint64_t>(std::fabs(value));
    const int exponent = static_cast<int>(bits >> MANTISSA_BITS);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << MANTISSA_BITS) - 1);
    if (exponent != 0) mantissa |= std::uint64_t{1} << MANTISSA_BITS;
    const int shift = EXPONENT_BIAS - (exponent != 0 ? exponent : 1);
    if (shift > 0) return writeMicros(buffer, roundedMicros(mantissa, shift));
    // From 2^52 on the value is a whole number; up to 2^64 it is written as one.
    if (shift > -12) return writeMicros(buffer, {mantissa << -shift, 0});
    return std::to_chars(buffer, buffer + LG_DOUBLE_TEXT_SIZE - 1, std::fabs(value),
                         std::chars_format::fixed, 6)
        .ptr;
}

} // namespace Zu
