#include "base/plainNumber.h"

#include "base/plainTextStream.h"

#include <locale>
#include <ostream>

namespace Zu
{

namespace
{

// Decimal point and grouping come from the stream for which a number is formatted. If that has
// another locale, the text is made on a separate stream.
template <class T> std::ostream& write(std::ostream& os, T value)
{
    if (os.getloc() == std::locale::classic()) return os << value;
    PlainTextStream text;
    text.flags(os.flags());
    text.precision(os.precision());
    text.width(os.width(0));
    text.fill(os.fill());
    text << value;
    return os << text.str();
}

} // namespace

std::ostream& writePlain(std::ostream& os, short value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, unsigned short value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, int value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, unsigned int value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, long value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, unsigned long value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, long long value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, unsigned long long value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, float value)
{
    return write(os, value);
}

std::ostream& writePlain(std::ostream& os, double value)
{
    return write(os, value);
}

} // namespace Zu
