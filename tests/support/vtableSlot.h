// The position of a virtual function in the tables of its class.

#ifndef ZU_TESTS_VTABLESLOT_H
#define ZU_TESTS_VTABLESLOT_H

#include <array>
#include <bit>
#include <cstddef>

namespace support
{

// Slots count from 0; a destructor takes two.
template <class Member> std::ptrdiff_t slotOf(Member member)
{
    static_assert(sizeof member == 2 * sizeof(std::ptrdiff_t));
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(member);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

} // namespace support

#endif
