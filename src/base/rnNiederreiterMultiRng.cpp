#include "base/rnNiederreiterMultiRng.h"

#include "base/rnNiederreiterTables.h"

#include <algorithm>
#include <typeinfo>

namespace Zu
{

namespace
{

using namespace RnNiederreiterTables;

constexpr std::uint32_t SKIP = 4096;

// Scaling by a power of two is exact, so that even in float the only rounding is that of the 31-bit
// number.
template <class T> T valueOf(std::uint32_t word)
{
    return static_cast<T>(static_cast<std::int32_t>(word)) * T(0x1p-31);
}

const std::uint32_t* wordsOf(int byte, std::uint32_t number)
{
    return BYTE_TABLE._words[byte][number >> (8 * byte) & 0xff];
}

} // namespace

template <class T> RnNiederreiterMultiRng<T>::RnNiederreiterMultiRng() : _index(0) {}

template <class T> RnNiederreiterMultiRng<T>::~RnNiederreiterMultiRng() = default;

template <class T> void RnNiederreiterMultiRng<T>::getSample(T* const values)
{
    const std::uint32_t number = _index + SKIP;
    ++_index;
    const std::uint32_t* const words0 = wordsOf(0, number);
    const std::uint32_t* const words1 = wordsOf(1, number);
    const std::uint32_t* const words2 = wordsOf(2, number);
    const std::uint32_t* const words3 = wordsOf(3, number);
    for (int d = 0; d < DIMENSIONS; ++d)
        values[d] = valueOf<T>(words0[d] ^ words1[d] ^ words2[d] ^ words3[d]);
}

template <class T> void RnNiederreiterMultiRng<T>::getSequence(unsigned int n, T** const arrays)
{
    if (typeid(*this) == typeid(RnNiederreiterMultiRng))
    {
        getBlocks(n, arrays);
        return;
    }
    for (unsigned int i = 0; i < n; ++i)
    {
        T values[DIMENSIONS];
        getSample(values);
        for (int d = 0; d < DIMENSIONS; ++d) arrays[d][i] = values[d];
    }
}

// Points whose numbers differ only in the low byte have all other words in common.
template <class T> void RnNiederreiterMultiRng<T>::getBlocks(unsigned int n, T** const arrays)
{
    for (unsigned int done = 0; done < n;)
    {
        const std::uint32_t number = _index + SKIP;
        const std::uint32_t low = number % BYTE_VALUES;
        const unsigned int count = std::min(n - done, BYTE_VALUES - low);
        for (int d = 0; d < DIMENSIONS; ++d)
        {
            const std::uint32_t common =
                wordsOf(1, number)[d] ^ wordsOf(2, number)[d] ^ wordsOf(3, number)[d];
            const std::uint32_t* const words = LOW_TABLE._words[d] + low;
            T* const values = arrays[d] + done;
            for (unsigned int i = 0; i < count; ++i) values[i] = valueOf<T>(words[i] ^ common);
        }
        _index += count;
        done += count;
    }
}

template <class T> void RnNiederreiterMultiRng<T>::restart()
{
    _index = 0;
}

template <class T> void RnNiederreiterMultiRng<T>::restart(unsigned int n)
{
    _index = n;
}

// Numbers of points have 32 bits, and go on with 0.
template <class T> void RnNiederreiterMultiRng<T>::skip(std::uint64_t n)
{
    _index += static_cast<std::uint32_t>(n);
}

template <class T> const char* RnNiederreiterMultiRng<T>::getName() const
{
    return "Niederreiter";
}

template class ZU_BASE_API RnNiederreiterMultiRng<float>;
template class ZU_BASE_API RnNiederreiterMultiRng<double>;

} // namespace Zu
