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

// Whether an entry matches. `position`, its beginning, is moved to the last blank examined.
bool matches(const ArrayPtr<char>* frame, const char*& position)
{
    const char* word = position;
    while (const char* const blank = std::strchr(word + 1, ' '))
    {
        position = blank;
        word = blank + 1;
        if (beginsWith(word, END)) return true;
        if (!frame->get() || !beginsWith(word, frame->get())) return false;
        // There is nothing to examine past the end of the text.
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
        // Without a blank the position has not moved, so the search steps past the beginning of the
        // entry.
        position = std::strstr(position == entry ? entry + 1 : position, BEGIN);
    }
    return true;
}

} // namespace Zu
