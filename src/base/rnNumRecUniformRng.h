/// @file
/// The shuffling congruential generator.

#ifndef ZU_BASE_RNNUMRECUNIFORMRNG_H
#define ZU_BASE_RNNUMRECUNIFORMRNG_H

#include "arrayPtr.h"
#include "assertions.h"
#include "baseApi.h"
#include "compiler.h"
#include "rnUniformRng.h"

#include <cstdint>

namespace Zu
{

/// A congruential generator whose values are drawn from a table in shuffled order: RAN2 of W. Press
/// and others, "Numerical Recipes", 1986, after C. Bays and S. Durham, with the modulus 1771875,
/// the multiplier 2416 and the increment 374441. The results are in [0, 1), are multiples of
/// 1/1771875, and may be 0.
///
/// Values can't be left out without being computed, as RnLecuyerUniformRng::skip() does: each value
/// decides which place of the table comes next.
template <class T> class ZU_BASE_VISIBLE RnNumRecUniformRng : public RnUniformRng<T>
{
public:
    /// @{
    /// Seed 0 unless it is given.
    RnNumRecUniformRng();
    explicit RnNumRecUniformRng(unsigned int seed);
    /// @}

    RnNumRecUniformRng(const RnNumRecUniformRng&) = delete;
    RnNumRecUniformRng& operator=(const RnNumRecUniformRng&) = delete;

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;

    /// Goes back to the first value.
    void restart() override;

    /// "Numerical Recipes RAN2".
    const char* getName() const override;

    virtual ~RnNumRecUniformRng();

    /// Goes to the first value of another seed.
    void restart(unsigned int seed);

    /// The next value, without a virtual call.
    ZU_ALWAYS_INLINE T eval()
    {
        const std::uint32_t j = placeOf(_current);
        ZU_ASSERT(j < SHUFFLESIZE);
        _state = next(_state);
        _current = valueOf(_shuffle[j]);
        _shuffle[j] = _state;
        return _current;
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
    static constexpr std::uint32_t SHUFFLESIZE = 97;
    static constexpr std::uint32_t MODULUS = 1771875;
    static constexpr std::uint32_t MULTIPLIER = 2416;
    static constexpr std::uint32_t INCREMENT = 374441;
    static constexpr T RM = T(1) / T(1771875);

    // The numbers are below 2^31, and signed ones are converted faster.
    ZU_ALWAYS_INLINE static T valueOf(std::uint32_t state)
    {
        return static_cast<T>(static_cast<std::int32_t>(state)) * RM;
    }

    ZU_ALWAYS_INLINE static std::uint32_t placeOf(T value)
    {
        return static_cast<std::uint32_t>(
            static_cast<std::int32_t>(value * static_cast<T>(SHUFFLESIZE)));
    }

    ZU_ALWAYS_INLINE static std::uint32_t next(std::uint32_t state)
    {
        return (state * MULTIPLIER + INCREMENT) % MODULUS;
    }

    void getFewValues(unsigned int n, T* values);
    unsigned int getBlocks(unsigned int n, T* values);

    T _current;
    std::uint32_t _seed;
    std::uint32_t _state;
    ArrayPtr<std::uint32_t> _shuffle;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnNumRecUniformRng<float>;
extern template class ZU_BASE_API RnNumRecUniformRng<double>;
#endif

} // namespace Zu

#endif
