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
    bool cycle = false;
    for (int i = 0; i < _size; ++i)
    {
        if (counts[static_cast<std::size_t>(i)] == 0) continue;
        for (int j = 0; j < _size; ++j)
        {
            if (j == i || !test(j, i)) continue;
            std::int32_t added = 0;
            for (int word = 0; word < _wordsPerRow; ++word)
            {
                std::uint32_t fresh = row(i)[word] & ~row(j)[word];
                if (word == i / WORD_BITS) fresh &= ~bitMask(i);
                row(j)[word] |= fresh;
                if (word == j / WORD_BITS && (fresh & bitMask(j)) != 0)
                {
                    cycle = true;
                    fresh &= ~bitMask(j);
                }
                added += std::popcount(fresh);
            }
            counts[static_cast<std::size_t>(j)] += added;
        }
    }
    return cycle;
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
