#include "base/lgNumberText.h"

#include "base/compiler.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
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

// The same for a shift from 1 to 63: there the fraction is a number of 2^-64, and the millionths
// are the upper half of a product whose lower half is the exact rest.
Micros roundedMicrosOfUsual(std::uint64_t mantissa, int shift)
{
    constexpr std::uint64_t HALF = std::uint64_t{1} << 63;
    const std::uint64_t whole = mantissa >> shift;
    const Wide scaled = Wide{mantissa << (64 - shift)} * MICRO;
    const auto rest = static_cast<std::uint64_t>(scaled);
    auto millionths = static_cast<std::uint64_t>(scaled >> 64);
    // An odd number is rounded up from the half itself on, an even one from just above it.
    if (rest > HALF - (millionths & 1)) ++millionths;
    return millionths < MICRO ? Micros{whole, millionths} : Micros{whole + 1, 0};
}

// The decimal digits of 0 to 99, two for each number.
constexpr std::array<char, 200> PAIRS = []
{
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i)
    {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

void writePair(char* to, std::uint32_t number)
{
    std::memcpy(to, &PAIRS[std::size_t{2} * number], 2);
}

char* writeWhole(char* to, std::uint64_t whole)
{
    if (whole >= 100) return std::to_chars(to, to + 20, whole).ptr;
    const auto number = static_cast<std::uint32_t>(whole);
    if (number < 10)
    {
        *to = static_cast<char>('0' + number);
        return to + 1;
    }
    writePair(to, number);
    return to + 2;
}

char* writeMicros(char* to, const Micros& micros)
{
    to = writeWhole(to, micros._whole);
    *to++ = '.';
    const auto millionths = static_cast<std::uint32_t>(micros._millionths);
    writePair(to, millionths / 10'000);
    writePair(to + 2, millionths / 100 % 100);
    writePair(to + 4, millionths % 100);
    return to + 6;
}

char* writeText(char* to, std::string_view text)
{
    return std::copy(text.begin(), text.end(), to);
}

} // namespace

char* lgWriteUsualDouble(char* buffer, double value)
{
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t magnitude = bits & ~(std::uint64_t{1} << 63);
    const int shift = EXPONENT_BIAS - static_cast<int>(magnitude >> MANTISSA_BITS);
    const bool isUsual = shift > 0 && shift < 64;
    if (!isUsual && magnitude != 0) return nullptr;
    // The place of the sign is written in any case, which costs less than to decide.
    *buffer = '-';
    buffer += bits >> 63;
    if (!isUsual) return writeMicros(buffer, {0, 0});
    constexpr std::uint64_t HIDDEN_BIT = std::uint64_t{1} << MANTISSA_BITS;
    const std::uint64_t mantissa = (magnitude & (HIDDEN_BIT - 1)) | HIDDEN_BIT;
    return writeMicros(buffer, roundedMicrosOfUsual(mantissa, shift));
}

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
