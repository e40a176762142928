#include "base/dtTime.h"

#include "base/plainNumber.h"

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
    return os << plainNumber(static_cast<long long>(index));
}

std::ostream& operator<<(std::ostream& os, const DtTime& time)
{
    time.dump(os);
    return os;
}

} // namespace Zu

// The instant in seconds is count * denominator / numerator, which is hashed in lowest terms. The
// two terms of a rate have a common divisor only if one of them is the smallest integer.
std::size_t std::hash<Zu::DtTime>::operator()(const Zu::DtTime& time) const noexcept
{
    const std::int64_t terms[] = {time.getCount(), time.getRate().getDenominator(),
                                  time.getRate().getNumerator()};
    std::uint64_t magnitudes[3];
    bool isNegative = false;
    for (int i = 0; i < 3; ++i)
    {
        const auto bits = static_cast<std::uint64_t>(terms[i]);
        magnitudes[i] = terms[i] < 0 ? 0 - bits : bits;
        isNegative ^= terms[i] < 0;
    }
    auto& [count, denominator, numerator] = magnitudes;
    for (std::uint64_t* const above : {&denominator, &count})
    {
        const std::uint64_t common = std::gcd(*above, numerator);
        *above /= common;
        numerator /= common;
    }
    const std::uint64_t above = count * denominator;
    return std::hash<std::uint64_t>()(isNegative ? 0 - above : above) * 31 +
           std::hash<std::uint64_t>()(numerator);
}
