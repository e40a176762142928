/// @file
/// Features of the compiler rather than of the language. The one place to add another compiler.
///
/// Each feature has a portable form beside the one for g++ and clang++. The portable form is used
/// with any other compiler, and with every compiler when ZU_COMPILER_PORTABLE is defined for a
/// whole build.

#ifndef ZU_BASE_COMPILER_H
#define ZU_BASE_COMPILER_H

#include <cstdint>
#include <limits>
#include <type_traits>

#if __has_include(<version>)
#include <version>
#endif

/// @def ZU_COMPILER_GNU
/// 1 if the compiler has the features of g++, 0 if the portable forms are used.
#if defined(__GNUC__) && !defined(ZU_COMPILER_PORTABLE)
#define ZU_COMPILER_GNU 1
#else
#define ZU_COMPILER_GNU 0
#endif

#if !ZU_COMPILER_GNU && defined(__cpp_lib_bit_cast)
#include <bit>
#endif

/// @def ZU_ALWAYS_INLINE
/// Forces inlining of a function that pays off only inside the loops that call it. The portable
/// form leaves the decision to the compiler.
///
/// @def ZU_NEVER_INLINE
/// Keeps a function that is seldom called out of the one that calls it, which then saves no
/// registers for it. The portable form leaves the decision to the compiler.
///
/// @def ZU_PRINTF_FORMAT
/// Parameter number `text`, counting `this`, is a `printf` format for the arguments from `first`
/// on. The compiler warns where they don't match.
///
/// @def ZU_CAN_PREFETCH_FOR_WRITING
/// Lets a function use the instruction that prefetches a cache line for writing.
///
/// @def ZU_INIT_PRIORITY
/// Constructs a static object before all those with a greater number and those without one. Numbers
/// are above 100. In the portable form the linker decides the order among sources.
///
/// @def ZU_IGNORE_NON_VIRTUAL_DTOR
/// From here to ZU_END_IGNORE, suppresses the warning about virtual functions beside a non-virtual
/// destructor, for classes that nobody deletes through a base.
///
/// @def ZU_IGNORE_DEPRECATED
/// From here to ZU_END_IGNORE, suppresses warnings about deprecated features of the language or a
/// library.
///
/// @def ZU_END_IGNORE
/// Ends the region that the nearest macro above began.
#if ZU_COMPILER_GNU
#define ZU_ALWAYS_INLINE [[gnu::always_inline]]
#define ZU_NEVER_INLINE [[gnu::noinline]]
#define ZU_PRINTF_FORMAT(text, first) [[gnu::format(printf, text, first)]]
#define ZU_CAN_PREFETCH_FOR_WRITING [[gnu::target("prfchw")]]
#define ZU_INIT_PRIORITY(priority) __attribute__((init_priority(priority)))
#else
#define ZU_ALWAYS_INLINE
#define ZU_NEVER_INLINE
#define ZU_PRINTF_FORMAT(text, first)
#define ZU_CAN_PREFETCH_FOR_WRITING
#define ZU_INIT_PRIORITY(priority)
#endif

// There is no portable way to control warnings.
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
/// Goes in front of a static vector that must exist before any constructor runs. Where the vector
/// of the standard library needs a constructor call itself, that call is the first in this library.
///
/// @def ZU_CONSTINIT_VECTOR_PRIORITY
/// Goes behind the name of such a vector.
#if defined(__cpp_lib_constexpr_vector)
#define ZU_CONSTINIT_VECTOR constinit
#define ZU_CONSTINIT_VECTOR_PRIORITY
#else
#define ZU_CONSTINIT_VECTOR
#define ZU_CONSTINIT_VECTOR_PRIORITY ZU_INIT_PRIORITY(101)
#endif

/// @def ZU_THREAD_SANITIZER
/// 1 in a build with ThreadSanitizer, which recognises only orderings between atomics; otherwise 0.
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

/// Operations that take one instruction with the help of the compiler, and several in plain C++.
namespace Zu::Compiler
{

/// The portable forms, which need only the language.
namespace Portable
{

/// An unsigned 128-bit number with the operations that the library needs. Shift counts are from 0
/// to 127.
class UInt128
{
public:
    /// Extends a 64-bit number.
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
    /// Bitwise operations and shifts.
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
    /// Comparison by value.
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

/// The number of zero bits below the lowest set bit. `value` must not be 0.
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

/// The number of zero bits above the highest set bit. `value` must not be 0.
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

/// Whether the product of two numbers needs more than 64 bits. `product` receives its low 64 bits.
constexpr bool multiplyOverflows(std::int64_t a, std::int64_t b, std::int64_t& product) noexcept
{
    product =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
    if (b == 0) return false;
    // The only quotient that does not fit is never computed.
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

/// The same as Portable::UInt128.
__extension__ using UInt128 = unsigned __int128;

/// @{
/// The same as Portable::countTrailingZeros().
constexpr int countTrailingZeros(std::uint32_t value) noexcept
{
    return __builtin_ctz(value);
}

constexpr int countTrailingZeros(std::uint64_t value) noexcept
{
    return __builtin_ctzll(value);
}
/// @}

/// The same as Portable::countLeadingZeros().
constexpr int countLeadingZeros(std::uint32_t value) noexcept
{
    return __builtin_clz(value);
}

/// The same as Portable::multiplyOverflows().
constexpr bool multiplyOverflows(std::int64_t a, std::int64_t b, std::int64_t& product) noexcept
{
    return __builtin_mul_overflow(a, b, &product);
}

/// Prefetches the cache line of an address that will soon be read; any address is allowed.
inline void prefetch(const void* place) noexcept
{
    __builtin_prefetch(place);
}

/// Prefetches the cache line of an address that will soon be written; any address is allowed.
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

/// The object of another type with the same bytes. Compilers that do not define __GNUC__ also have
/// this builtin, since their own standard libraries need it.
template <class To, class From> constexpr To bitCast(const From& from) noexcept
{
    return __builtin_bit_cast(To, from);
}

#else

/// The object of another type with the same bytes.
template <class To, class From> constexpr To bitCast(const From& from) noexcept
{
    return std::bit_cast<To>(from);
}

#endif

/// Whether the sign bit of a number is set, also for a zero or a NaN.
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
