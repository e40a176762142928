#include "app/apTestGlob.h"

#include <cstddef>

namespace Zu
{

namespace
{

// Behind the character that begins at the index.
std::size_t behindCharacter(std::string_view text, std::size_t index)
{
    const auto continues = [&](std::size_t i)
    { return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80U; };
    // A byte that only continues a character begins none here.
    if (continues(index)) return index + 1;
    ++index;
    while (continues(index)) ++index;
    return index;
}

} // namespace

bool apMatchesGlob(std::string_view pattern, std::string_view text)
{
    constexpr std::size_t NONE = std::string_view::npos;
    std::size_t p = 0;
    std::size_t t = 0;
    // Behind the last star, and the place up to which it stands for the text. An earlier star never
    // has to take more: what stands between the two was found at its first place.
    std::size_t behindStar = NONE;
    std::size_t taken = 0;
    while (t < text.size())
    {
        if (p < pattern.size() && pattern[p] == '*')
        {
            behindStar = ++p;
            taken = t;
        }
        else if (p < pattern.size() && pattern[p] == '?')
        {
            ++p;
            t = behindCharacter(text, t);
        }
        else if (p < pattern.size() && pattern[p] == text[t])
        {
            ++p;
            ++t;
        }
        else if (behindStar != NONE)
        {
            p = behindStar;
            t = taken = behindCharacter(text, taken);
        }
        else
            return false;
    }
    return pattern.find_first_not_of('*', p) == NONE;
}

bool apIsGlob(std::string_view text)
{
    return text.find_first_of("*?") != std::string_view::npos;
}

} // namespace Zu
