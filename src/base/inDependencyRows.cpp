#include "base/inDependencyRows.h"

#include <bit>
#include <cstddef>

namespace Zu
{

namespace
{

constexpr int WORD_BITS = 32;

constexpr std::uint32_t bitMask(int bit)
{
    return std::uint32_t{1} << (bit % WORD_BITS);
}

} // namespace

InDependencyRows::InDependencyRows(int size)
    : _size(size), _wordsPerRow((size + WORD_BITS - 1) / WORD_BITS),
      _words(static_cast<std::size_t>(size) * static_cast<std::size_t>(_wordsPerRow))
{
}

int InDependencyRows::size() const
{
    return _size;
}

bool InDependencyRows::test(int rowIndex, int bit) const
{
    return (row(rowIndex)[bit / WORD_BITS] & bitMask(bit)) != 0;
}

void InDependencyRows::set(int rowIndex, int bit)
{
    row(rowIndex)[bit / WORD_BITS] |= bitMask(bit);
}

bool InDependencyRows::close(std::vector<std::int32_t>& counts)
{
    const InDependencyRows direct = *this;
    for (int i = 0; i < _size; ++i)
    {
        if (counts[static_cast<std::size_t>(i)] == 0) continue;
        for (int j = 0; j < _size; ++j)
            if (j != i && test(j, i)) addRow(j, i);
    }
    bool cycle = false;
    for (int i = 0; i < _size; ++i)
    {
        // A package that reaches itself through others is a cycle; one that names itself is not.
        const bool reachesItself = test(i, i) && !direct.test(i, i);
        const std::int32_t found = countBits(i) - direct.countBits(i);
        counts[static_cast<std::size_t>(i)] += reachesItself ? found - 1 : found;
        cycle = cycle || reachesItself;
    }
    return cycle;
}

void InDependencyRows::addRow(int target, int source)
{
    std::uint32_t* const to = row(target);
    const std::uint32_t* const from = row(source);
    for (int word = 0; word < _wordsPerRow; ++word) to[word] |= from[word];
}

std::int32_t InDependencyRows::countBits(int index) const
{
    std::int32_t count = 0;
    for (int word = 0; word < _wordsPerRow; ++word) count += std::popcount(row(index)[word]);
    return count;
}

std::uint32_t* InDependencyRows::row(int index)
{
    return _words.data() + static_cast<std::size_t>(index) * static_cast<std::size_t>(_wordsPerRow);
}

const std::uint32_t* InDependencyRows::row(int index) const
{
    return _words.data() + static_cast<std::size_t>(index) * static_cast<std::size_t>(_wordsPerRow);
}

} // namespace Zu
