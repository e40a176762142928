#include "base/rational.h"

#include "base/ieeeDivide.h"

#include <ostream>

namespace Zu
{

double Rational::getReciprocalDouble() const noexcept
{
    return ieeeDivide(static_cast<double>(_denominator), static_cast<double>(_numerator));
}

float Rational::getReciprocalFloat() const noexcept
{
    return ieeeDivide(static_cast<float>(_denominator), static_cast<float>(_numerator));
}

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
