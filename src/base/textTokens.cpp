#include "base/textTokens.h"

#include <algorithm>

namespace Zu
{

char cutAt(char*& rest, const char* delimiters)
{
    rest += std::strcspn(rest, delimiters);
    const char delimiter = *rest;
    if (delimiter != '\0') *rest++ = '\0';
    return delimiter;
}

char* nextToken(char*& rest, char delimiter)
{
    const char delimiters[] = {delimiter, '\0'};
    rest += std::strspn(rest, delimiters);
    if (*rest == '\0') return nullptr;
    char* const token = rest;
    cutAt(rest, delimiters);
    return token;
}

void skip(std::string_view& rest, char delimiter)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(delimiter), rest.size()));
}

std::string_view takeField(std::string_view& rest, char delimiter)
{
    const std::string_view field = rest.substr(0, rest.find(delimiter));
    rest.remove_prefix(field.size());
    skip(rest, delimiter);
    return field;
}

} // namespace Zu
