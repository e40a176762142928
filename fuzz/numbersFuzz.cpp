// A line with a number as text, and eight bytes with a number's bits.

#include "base/lgNumberText.h"
#include "base/textToDouble.h"
#include "base/textToInt.h"

#include "fuzzTarget.h"
#include "support/platform.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

namespace
{

bool isSame(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void checkInt(const std::string& text)
{
    using Limits = std::numeric_limits<int>;
    const auto copy = fuzz::exactCopy(text);
    errno = 17;
    const int number = Zu::textToInt(copy.get());
    FUZZ_REQUIRE(errno == 17);
    const long long standard = std::strtoll(copy.get(), nullptr, 10);
    FUZZ_REQUIRE(number == std::clamp<long long>(standard, Limits::min(), Limits::max()));
}

void checkDouble(const std::string& text)
{
    const auto copy = fuzz::exactCopy(text);
    errno = 17;
    const double number = Zu::textToDouble(copy.get());
    FUZZ_REQUIRE(errno == 17);
    // The function of Windows does not follow the rules of C99.
    if (!support::onWindows) FUZZ_REQUIRE(isSame(number, std::strtod(copy.get(), nullptr)));
}

void checkRoundTrip(double value, std::chars_format format)
{
    char text[64];
    const char* const end = std::to_chars(text, text + sizeof text, value, format).ptr;
    std::string number(text, static_cast<std::size_t>(end - text));
    // The form of `%a`.
    if (format == std::chars_format::hex && std::isfinite(value))
        number.insert(number[0] == '-' ? 1 : 0, "0x");
    FUZZ_REQUIRE(isSame(Zu::textToDouble(number.c_str()), value));
}

void checkWriting(double value)
{
    // The memory ends where the buffer does.
    const std::unique_ptr<char[]> buffer(new char[Zu::LG_DOUBLE_TEXT_SIZE]);
    const char* const end = Zu::lgWriteDouble(buffer.get(), value);
    const std::string text(buffer.get(), static_cast<std::size_t>(end - buffer.get()));
    if (std::isnan(value))
    {
        FUZZ_REQUIRE(text == "nan");
        return;
    }
    char expected[400];
    std::snprintf(expected, sizeof expected, "%f", value);
    FUZZ_REQUIRE(text == expected);
}

void run(fuzz::Input input)
{
    const std::string text = input.takeLine();
    checkInt(text);
    checkDouble(text);
    const auto value = std::bit_cast<double>(input.takeNumber());
    checkRoundTrip(value, std::chars_format::scientific);
    checkRoundTrip(value, std::chars_format::hex);
    checkWriting(value);
    // Numbers near 1 are typical, but rare among random bits.
    checkWriting(std::ldexp(value, -std::ilogb(value == 0 || !std::isfinite(value) ? 1 : value)));
}

} // namespace

FUZZ_TARGET(numbers, run);
