/// @file
/// Counts over time, in bounded memory.

#ifndef ZU_ZULOG_ZLSLICES_H
#define ZU_ZULOG_ZLSLICES_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace Zu
{

/// Counts of events by slices of time, all of one width, which begin at multiples of it since 1970.
/// When there would be too many slices, those of the next width take their place; nothing is lost
/// by that but the finer division. Times may come in any order. Not thread-safe.
class ZlSlices
{
public:
    using Counts = std::map<std::int64_t, std::uint64_t>;

    /// `widths` in nanoseconds, each a multiple of the one before. At most `most` slices are kept,
    /// but for the last width, of which there are as many as needed.
    ZlSlices(std::vector<std::int64_t> widths, std::size_t most);

    /// Counts an event at a time in nanoseconds since 1970.
    void add(std::int64_t wall)
    {
        // Times may be farther apart than a signed number reaches.
        const std::uint64_t behind =
            static_cast<std::uint64_t>(wall) - static_cast<std::uint64_t>(_begin);
        if (_count && wall >= _begin && behind < static_cast<std::uint64_t>(getWidth()))
            ++*_count;
        else
            addElsewhere(wall);
    }

    std::int64_t getWidth() const
    {
        return _widths[_width];
    }

    /// By the number of the slice: it begins at that multiple of the width. None of them is 0.
    const Counts& getCounts() const
    {
        return _counts;
    }

    /// The number of the slice of this width in which a time is.
    static std::int64_t numberOf(std::int64_t wall, std::int64_t width);

private:
    void addElsewhere(std::int64_t wall);
    void widen();

    const std::vector<std::int64_t> _widths;
    const std::size_t _most;
    std::size_t _width = 0;
    Counts _counts;
    // The slice of the last time, and where it begins.
    std::uint64_t* _count = nullptr;
    std::int64_t _begin = 0;
};

} // namespace Zu

#endif
