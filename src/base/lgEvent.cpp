#include "base/lgEvent.h"

#include <iostream>
#include <vector>

namespace Zu
{

LgStream& LgDirectLine::getStream()
{
    return _stream;
}

void LgDirectLine::write()
{
    _stream.completeString();
    std::vector<char> text(_stream.getNextSize() + 1);
    _stream >> text.data();
    text.back() = '\n';
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
}

} // namespace Zu
