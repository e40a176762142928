#include "base/dtTime.h"

#include <numeric>
#include <ostream>

namespace Zu
{

void DtTime::dump(std::ostream& os) const
{
    os << "(" << _index << " @ " << _rate << ")";
}

std::ostream& operator<<(std::ostream& os, const DtTimeIndex& index)
{
    return os << static_cast<long long>(index);
}

std::ostream& operator<<(std::ostream& os, const DtTime& time)
{
    time.dump(os);
    return os;
}

} // namespace Zu

// The instant in seconds is count * denominator / numerator; hashed in lowest terms.
std::size_t std::hash<Zu::DtTime>::operator()(const Zu::DtTime& time) const noexcept
{
    const std::int64_t count = time.getCount();
    const std::int64_t numerator = time.getRate().getNumerator();
    std::uint64_t magnitude = static_cast<std::uint64_t>(count);
    if (count < 0) magnitude = 0 - magnitude;
    const auto divisor = static_cast<std::uint64_t>(numerator < 0 ? -numerator : numerator);
    const std::uint64_t common = std::gcd(magnitude, divisor);
    const auto denominator = static_cast<std::uint64_t>(time.getRate().getDenominator());
    std::uint64_t above = magnitude / common * denominator;
    if ((count < 0) != (numerator < 0)) above = 0 - above;
    return std::hash<std::uint64_t>()(above) * 31 + std::hash<std::uint64_t>()(divisor / common);
}
