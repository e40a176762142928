/// @file
/// Dependencies as rows of bits. Internal to the library.

#ifndef ZU_BASE_INDEPENDENCYROWS_H
#define ZU_BASE_INDEPENDENCYROWS_H

#include <cstdint>
#include <vector>

namespace Zu
{

/// A square bit matrix, packed 32 bits to a word: bit j of row i means that element i depends on
/// element j, directly until close() and transitively after it.
class InDependencyRows
{
public:
    /// `size` rows of `size` bits, all clear.
    explicit InDependencyRows(int size);

    int size() const;
    bool test(int row, int bit) const;
    void set(int row, int bit);

    /// Forms the transitive closure (S. Warshall, "A Theorem on Boolean Matrices", 1962) and adds
    /// to `counts[j]` the number of further elements that j was found to depend on. Returns whether
    /// there is a cycle, in which case the counts are meaningless.
    ///
    /// An element that names itself is deliberately not a cycle: its own bit is never propagated.
    bool close(std::vector<std::int32_t>& counts);

private:
    void addRow(int target, int source);
    std::int32_t countBits(int index) const;
    std::uint32_t* row(int index);
    const std::uint32_t* row(int index) const;

    int _size;
    int _wordsPerRow;
    std::vector<std::uint32_t> _words;
};

} // namespace Zu

#endif
