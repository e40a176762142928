#include "base/duplicateString.h"

#include <cstring>

namespace Zu
{

namespace
{

ArrayPtrRet<char> copyOf(const char* text, std::size_t length, std::size_t capacity)
{
    ArrayPtrRet<char> copy(new char[capacity + 1]);
    if (length > 0) std::memcpy(copy.get(), text, length);
    copy[length] = '\0';
    return copy;
}

} // namespace

ArrayPtrRet<char> duplicateString(const char* text, unsigned int maxLength)
{
    return copyOf(text, text ? strnlen(text, maxLength) : 0, maxLength);
}

ArrayPtrRet<char> duplicateString(const char* text)
{
    const std::size_t length = text ? std::strlen(text) : 0;
    return copyOf(text, length, length);
}

} // namespace Zu
