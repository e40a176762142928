/// @file
/// Powers of two.

#ifndef ZU_BASE_POW2_H
#define ZU_BASE_POW2_H

#include "assertions.h"
#include "compiler.h"

#include <cstdint>

namespace Zu
{

/// Powers of two among unsigned 32-bit integers. Results beyond the range are deliberate: shift
/// counts are taken modulo 32.
class Pow2
{
public:
    Pow2() = delete;

    /// 2 to the power `n` modulo 32.
    static constexpr std::uint32_t exp(std::uint32_t n) noexcept
    {
        return std::uint32_t{1} << (n & 31);
    }

    /// The position of the highest bit that is set. Raises ExInternalError "Assertion 'x != 0'
    /// failed." for 0.
    static constexpr std::uint32_t log2Floor(std::uint32_t x)
    {
        ZU_ASSERT(x != 0);
        return highestBit(x);
    }

    /// The smallest k for which 2 to the power k is at least `x`; 32 for 0 and above 2^31.
    static constexpr std::uint32_t log2Ceil(std::uint32_t x) noexcept
    {
        if (x == 0) return 32;
        return x == 1 ? 0 : highestBit(x - 1) + 1;
    }

    /// The smallest power of two that is at least `x`; 0 for 0, and 1 above 2^31.
    static constexpr std::uint32_t ceil(std::uint32_t x) noexcept
    {
        return x == 0 ? 0 : exp(log2Ceil(x));
    }

private:
    // For a number that is not 0.
    static constexpr std::uint32_t highestBit(std::uint32_t x) noexcept
    {
        return 31U - static_cast<std::uint32_t>(Compiler::countLeadingZeros(x));
    }
};

} // namespace Zu

#endif
