/// @file
/// Search in an ascending table, such as the edges of bins.

#ifndef ZU_BASE_RNSEARCH_H
#define ZU_BASE_RNSEARCH_H

#include "compiler.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zu
{

/// Finds how many entries of an ascending table precede the first one that is greater than a value.
/// A guide table, as of H.-C. Chen and Y. Asau, "On generating random variates from an empirical
/// distribution", 1974, narrows the search to the entries of one of its cells. The result is always
/// that of a binary search.
template <class T> class RnSearch
{
public:
    /// For the present entries, at least one. If they don't ascend or aren't finite, only the
    /// binary search is used.
    explicit RnSearch(const std::vector<T>& entries)
    {
        const T range = entries.back() - entries.front();
        const T scale = static_cast<T>(CELLS_PER_ENTRY) * static_cast<T>(entries.size()) /
                        (range > T(0) ? range : T(1));
        if (!std::isfinite(range) || !std::isfinite(scale) || !isAscending(entries)) return;
        _first = entries.front();
        _scale = scale;
        _guide.resize(cellOf(entries.back()) + 2);
        std::size_t cell = 0;
        for (std::size_t i = 0; i < entries.size(); ++i)
            for (; cell <= cellOf(entries[i]); ++cell) _guide[cell] = static_cast<std::uint32_t>(i);
        _guide[cell] = static_cast<std::uint32_t>(entries.size());
    }

    /// 0 for a NaN.
    unsigned int countUpTo(const std::vector<T>& entries, T value) const
    {
        if (_guide.empty())
            return binary(entries, 0, static_cast<unsigned int>(entries.size()), value);
        if (!(value >= entries.front())) return 0;
        if (value >= entries.back()) return static_cast<unsigned int>(entries.size());
        const std::size_t cell = cellOf(value);
        unsigned int low = _guide[cell];
        const unsigned int high = _guide[cell + 1];
        if (high - low > FEW) return binary(entries, low, high, value);
        // Entries of lower cells are below the value, those of higher ones above it. The first two
        // steps, which are mostly enough, depend on no branch.
        low += static_cast<unsigned int>(entries[low] <= value);
        low += static_cast<unsigned int>(entries[low] <= value);
        while (entries[low] <= value) ++low;
        return low;
    }

    /// @{
    /// Prefetch for the search of a later value, in a table that is in no cache. The first one
    /// fetches the place in the guide. The second one, some searches later, fetches that in the
    /// table, and returns the index of the entry before it. Results do not depend on these.
    void fetchGuide(const std::vector<T>& entries, T value) const
    {
        if (isGuided(entries, value)) Compiler::prefetch(&_guide[cellOf(value)]);
    }

    unsigned int fetchEntries(const std::vector<T>& entries, T value) const
    {
        if (!isGuided(entries, value)) return 0;
        const unsigned int low = _guide[cellOf(value)];
        Compiler::prefetch(&entries[low]);
        return low > 0 ? low - 1 : 0;
    }
    /// @}

private:
    static constexpr unsigned int CELLS_PER_ENTRY = 2;
    static constexpr unsigned int FEW = 8;

    // Whether the value is between the ends of the table.
    bool isGuided(const std::vector<T>& entries, T value) const
    {
        return !_guide.empty() && value >= entries.front() && value < entries.back();
    }

    static bool isAscending(const std::vector<T>& entries)
    {
        for (std::size_t i = 1; i < entries.size(); ++i)
            if (!(entries[i - 1] <= entries[i])) return false;
        return true;
    }

    static unsigned int binary(const std::vector<T>& entries, unsigned int low, unsigned int high,
                               T value)
    {
        while (low < high)
        {
            const unsigned int middle = low + (high - low) / 2;
            if (entries[middle] <= value)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    // Increases with the value, even when that is rounded.
    std::size_t cellOf(T value) const
    {
        return static_cast<std::size_t>(static_cast<std::int64_t>((value - _first) * _scale));
    }

    T _first = 0;
    T _scale = 0;
    std::vector<std::uint32_t> _guide;
};

} // namespace Zu

#endif
