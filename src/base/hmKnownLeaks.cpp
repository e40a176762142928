#include "base/hmKnownLeaks.h"

#include <cstring>

namespace Zu
{

namespace
{

constexpr const char* BEGIN = "KNOWNLEAK";
constexpr const char* END = "ENDL";

bool beginsWith(const char* text, const char* beginning)
{
    return std::strncmp(text, beginning, std::strlen(beginning)) == 0;
}

// Whether an entry matches; `position`, its beginning, is moved to the last blank that was looked
// at.
bool matches(const ArrayPtr<char>* frame, const char*& position)
{
    const char* word = position;
    while (const char* const blank = std::strchr(word + 1, ' '))
    {
        position = blank;
        word = blank + 1;
        if (beginsWith(word, END)) return true;
        if (!frame->get() || !beginsWith(word, frame->get())) return false;
        // There is nothing behind the end of the text to look at.
        if (*word == '\0') return false;
        ++frame;
    }
    return false;
}

} // namespace

bool hmIsUnknownLeak(const ArrayPtr<char>* stack, const char* knownLeaks)
{
    const char* position = std::strstr(knownLeaks, BEGIN);
    while (position)
    {
        const char* const entry = position;
        if (matches(stack, position)) return false;
        // An entry without a blank is behind us only past its first word.
        position = std::strstr(position == entry ? entry + 1 : position, BEGIN);
    }
    return true;
}

} // namespace Zu
