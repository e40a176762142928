// What an insertion operator of LgStream writes.

#ifndef ZU_TESTS_RINGTEXT_H
#define ZU_TESTS_RINGTEXT_H

#include "base/lgStream.h"

#include <string>
#include <vector>

namespace support
{

template <class T> std::string ringTextOf(const T& value)
{
    Zu::LgStream stream;
    stream << value << Zu::ends;
    std::vector<char> text(Zu::LgStream::getMaxSize() + 2);
    stream >> text.data();
    return text.data();
}

} // namespace support

#endif
