#include "base/rational.h"

#include <ostream>

namespace Zu
{

void Rational::dump(std::ostream& os) const
{
    os << "(" << _numerator << "/" << _denominator << "=" << getDouble() << ")";
}

std::ostream& operator<<(std::ostream& os, const Rational& rational)
{
    rational.dump(os);
    return os;
}

} // namespace Zu
