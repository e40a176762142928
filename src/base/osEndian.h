/// @file
/// Byte order.

#ifndef ZU_BASE_OSENDIAN_H
#define ZU_BASE_OSENDIAN_H

#include "compiler.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Zu
{

/// Swaps the bytes of numbers, for files with a defined byte order:
/// `invertIf(OsEndian::isBigEndian(), value)` has the layout of a little-endian host on every host.
/// Any thread may call it.
class OsEndian
{
    // Numbers only: in anything else, the order of the bytes is not that of a single value.
    template <class T>
    using IfNumber = std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool> &&
                                      !std::is_same_v<T, long double>>;

public:
    OsEndian() = delete;

    /// Whether the last byte of a number in memory is its least significant one.
    static constexpr bool isBigEndian() noexcept
    {
        return Compiler::bitCast<Bytes<4>>(std::uint32_t{1})._bytes[3] == 1;
    }

    /// The value with its bytes in reverse order; of `float` and `double`, their bit patterns.
    template <class T, class = IfNumber<T>> static constexpr T invert(T value) noexcept
    {
        const auto bytes = Compiler::bitCast<Bytes<sizeof(T)>>(value);
        Bytes<sizeof(T)> reversed{};
        for (std::size_t i = 0; i < sizeof(T); ++i)
            reversed._bytes[i] = bytes._bytes[sizeof(T) - 1 - i];
        return Compiler::bitCast<T>(reversed);
    }

    /// invert() when the condition is true, otherwise the value as it is.
    template <class T, class = IfNumber<T>>
    static constexpr T invertIf(bool condition, T value) noexcept
    {
        return condition ? invert(value) : value;
    }

private:
    template <std::size_t SIZE> struct Bytes
    {
        unsigned char _bytes[SIZE];
    };
};

} // namespace Zu

#endif
