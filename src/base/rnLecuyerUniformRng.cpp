#include "base/rnLecuyerUniformRng.h"

#include <cstddef>
#include <emmintrin.h>

namespace Zu
{

namespace
{

// A sequence is computed in leaps: each stream runs in eight lanes, each of which skips the other
// seven. All lanes fit in two registers of four.
constexpr unsigned int LANES = 8;
constexpr unsigned int REGISTERS = LANES / 4;

// What a modulus is short of 2^31.
constexpr std::int32_t restOf(std::int32_t modulus)
{
    return static_cast<std::int32_t>((std::int64_t{1} << 31) - modulus);
}

// A number raised to a power, by squares.
constexpr std::uint64_t powerOf(std::uint64_t number, std::uint64_t exponent, std::uint64_t modulus)
{
    std::uint64_t power = 1;
    for (; exponent != 0; exponent >>= 1)
    {
        if ((exponent & 1) != 0) power = power * number % modulus;
        number = number * number % modulus;
    }
    return power;
}

// A multiplier raised to the power of the number of lanes.
constexpr std::int32_t leap(std::uint64_t multiplier, std::uint64_t modulus)
{
    return static_cast<std::int32_t>(powerOf(multiplier, LANES, modulus));
}

// A state, from 0 to the modulus - 1, that many steps further.
std::int32_t leaptBy(std::uint64_t n, std::int32_t state, std::int32_t multiplier,
                     std::int32_t modulus)
{
    const auto divisor = static_cast<std::uint64_t>(modulus);
    const std::uint64_t factor = powerOf(static_cast<std::uint64_t>(multiplier), n, divisor);
    return static_cast<std::int32_t>(static_cast<std::uint64_t>(state) * factor % divisor);
}

// Reduces numbers below 2^62 to congruent ones modulo 2^31 - REST. Two such steps leave little more
// than 31 bits.
template <int REST> __m128i folded(__m128i numbers)
{
    const __m128i low = _mm_and_si128(numbers, _mm_set1_epi64x(0x7fffffff));
    const __m128i high = _mm_mul_epu32(_mm_srli_epi64(numbers, 31), _mm_set1_epi64x(REST));
    return _mm_add_epi64(low, high);
}

// The products of the even lanes with a multiplier.
template <int REST> __m128i product(__m128i lanes, __m128i multiplier)
{
    return folded<REST>(folded<REST>(_mm_mul_epu32(lanes, multiplier)));
}

// Adds the number to those lanes that are negative.
__m128i addedWhereNegative(__m128i lanes, __m128i number)
{
    return _mm_add_epi32(lanes, _mm_and_si128(_mm_srai_epi32(lanes, 31), number));
}

// Four lanes, each from 0 to 2^31 - REST - 1, one leap further.
template <int REST> __m128i leapt(__m128i lanes, __m128i multiplier, __m128i modulus)
{
    const __m128i even = product<REST>(lanes, multiplier);
    const __m128i odd = product<REST>(_mm_srli_epi64(lanes, 32), multiplier);
    const __m128i both = _mm_or_si128(even, _mm_slli_epi64(odd, 32));
    return addedWhereNegative(_mm_sub_epi32(both, modulus), modulus);
}

void store(__m128i numbers, double* values)
{
    const __m128d scale = _mm_set1_pd(RnLecuyerScale<double>::VALUE);
    const __m128i upper = _mm_shuffle_epi32(numbers, _MM_SHUFFLE(3, 2, 3, 2));
    _mm_storeu_pd(values, _mm_mul_pd(_mm_cvtepi32_pd(numbers), scale));
    _mm_storeu_pd(values + 2, _mm_mul_pd(_mm_cvtepi32_pd(upper), scale));
}

void store(__m128i numbers, float* values)
{
    const __m128 scale = _mm_set1_ps(RnLecuyerScale<float>::VALUE);
    _mm_storeu_ps(values, _mm_mul_ps(_mm_cvtepi32_ps(numbers), scale));
}

__m128i loaded(const std::int32_t* numbers)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(numbers));
}

std::int32_t last(__m128i numbers)
{
    return _mm_cvtsi128_si32(_mm_shuffle_epi32(numbers, _MM_SHUFFLE(3, 3, 3, 3)));
}

} // namespace

template <class T> RnLecuyerUniformRng<T>::RnLecuyerUniformRng() : RnLecuyerUniformRng(55555) {}

template <class T>
RnLecuyerUniformRng<T>::RnLecuyerUniformRng(unsigned int seed0) : RnLecuyerUniformRng(seed0, 99999)
{
}

template <class T>
RnLecuyerUniformRng<T>::RnLecuyerUniformRng(unsigned int seed0, unsigned int seed1)
    : _seed0(seed0), _seed1(seed1), _state0(static_cast<std::int32_t>(seed1)), _state1(START1)
{
}

template <class T> RnLecuyerUniformRng<T>::~RnLecuyerUniformRng() = default;

template <class T> T RnLecuyerUniformRng<T>::operator()()
{
    return eval();
}

template <class T> void RnLecuyerUniformRng<T>::getSample(T& value)
{
    value = eval();
}

template <class T> void RnLecuyerUniformRng<T>::getSequence(unsigned int n, T* values)
{
    const unsigned int done = n < 2 * LANES ? 0 : getBlocks(n, values);
    getFewValues(n - done, values + done);
}

template <class T> void RnLecuyerUniformRng<T>::getFewValues(unsigned int n, T* values)
{
    for (unsigned int i = 0; i < n; ++i) values[i] = eval();
}

template <class T> unsigned int RnLecuyerUniformRng<T>::getBlocks(unsigned int n, T* values)
{
    // The first steps are plain ones, which bring any seed between 0 and the modulus.
    std::int32_t start0[LANES];
    std::int32_t start1[LANES];
    for (unsigned int i = 0; i < LANES; ++i)
    {
        values[i] = eval();
        start0[i] = _state0;
        start1[i] = _state1;
    }
    __m128i lanes0[REGISTERS];
    __m128i lanes1[REGISTERS];
    for (std::size_t r = 0; r < REGISTERS; ++r)
    {
        lanes0[r] = loaded(start0 + 4 * r);
        lanes1[r] = loaded(start1 + 4 * r);
    }
    const __m128i multiplier0 = _mm_set1_epi64x(leap(MULTIPLIER0, MODULUS0));
    const __m128i multiplier1 = _mm_set1_epi64x(leap(MULTIPLIER1, MODULUS1));
    const __m128i modulus0 = _mm_set1_epi32(MODULUS0);
    const __m128i modulus1 = _mm_set1_epi32(MODULUS1);
    const __m128i one = _mm_set1_epi32(1);
    unsigned int done = LANES;
    for (; n - done >= LANES; done += LANES)
        for (unsigned int r = 0; r < REGISTERS; ++r)
        {
            lanes0[r] = leapt<restOf(MODULUS0)>(lanes0[r], multiplier0, modulus0);
            lanes1[r] = leapt<restOf(MODULUS1)>(lanes1[r], multiplier1, modulus1);
            // z - 1, so that the sign shows where z is below 1.
            const __m128i z =
                _mm_sub_epi32(_mm_sub_epi32(_mm_add_epi32(lanes1[r], lanes0[r]), modulus0), one);
            const __m128i less = _mm_set1_epi32(MODULUS0 - 1);
            store(_mm_add_epi32(addedWhereNegative(z, less), one), values + done + 4 * r);
        }
    _state0 = last(lanes0[REGISTERS - 1]);
    _state1 = last(lanes1[REGISTERS - 1]);
    return done;
}

template <class T> void RnLecuyerUniformRng<T>::restart()
{
    _state0 = static_cast<std::int32_t>(_seed1);
}

template <class T> void RnLecuyerUniformRng<T>::restart(unsigned int seed0, unsigned int seed1)
{
    _seed0 = seed0;
    _seed1 = seed1;
    restart();
}

template <class T> void RnLecuyerUniformRng<T>::skip(std::uint64_t n)
{
    if (n == 0) return;
    // A plain step brings any seed between 0 and the modulus.
    eval();
    _state0 = leaptBy(n - 1, _state0, MULTIPLIER0, MODULUS0);
    _state1 = leaptBy(n - 1, _state1, MULTIPLIER1, MODULUS1);
}

template <class T> const char* RnLecuyerUniformRng<T>::getName() const
{
    return "Lecuyer";
}

template class ZU_BASE_API RnLecuyerUniformRng<float>;
template class ZU_BASE_API RnLecuyerUniformRng<double>;

} // namespace Zu
