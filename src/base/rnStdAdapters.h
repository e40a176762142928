/// @file
/// Adapters between sources of samples and the random numbers of the standard library.

#ifndef ZU_BASE_RNSTDADAPTERS_H
#define ZU_BASE_RNSTDADAPTERS_H

#include "rnUniformRng.h"

#include <cstdint>
#include <limits>
#include <random>

namespace Zu
{

/// A uniform source as a generator of random bits, for the distributions and algorithms of the
/// standard library. Each draw returns the leading bits of the sample: 16 of a `float`, 31 of a
/// `double`. A sample of 1 or more gives all ones; a negative one or a NaN gives 0. The bits are no
/// better than the source: RnNumRecUniformRng has fewer than 21, RnStdUniformRng has 15.
///
/// The source must live as long as it is drawn from; it is not owned.
template <class T> class RnBitGenerator
{
    static constexpr int BITS = sizeof(T) == sizeof(float) ? 16 : 31;

public:
    /// An integer of the bits.
    using result_type = std::uint32_t;

    /// Draws from `rng`.
    explicit RnBitGenerator(RnRng<T>& rng) : _rng(&rng) {}

    /// No bit is set.
    static constexpr result_type min()
    {
        return 0;
    }

    /// All bits are set: 16 for a source of `float`, 31 for one of `double`.
    static constexpr result_type max()
    {
        return (result_type(1) << BITS) - 1;
    }

    /// The bits of the next sample.
    result_type operator()()
    {
        const T scaled = (*_rng)() * static_cast<T>(result_type(1) << BITS);
        if (!(scaled > T(0))) return min();
        return scaled < static_cast<T>(max()) ? static_cast<result_type>(scaled) : max();
    }

private:
    RnRng<T>* _rng;
};

/// A source in place of a distribution of the standard library. The generator that is passed to it
/// is not used: the source has its own.
///
/// The source must live as long as it is drawn from; it is not owned.
template <class T> class RnDistribution
{
public:
    /// The type of the samples.
    using result_type = T;

    /// Draws from `rng`.
    explicit RnDistribution(RnRng<T>& rng) : _rng(&rng) {}

    /// @{
    /// The next sample of the source.
    result_type operator()()
    {
        return (*_rng)();
    }

    template <class Generator> result_type operator()(Generator&)
    {
        return (*_rng)();
    }
    /// @}

    /// @{
    /// The range in which samples effectively lie.
    result_type min() const
    {
        return _rng->getEfficientMin();
    }

    result_type max() const
    {
        return _rng->getEfficientMax();
    }
    /// @}

    /// Restarts the source.
    void reset()
    {
        _rng->restart();
    }

private:
    RnRng<T>* _rng;
};

/// The reverse of RnBitGenerator: a generator of random bits of the standard library as a uniform
/// source. A restart goes back to the state that the generator had when it was passed in.
template <class T, class Engine = std::mt19937> class RnEngineRng : public RnUniformRng<T>
{
public:
    /// Copies the engine, in its present state.
    explicit RnEngineRng(const Engine& engine = Engine()) : _start(engine), _engine(engine) {}

    virtual ~RnEngineRng() = default;

    T operator()() override
    {
        // The function rounds, and may return 1.
        T value;
        do value = std::generate_canonical<T, std::numeric_limits<T>::digits>(_engine);
        while (!(value < T(1)));
        return value;
    }

    void getSample(T& value) override
    {
        value = RnEngineRng::operator()();
    }

    void getSequence(unsigned int n, T* values) override
    {
        for (unsigned int i = 0; i < n; ++i) values[i] = RnEngineRng::operator()();
    }

    void restart() override
    {
        _engine = _start;
    }

    /// "Standard engine".
    const char* getName() const override
    {
        return "Standard engine";
    }

private:
    Engine _start;
    Engine _engine;
};

} // namespace Zu

#endif
