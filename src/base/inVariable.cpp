#include "base/inVariable.h"

#include "base/inVariable.imp"
#include "base/textToInt.h"

#include <string_view>

namespace Zu
{

namespace
{

char lowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool isFalseWord(std::string_view text)
{
    constexpr std::string_view word = "false";
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return lowerCase(a) == b; });
}

} // namespace

template <> struct InValueText<int>
{
    static int read(const char* text)
    {
        return textToInt(text);
    }
};

template <> struct InValueText<bool>
{
    static bool read(std::string_view text)
    {
        return text != "0" && !isFalseWord(text);
    }
};

template <> struct InValueText<const char*>
{
    static const char* read(const char* text)
    {
        return text;
    }
};

template class ZU_BASE_API InVariable<int>;
template class ZU_BASE_API InVariable<bool>;
template class ZU_BASE_API InVariable<const char*>;

} // namespace Zu
