/// @file
/// L'Ecuyer's combined generator.

#ifndef ZU_BASE_RNLECUYERUNIFORMRNG_H
#define ZU_BASE_RNLECUYERUNIFORMRNG_H

#include "baseApi.h"
#include "compiler.h"
#include "rnUniformRng.h"

#include <cstdint>

namespace Zu
{

/// The factor by which the integers of the generator are multiplied.
template <class T> struct RnLecuyerScale;

/// In single precision.
template <> struct RnLecuyerScale<float>
{
    /// The float nearest to 1/2147483563.
    static constexpr float VALUE = 0x1p-31F;
};

/// In double precision.
template <> struct RnLecuyerScale<double>
{
    /// 1/2147483563, rounded.
    static constexpr double VALUE = 1.0 / 2147483563.0;
};

/// Two combined multiplicative congruential generators: P. L'Ecuyer, "Efficient and portable
/// combined random number generators", Communications of the ACM 31, 1988. The two streams are
/// deliberately combined by a sum, where the paper has the difference. The results are strictly
/// between 0 and 1; the largest `float` is 1 - 2^-24.
///
/// The effect of the seeds is frozen, see docs/compatibility.md: the second seed starts the first
/// stream, the first seed has no effect on any result, and no restart touches the second stream,
/// which begins at 55555 when the object is made and runs on from there. So a restarted generator
/// does not in general repeat itself. Seeds are not checked; a stream at 0 stays there.
template <class T> class ZU_BASE_VISIBLE RnLecuyerUniformRng : public RnUniformRng<T>
{
public:
    /// @{
    /// Seeds 55555 and 99999 unless they are given.
    RnLecuyerUniformRng();
    explicit RnLecuyerUniformRng(unsigned int seed0);
    RnLecuyerUniformRng(unsigned int seed0, unsigned int seed1);
    /// @}

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;

    /// The first stream goes back to the second seed.
    void restart() override;

    /// "Lecuyer".
    const char* getName() const override;

    virtual ~RnLecuyerUniformRng();

    /// Takes new seeds; the first stream starts at the second one.
    void restart(unsigned int seed0, unsigned int seed1);

    /// Leaves out the next `n` values, in a time that grows with the logarithm of `n`: afterwards
    /// the generator is where `n` draws would have brought it. For parts of one stream in several
    /// threads. The streams have periods of 2147483562 and 2147483398, together of 2.3 * 10^18.
    void skip(std::uint64_t n);

    /// The next value, without a virtual call.
    ZU_ALWAYS_INLINE T eval()
    {
        _state0 = stepped<MULTIPLIER0, MODULUS0>(_state0);
        _state1 = stepped<MULTIPLIER1, MODULUS1>(_state1);
        return joined(_state0, _state1);
    }

    /// The next value, scaled to a range.
    ZU_ALWAYS_INLINE T evalRange(T min, T max)
    {
        return eval() * (max - min) + min;
    }

    /// The next value times `max`.
    ZU_ALWAYS_INLINE T evalScaled(T max)
    {
        return eval() * max;
    }

private:
    static constexpr std::int32_t MODULUS0 = 2147483563;
    static constexpr std::int32_t MODULUS1 = 2147483399;
    static constexpr std::int32_t MULTIPLIER0 = 40014;
    static constexpr std::int32_t MULTIPLIER1 = 40692;
    static constexpr std::int32_t START1 = 55555;

    // One step by Schrage's factorisation, MODULUS = MULTIPLIER * QUOTIENT + REST. Masks replace
    // branches that are unpredictable.
    template <std::int32_t MULTIPLIER, std::int32_t MODULUS>
    ZU_ALWAYS_INLINE static std::int32_t stepped(std::int32_t state)
    {
        constexpr std::int32_t QUOTIENT = MODULUS / MULTIPLIER;
        constexpr std::int32_t REST = MODULUS % MULTIPLIER;
        const std::int32_t k = state / QUOTIENT;
        const std::int32_t next = MULTIPLIER * (state - k * QUOTIENT) - k * REST;
        return next + (MODULUS & (next >> 31));
    }

    ZU_ALWAYS_INLINE static T joined(std::int32_t state0, std::int32_t state1)
    {
        const auto z = static_cast<std::int32_t>(static_cast<std::uint32_t>(state1) +
                                                 static_cast<std::uint32_t>(state0) -
                                                 static_cast<std::uint32_t>(MODULUS0));
        return static_cast<T>(z + ((MODULUS0 - 1) & ((z - 1) >> 31))) * RnLecuyerScale<T>::VALUE;
    }

    void getFewValues(unsigned int n, T* values);
    unsigned int getBlocks(unsigned int n, T* values);

    std::uint32_t _seed0;
    std::uint32_t _seed1;
    std::int32_t _state0;
    std::int32_t _state1;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnLecuyerUniformRng<float>;
extern template class ZU_BASE_API RnLecuyerUniformRng<double>;
#endif

} // namespace Zu

#endif
