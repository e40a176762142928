#include "base/rnNumRecUniformRng.h"

namespace Zu
{

namespace
{

// How many steps of the congruential generator run side by side in a sequence.
constexpr unsigned int LANES = 4;

// The number of values from which the table of a sequence pays off.
constexpr unsigned int SEQUENCE_PAYS = 256;

} // namespace

template <class T> RnNumRecUniformRng<T>::RnNumRecUniformRng() : RnNumRecUniformRng(0) {}

template <class T>
RnNumRecUniformRng<T>::RnNumRecUniformRng(unsigned int seed)
    : _shuffle(new std::uint32_t[SHUFFLESIZE])
{
    restart(seed);
}

template <class T> RnNumRecUniformRng<T>::~RnNumRecUniformRng() = default;

template <class T> T RnNumRecUniformRng<T>::operator()()
{
    return eval();
}

template <class T> void RnNumRecUniformRng<T>::getSample(T& value)
{
    value = eval();
}

template <class T> void RnNumRecUniformRng<T>::getSequence(unsigned int n, T* values)
{
    const unsigned int done = n < SEQUENCE_PAYS ? 0 : getBlocks(n, values);
    getFewValues(n - done, values + done);
}

template <class T> void RnNumRecUniformRng<T>::getFewValues(unsigned int n, T* values)
{
    for (unsigned int i = 0; i < n; ++i) values[i] = eval();
}

// A plain draw is limited by its dependency chain: entry, value, index of the next entry. Here each
// entry is stored with its index, computed when it is put into the table, and the generator takes
// leaps.
template <class T> unsigned int RnNumRecUniformRng<T>::getBlocks(unsigned int n, T* values)
{
    constexpr std::uint64_t leap2 = std::uint64_t(MULTIPLIER) * MULTIPLIER % MODULUS;
    constexpr std::uint64_t add2 = (std::uint64_t(MULTIPLIER) * INCREMENT + INCREMENT) % MODULUS;
    constexpr std::uint64_t leap4 = leap2 * leap2 % MODULUS;
    constexpr std::uint64_t add4 = (leap2 * add2 + add2) % MODULUS;
    const auto entryOf = [](std::uint32_t state)
    { return std::uint64_t(placeOf(valueOf(state))) << 32 | state; };

    std::uint64_t entries[SHUFFLESIZE];
    for (std::uint32_t i = 0; i < SHUFFLESIZE; ++i) entries[i] = entryOf(_shuffle[i]);
    std::uint32_t lanes[LANES];
    lanes[0] = next(_state);
    for (unsigned int k = 1; k < LANES; ++k) lanes[k] = next(lanes[k - 1]);

    std::uint32_t j = placeOf(_current);
    unsigned int done = 0;
    for (; n - done >= LANES; done += LANES)
        for (unsigned int k = 0; k < LANES; ++k)
        {
            ZU_ASSERT(j < SHUFFLESIZE);
            const std::uint64_t entry = entries[j];
            values[done + k] = valueOf(static_cast<std::uint32_t>(entry));
            entries[j] = entryOf(lanes[k]);
            j = static_cast<std::uint32_t>(entry >> 32);
            _state = lanes[k];
            lanes[k] = static_cast<std::uint32_t>((lanes[k] * leap4 + add4) % MODULUS);
        }
    for (std::uint32_t i = 0; i < SHUFFLESIZE; ++i)
        _shuffle[i] = static_cast<std::uint32_t>(entries[i]);
    _current = values[done - 1];
    return done;
}

template <class T> void RnNumRecUniformRng<T>::restart()
{
    restart(_seed);
}

template <class T> void RnNumRecUniformRng<T>::restart(unsigned int seed)
{
    _seed = seed;
    _state = (seed + INCREMENT) % MODULUS;
    for (std::uint32_t i = 0; i < SHUFFLESIZE; ++i)
    {
        _state = next(_state);
        _shuffle[i] = _state;
    }
    _state = next(_state);
    _current = valueOf(_state);
}

template <class T> const char* RnNumRecUniformRng<T>::getName() const
{
    return "Numerical Recipes RAN2";
}

template class ZU_BASE_API RnNumRecUniformRng<float>;
template class ZU_BASE_API RnNumRecUniformRng<double>;

} // namespace Zu
