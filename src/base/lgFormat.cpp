#include "base/lgFormat.h"

#include "base/lgNumberText.h"
#include "base/lgStream.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace Zu
{

namespace
{

constexpr int MOST_DECIMALS = 100;
constexpr int MOST_WIDTH = 100;
constexpr int HEXADECIMAL = 16;

// The longest text is a number with all its decimals.
using Text = char[LG_DOUBLE_TEXT_SIZE + MOST_DECIMALS];

template <class... Rest> char* write(Text& text, Rest... rest)
{
    return std::to_chars(text, text + sizeof text, rest...).ptr;
}

char* writeNan(Text& text)
{
    constexpr std::string_view NAN_TEXT = "nan";
    return std::copy(NAN_TEXT.begin(), NAN_TEXT.end(), text);
}

LgStream& insertFilled(LgStream& stream, std::string_view text, int width, char fill)
{
    const auto size = static_cast<std::size_t>(std::clamp(width, 0, MOST_WIDTH));
    if (text.size() >= size) return stream << text;
    const bool isSignFirst = fill == '0' && text.front() == '-';
    char filled[MOST_WIDTH];
    char* to = filled;
    if (isSignFirst) *to++ = '-';
    to = std::fill_n(to, size - text.size(), fill);
    std::copy(text.begin() + (isSignFirst ? 1 : 0), text.end(), to);
    return stream << std::string_view(filled, size);
}

} // namespace

LgStream& operator<<(LgStream& stream, const LgNumber& number)
{
    using Form = LgNumber::Form;
    const double floating = number._floating;
    const int decimals = std::clamp(number._decimals, 0, MOST_DECIMALS);
    Text text;
    const char* end = nullptr;
    if (std::isnan(floating))
        end = writeNan(text);
    else if (number._form == Form::Hexadecimal)
        end = write(text, number._bits, HEXADECIMAL);
    else if (number._form == Form::Decimals)
        end = write(text, floating, std::chars_format::fixed, decimals);
    else if (number._form == Form::Shortest)
        end = write(text, floating);
    else if (number._form == Form::ShortestFloat)
        end = write(text, static_cast<float>(floating));
    else if (number._isFloating)
        end = lgWriteDouble(text, floating);
    else if (number._isNegative)
        end = write(text, static_cast<std::int64_t>(number._bits));
    else
        end = write(text, number._bits);
    const std::string_view written(text, static_cast<std::size_t>(end - text));
    return insertFilled(stream, written, number._width, number._fill);
}

} // namespace Zu
