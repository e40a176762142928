/// @file
/// What belongs to a compiler and not to the language: the one place to add a further compiler.
///
/// Each thing has a portable form beside the one of g++ and clang++. It is used with any other
/// compiler, and with all of them where ZU_COMPILER_PORTABLE is defined for a whole build.

#ifndef ZU_BASE_COMPILER_H
#define ZU_BASE_COMPILER_H

#include <cstdint>
#include <limits>
#include <type_traits>

#if __has_include(<version>)
#include <version>
#endif

/// @def ZU_COMPILER_GNU
/// Is 1 where the compiler has what g++ has, and 0 where the portable forms are used.
#if defined(__GNUC__) && !defined(ZU_COMPILER_PORTABLE)
#define ZU_COMPILER_GNU 1
#else
#define ZU_COMPILER_GNU 0
#endif

#if !ZU_COMPILER_GNU && defined(__cpp_lib_bit_cast)
#include <bit>
#endif

/// @def ZU_ALWAYS_INLINE
/// A function that is worth its name only inside the loops that call it. The portable form leaves
/// that to the compiler.
///
/// @def ZU_PRINTF_FORMAT
/// The parameter of this number, counted with `this`, is a `printf` format for those from `first`
/// on, and the compiler warns where they don't fit.
///
/// @def ZU_CAN_PREFETCH_FOR_WRITING
/// A function that may use the instruction that fetches a cache line to write to it.
///
/// @def ZU_INIT_PRIORITY
/// Builds a static object before all of a greater number, above 100, and those without one. In the
/// portable form the order among sources is the linker's.
///
/// @def ZU_IGNORE_NON_VIRTUAL_DTOR
/// Between this and ZU_END_IGNORE no warning of classes with virtual functions that nobody deletes
/// through a base.
///
/// @def ZU_IGNORE_DEPRECATED
/// Between this and ZU_END_IGNORE no warning of what the language or a library has given up.
///
/// @def ZU_END_IGNORE
/// Ends the one before.
#if ZU_COMPILER_GNU
#define ZU_ALWAYS_INLINE [[gnu::always_inline]]
#define ZU_PRINTF_FORMAT(text, first) [[gnu::format(printf, text, first)]]
#define ZU_CAN_PREFETCH_FOR_WRITING [[gnu::target("prfchw")]]
#define ZU_INIT_PRIORITY(priority) __attribute__((init_priority(priority)))
#else
#define ZU_ALWAYS_INLINE
#define ZU_PRINTF_FORMAT(text, first)
#define ZU_CAN_PREFETCH_FOR_WRITING
#define ZU_INIT_PRIORITY(priority)
#endif

// Of warnings there is no form that would be portable.
#if defined(__GNUC__)
#define ZU_IGNORE_NON_VIRTUAL_DTOR                                                                 \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wnon-virtual-dtor\"")
#define ZU_IGNORE_DEPRECATED                                                                       \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wdeprecated-declarations\"")
#define ZU_END_IGNORE _Pragma("GCC diagnostic pop")
#else
#define ZU_IGNORE_NON_VIRTUAL_DTOR
#define ZU_IGNORE_DEPRECATED
#define ZU_END_IGNORE
#endif

/// @def ZU_CONSTINIT_VECTOR
/// Before a static vector that is there before any constructor runs; where the standard library's
/// own needs one, that is the library's first.
///
/// @def ZU_CONSTINIT_VECTOR_PRIORITY
/// Behind the name of such a vector.
#if defined(__cpp_lib_constexpr_vector)
#define ZU_CONSTINIT_VECTOR constinit
#define ZU_CONSTINIT_VECTOR_PRIORITY
#else
#define ZU_CONSTINIT_VECTOR
#define ZU_CONSTINIT_VECTOR_PRIORITY ZU_INIT_PRIORITY(101)
#endif

/// @def ZU_THREAD_SANITIZER
/// Is 1 where ThreadSanitizer looks on, which knows orders between atomics alone, and 0 otherwise.
#if defined(__SANITIZE_THREAD__)
#define ZU_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZU_THREAD_SANITIZER 1
#else
#define ZU_THREAD_SANITIZER 0
#endif
#else
#define ZU_THREAD_SANITIZER 0
#endif

/// What a compiler does with one instruction, and the language with several.
namespace Zu::Compiler
{

/// The forms that need nothing but the language.
namespace Portable
{

/// An unsigned number of 128 bits, with the operations that the library needs. Counts of shifts
/// are from 0 to 127.
class UInt128
{
public:
    /// A number of 64 bits.
    constexpr UInt128(std::uint64_t low) noexcept : _high(0), _low(low) {}

    /// The number with these halves.
    constexpr UInt128(std::uint64_t high, std::uint64_t low) noexcept : _high(high), _low(low) {}

    /// The lower half.
    explicit constexpr operator std::uint64_t() const noexcept
    {
        return _low;
    }

    /// @{
    /// Arithmetic modulo 2 to the power 128.
    friend constexpr UInt128 operator-(UInt128 a, UInt128 b) noexcept
    {
        return {a._high - b._high - (a._low < b._low ? 1 : 0), a._low - b._low};
    }

    friend constexpr UInt128 operator*(UInt128 a, std::uint64_t b) noexcept
    {
        constexpr std::uint64_t HALF = 0xFFFFFFFF;
        const std::uint64_t first = (a._low & HALF) * (b & HALF);
        const std::uint64_t second = (a._low >> 32) * (b & HALF) + (first >> 32);
        const std::uint64_t third = (a._low & HALF) * (b >> 32) + (second & HALF);
        const std::uint64_t fourth = (a._low >> 32) * (b >> 32) + (second >> 32) + (third >> 32);
        return {a._high * b + fourth, a._low * b};
    }
    /// @}

    /// @{
    /// Of the bits.
    friend constexpr UInt128 operator&(UInt128 a, UInt128 b) noexcept
    {
        return {a._high & b._high, a._low & b._low};
    }

    friend constexpr UInt128 operator<<(UInt128 a, int count) noexcept
    {
        if (count == 0) return a;
        if (count >= 64) return {a._low << (count - 64), 0};
        return {a._high << count | a._low >> (64 - count), a._low << count};
    }

    friend constexpr UInt128 operator>>(UInt128 a, int count) noexcept
    {
        if (count == 0) return a;
        if (count >= 64) return {0, a._high >> (count - 64)};
        return {a._high >> count, a._low >> count | a._high << (64 - count)};
    }
    /// @}

    /// @{
    /// By their values.
    friend constexpr bool operator==(UInt128 a, UInt128 b) noexcept
    {
        return a._high == b._high && a._low == b._low;
    }

    friend constexpr bool operator>(UInt128 a, UInt128 b) noexcept
    {
        return a._high > b._high || (a._high == b._high && a._low > b._low);
    }
    /// @}

private:
    std::uint64_t _high;
    std::uint64_t _low;
};

/// How many zeros are below the lowest bit that is set, of a number that is not 0.
constexpr int countTrailingZeros(std::uint64_t value) noexcept
{
    int count = 0;
    for (int width = 32; width > 0; width /= 2)
    {
        const std::uint64_t lower = (std::uint64_t{1} << width) - 1;
        if ((value & lower) != 0) continue;
        value >>= width;
        count += width;
    }
    return count;
}

/// How many zeros are above the highest bit that is set, of a number that is not 0.
constexpr int countLeadingZeros(std::uint32_t value) noexcept
{
    int count = 31;
    for (int width = 16; width > 0; width /= 2)
    {
        if (value >> width == 0) continue;
        value >>= width;
        count -= width;
    }
    return count;
}

/// Whether a product of two numbers needs more than 64 bits; `product` gets it without those.
constexpr bool multiplyOverflows(std::int64_t a, std::int64_t b, std::int64_t& product) noexcept
{
    product =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
    if (b == 0) return false;
    // The one quotient that does not fit is not asked for.
    if (b == -1) return a == std::numeric_limits<std::int64_t>::min();
    return product / b != a;
}

/// @{
/// Does nothing: a hint that may be left out.
inline void prefetch(const void*) noexcept {}
inline void prefetchForWriting(const void*) noexcept {}
/// @}

} // namespace Portable

#if ZU_COMPILER_GNU

/// As Portable::UInt128.
__extension__ using UInt128 = unsigned __int128;

/// @{
/// As Portable::countTrailingZeros().
constexpr int countTrailingZeros(std::uint32_t value) noexcept
{
    return __builtin_ctz(value);
}

constexpr int countTrailingZeros(std::uint64_t value) noexcept
{
    return __builtin_ctzll(value);
}
/// @}

/// As Portable::countLeadingZeros().
constexpr int countLeadingZeros(std::uint32_t value) noexcept
{
    return __builtin_clz(value);
}

/// As Portable::multiplyOverflows().
constexpr bool multiplyOverflows(std::int64_t a, std::int64_t b, std::int64_t& product) noexcept
{
    return __builtin_mul_overflow(a, b, &product);
}

/// Asks for the cache line of a place that will be read soon; any place is allowed.
inline void prefetch(const void* place) noexcept
{
    __builtin_prefetch(place);
}

/// Asks for the cache line of a place that will be written soon; any place is allowed.
inline void prefetchForWriting(const void* place) noexcept
{
    __builtin_prefetch(place, 1);
}

#else

using Portable::countLeadingZeros;
using Portable::countTrailingZeros;
using Portable::multiplyOverflows;
using Portable::prefetch;
using Portable::prefetchForWriting;
using Portable::UInt128;

#endif

#if ZU_COMPILER_GNU || !defined(__cpp_lib_bit_cast)

/// The object of another type that has the same bytes. Compilers that do not define __GNUC__ have
/// this one, too, since they need it for their own libraries.
template <class To, class From> constexpr To bitCast(const From& from) noexcept
{
    return __builtin_bit_cast(To, from);
}

#else

/// The object of another type that has the same bytes.
template <class To, class From> constexpr To bitCast(const From& from) noexcept
{
    return std::bit_cast<To>(from);
}

#endif

/// Whether the sign bit of a number is set, be it a zero or a NaN.
template <class T> constexpr bool isSignBitSet(T value) noexcept
{
#if ZU_COMPILER_GNU
    return __builtin_signbit(value) != 0;
#else
    using Bits =
        std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    return bitCast<Bits>(value) >> (8 * sizeof(Bits) - 1) != 0;
#endif
}

} // namespace Zu::Compiler

#endif
