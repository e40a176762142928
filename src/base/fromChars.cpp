#include "base/fromChars.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace Zu
{

namespace
{

// A natural number of any size, lowest word first; the highest word is not 0.
class Natural
{
public:
    explicit Natural(std::uint32_t value)
    {
        if (value != 0) _words.push_back(value);
    }

    bool isZero() const
    {
        return _words.empty();
    }

    int bits() const
    {
        if (isZero()) return 0;
        return static_cast<int>(32 * _words.size()) - std::countl_zero(_words.back());
    }

    void multiplyAndAdd(std::uint32_t factor, std::uint32_t summand)
    {
        std::uint64_t carry = summand;
        for (std::uint32_t& word : _words)
        {
            carry += std::uint64_t{word} * factor;
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0) _words.push_back(static_cast<std::uint32_t>(carry));
    }

    void shiftLeft(int count)
    {
        for (; count >= 16; count -= 16) multiplyAndAdd(1U << 16, 0);
        multiplyAndAdd(1U << count, 0);
    }

    bool isAtLeast(const Natural& other) const
    {
        if (_words.size() != other._words.size()) return _words.size() > other._words.size();
        return !std::lexicographical_compare(_words.rbegin(), _words.rend(), other._words.rbegin(),
                                             other._words.rend());
    }

    // `other` must not be greater.
    void subtract(const Natural& other)
    {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < _words.size(); ++i)
        {
            const std::uint64_t taken = borrow + (i < other._words.size() ? other._words[i] : 0);
            borrow = _words[i] < taken ? 1 : 0;
            _words[i] = static_cast<std::uint32_t>(_words[i] - taken);
        }
        while (!_words.empty() && _words.back() == 0) _words.pop_back();
    }

private:
    std::vector<std::uint32_t> _words;
};

constexpr int QUOTIENT_BITS = 63;
constexpr int MANTISSA_BITS = 53;
constexpr int LEAST_EXPONENT = -1074;

// quotient * 2^exponent, rounded. `isMore`: the bits after the quotient are not all 0.
double rounded(std::uint64_t quotient, bool isMore, int exponent)
{
    const int dropped = std::max(QUOTIENT_BITS - MANTISSA_BITS, LEAST_EXPONENT - exponent);
    if (dropped > QUOTIENT_BITS) return 0;
    std::uint64_t kept = quotient >> dropped;
    const std::uint64_t rest = quotient - (kept << dropped);
    const std::uint64_t half = std::uint64_t{1} << (dropped - 1);
    if (rest > half || (rest == half && (isMore || (kept & 1) != 0))) ++kept;
    // ldexp() would overflow by the rounding mode.
    const int width = static_cast<int>(std::bit_width(kept)) + exponent + dropped;
    if (width > std::numeric_limits<double>::max_exponent)
        return std::numeric_limits<double>::infinity();
    return std::ldexp(static_cast<double>(kept), exponent + dropped);
}

// numerator / denominator * 2^exponent, by long division.
double nearest(Natural numerator, Natural denominator, int exponent)
{
    if (numerator.isZero()) return 0;
    const int shift = denominator.bits() - numerator.bits();
    numerator.shiftLeft(std::max(shift, 0));
    denominator.shiftLeft(std::max(-shift, 0));
    // Now the quotient is between 1/2 and 2, exclusive.
    exponent -= shift;
    std::uint64_t quotient = 0;
    for (++exponent; quotient >> (QUOTIENT_BITS - 1) == 0; --exponent)
    {
        const bool bit = numerator.isAtLeast(denominator);
        if (bit) numerator.subtract(denominator);
        quotient = quotient << 1 | (bit ? 1 : 0);
        numerator.shiftLeft(1);
    }
    return rounded(quotient, !numerator.isZero(), exponent);
}

// The parts of the text of a number.
struct Parts
{
    Natural _digits{0};
    // The place of the last digit, in digits from the point.
    std::int64_t _lastPlace = 0;
    // The number of significant digits, from the first that is not 0.
    int _count = 0;
    std::int64_t _exponent = 0;
};

int digitOf(char character)
{
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return std::numeric_limits<int>::max();
}

// Returns the end of the digits, or null if there are none. After ENOUGH digits it only matters
// whether a further one is not 0.
const char* readDigits(const char* place, const char* end, int base, Parts& parts)
{
    constexpr int ENOUGH = 800;
    bool isThere = false;
    bool isBehindPoint = false;
    bool isMore = false;
    for (; place != end; ++place)
    {
        if (*place == '.' && !isBehindPoint)
        {
            isBehindPoint = true;
            continue;
        }
        const int digit = digitOf(*place);
        if (digit >= base) break;
        isThere = true;
        const bool isKept = parts._count < ENOUGH;
        if (isKept && (parts._count > 0 || digit != 0)) ++parts._count;
        if (isKept)
            parts._digits.multiplyAndAdd(static_cast<std::uint32_t>(base),
                                         static_cast<std::uint32_t>(digit));
        isMore = isMore || (!isKept && digit != 0);
        if (isKept && isBehindPoint) --parts._lastPlace;
        if (!isKept && !isBehindPoint) ++parts._lastPlace;
    }
    if (isMore)
    {
        parts._digits.multiplyAndAdd(static_cast<std::uint32_t>(base), 1);
        --parts._lastPlace;
        ++parts._count;
    }
    return isThere ? place : nullptr;
}

// Returns the end of the exponent, or of the mantissa if no exponent follows.
const char* readExponent(const char* place, const char* end, char mark, Parts& parts)
{
    // Greater than the length of any text, so it outweighs any number of digits.
    constexpr std::int64_t LIMIT = std::int64_t{1} << 56;
    const char* digit = place;
    if (digit == end || std::tolower(static_cast<unsigned char>(*digit)) != mark) return place;
    ++digit;
    const bool isNegative = digit != end && *digit == '-';
    if (digit != end && (*digit == '-' || *digit == '+')) ++digit;
    const char* const first = digit;
    for (; digit != end && digitOf(*digit) < 10; ++digit)
        parts._exponent = std::min(LIMIT, 10 * parts._exponent + digitOf(*digit));
    if (isNegative) parts._exponent = -parts._exponent;
    return digit == first ? place : digit;
}

double valueOfDecimal(Parts& parts)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    const std::int64_t power = parts._lastPlace + parts._exponent;
    // The value is below 10^magnitude, and at least a tenth of that.
    const std::int64_t magnitude = power + parts._count;
    if (parts._count == 0 || magnitude < -330) return 0;
    if (magnitude > 310) return INFINITE;
    Natural denominator(1);
    for (std::int64_t i = 0; i < power; ++i) parts._digits.multiplyAndAdd(10, 0);
    for (std::int64_t i = power; i < 0; ++i) denominator.multiplyAndAdd(10, 0);
    return nearest(parts._digits, denominator, 0);
}

double valueOfHexadecimal(const Parts& parts)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr std::int64_t BITS = 4;
    const std::int64_t power = BITS * parts._lastPlace + parts._exponent;
    const std::int64_t magnitude = power + BITS * parts._count;
    if (parts._count == 0 || magnitude < -1100) return 0;
    if (magnitude > 1100) return INFINITE;
    return nearest(parts._digits, Natural(1), static_cast<int>(power));
}

// The length of the word if the text begins with it, in any case; otherwise 0.
std::size_t lengthOf(std::string_view word, std::string_view text)
{
    const bool isThere =
        text.size() >= word.size() &&
        std::equal(word.begin(), word.end(), text.begin(),
                   [](char lower, char character)
                   { return std::tolower(static_cast<unsigned char>(character)) == lower; });
    return isThere ? word.size() : 0;
}

// "nan" may be followed by letters, digits and underscores in parentheses.
std::size_t lengthOfNan(std::string_view text)
{
    const std::size_t length = lengthOf("nan", text);
    if (length == 0 || text.substr(length, 1) != "(") return length;
    const auto isOther = [](char character)
    { return std::isalnum(static_cast<unsigned char>(character)) == 0 && character != '_'; };
    const auto end = static_cast<std::size_t>(std::find_if(text.begin() + 4, text.end(), isOther) -
                                              text.begin());
    return text.substr(end, 1) == ")" ? end + 1 : length;
}

// Reads a word for an infinity or a NaN; returns null if there is none.
const char* readWord(const char* begin, const char* end, double& value)
{
    const std::string_view text(begin, static_cast<std::size_t>(end - begin));
    const std::size_t infinite = std::max(lengthOf("infinity", text), lengthOf("inf", text));
    const std::size_t nan = lengthOfNan(text);
    if (infinite != 0) value = std::numeric_limits<double>::infinity();
    if (nan != 0) value = std::numeric_limits<double>::quiet_NaN();
    return infinite + nan != 0 ? begin + infinite + nan : nullptr;
}

} // namespace

std::from_chars_result portableFromChars(const char* begin, const char* end, double& value,
                                         std::chars_format format)
{
    const bool isNegative = begin != end && *begin == '-';
    const char* const first = isNegative ? begin + 1 : begin;
    double number = 0;
    if (const char* const wordEnd = readWord(first, end, number))
    {
        value = isNegative ? -number : number;
        return {wordEnd, std::errc()};
    }
    const bool isHex = format == std::chars_format::hex;
    Parts parts;
    const char* place = readDigits(first, end, isHex ? 16 : 10, parts);
    if (!place) return {begin, std::errc::invalid_argument};
    place = readExponent(place, end, isHex ? 'p' : 'e', parts);
    number = isHex ? valueOfHexadecimal(parts) : valueOfDecimal(parts);
    if (std::isinf(number) || (number == 0 && parts._count != 0))
        return {place, std::errc::result_out_of_range};
    value = isNegative ? -number : number;
    return {place, std::errc()};
}

} // namespace Zu
