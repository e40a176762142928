/// @file
/// The choice of a cell in proportion to its weight.

#ifndef ZU_BASE_RNSAMPLER_H
#define ZU_BASE_RNSAMPLER_H

#include "rnBins.h"
#include "rnSearch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Zu
{

/// A cumulative table of cells, from which draws choose.
template <class T> class RnSampler
{
public:
    /// Takes the weights of the cells, at least one.
    explicit RnSampler(const std::vector<T>& weights)
        : _entries(RnBins::cumulated(weights)), _search(_entries)
    {
        for (std::uint32_t i = 0; i < weights.size(); ++i)
        {
            if (!(weights[i] > T(0))) continue;
            if (!_hasWeight) _first = i;
            _hasWeight = true;
            _last = i;
        }
    }

    /// The cell that a draw chooses, and how far into it the draw reaches: from 0 up to 1; a NaN
    /// without weight, and for a draw that is a NaN. `_isEnd` marks a draw beyond the whole table,
    /// which reaches the very end of its cell.
    struct Choice
    {
        /// Its index.
        std::uint32_t _cell;
        /// How far into it.
        T _fraction;
        /// Whether the draw is beyond the whole table.
        bool _isEnd;
    };

    /// Never chooses a cell without weight if there is another.
    Choice choose(T u) const
    {
        const unsigned int count = _search.countUpTo(_entries, u);
        if (count > 0 && count < _entries.size())
        {
            const std::uint32_t k = count - 1;
            return {k, ieeeDivide(u - _entries[k], _entries[k + 1] - _entries[k]), false};
        }
        if (!_hasWeight || std::isnan(u))
            return {_first, std::numeric_limits<T>::quiet_NaN(), false};
        if (count == 0) return {_first, T(0), false};
        return {_last, T(1), true};
    }

    /// Chooses for `n` draws in turn: calls `use(i, choice)` for each, where `drawAt(i)` is the
    /// draw. Parts of a large table that are in no cache are prefetched. For that, `drawAt` is also
    /// called for later draws, and more than once, and `fetch(cell)` is called with roughly the
    /// cells that they choose.
    template <class DrawAt, class Fetch, class Use>
    void chooseAll(unsigned int n, const DrawAt& drawAt, const Fetch& fetch, const Use& use) const
    {
        if (_entries.size() < LARGE)
        {
            for (unsigned int i = 0; i < n; ++i) use(i, choose(drawAt(i)));
            return;
        }
        for (unsigned int i = 0; i < std::min(n, 2 * AHEAD); ++i)
            _search.fetchGuide(_entries, drawAt(i));
        for (unsigned int i = 0; i < std::min(n, AHEAD); ++i)
            fetch(_search.fetchEntries(_entries, drawAt(i)));
        for (unsigned int i = 0; i < n; ++i)
        {
            if (n - i > 2 * AHEAD) _search.fetchGuide(_entries, drawAt(i + 2 * AHEAD));
            if (n - i > AHEAD) fetch(_search.fetchEntries(_entries, drawAt(i + AHEAD)));
            use(i, choose(drawAt(i)));
        }
    }

    /// The probability of a cell.
    T shareOf(std::uint32_t cell) const
    {
        return _entries[cell + 1] - _entries[cell];
    }

private:
    // From LARGE entries on, the table and its guide exceed the fast caches, and prefetching is
    // AHEAD draws ahead.
    static constexpr std::size_t LARGE = 32768;
    static constexpr unsigned int AHEAD = 16;

    std::vector<T> _entries;
    RnSearch<T> _search;
    std::uint32_t _first = 0;
    std::uint32_t _last = 0;
    bool _hasWeight = false;
};

} // namespace Zu

#endif
