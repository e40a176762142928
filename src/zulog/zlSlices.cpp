#include "zulog/zlSlices.h"

#include <utility>

namespace Zu
{

ZlSlices::ZlSlices(std::vector<std::int64_t> widths, std::size_t most)
    : _widths(std::move(widths)), _most(most)
{
}

std::int64_t ZlSlices::numberOf(std::int64_t wall, std::int64_t width)
{
    return wall / width - (wall % width < 0 ? 1 : 0);
}

void ZlSlices::addElsewhere(std::int64_t wall)
{
    const std::int64_t number = numberOf(wall, getWidth());
    _count = &_counts[number];
    ++*_count;
    while (_counts.size() > _most && _width + 1 < _widths.size()) widen();
    // What comes before the first time that can be written is not the beginning of a slice.
    const std::int64_t rest = wall % getWidth();
    const std::int64_t behind = rest < 0 ? rest + getWidth() : rest;
    if (wall < INT64_MIN + behind)
        _count = nullptr;
    else
    {
        _begin = wall - behind;
        _count = &_counts[numberOf(wall, getWidth())];
    }
}

void ZlSlices::widen()
{
    const std::int64_t factor = _widths[_width + 1] / _widths[_width];
    Counts wider;
    for (const auto& [number, count] : _counts)
        wider.emplace_hint(wider.end(), numberOf(number, factor), 0)->second += count;
    _counts = std::move(wider);
    ++_width;
}

} // namespace Zu
