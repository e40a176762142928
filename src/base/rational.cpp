#include "base/rational.h"

#include "base/plainNumber.h"

#include <ostream>

namespace Zu
{

void Rational::dump(std::ostream& os) const
{
    os << "(" << plainNumber(_numerator) << "/" << plainNumber(_denominator) << "="
       << plainNumber(getDouble()) << ")";
}

std::ostream& operator<<(std::ostream& os, const Rational& rational)
{
    rational.dump(os);
    return os;
}

} // namespace Zu
