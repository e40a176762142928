#include "zulog/zlMerge.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Zu
{

// The heap has the earliest on top.
bool ZlMerge::isLater(const Head& one, const Head& other)
{
    return one._time != other._time ? one._time > other._time : one._reader > other._reader;
}

ZlMerge::ZlMerge(std::vector<std::unique_ptr<ZlReader>> readers) : _readers(std::move(readers)) {}

// A record never comes in front of the one before it.
void ZlMerge::advance(std::size_t reader, std::int64_t after)
{
    if (!_readers[reader]->next()) return;
    const std::optional<std::int64_t> wall = _readers[reader]->getRecord()._wall;
    _heads.push_back({std::max(after, wall.value_or(after)), reader});
    std::push_heap(_heads.begin(), _heads.end(), &isLater);
}

const ZlRecord* ZlMerge::next()
{
    if (!_isStarted)
    {
        for (std::size_t reader = 0; reader < _readers.size(); ++reader)
            advance(reader, std::numeric_limits<std::int64_t>::min());
        _isStarted = true;
    }
    else if (_hasLast)
        advance(_last._reader, _last._time);
    _hasLast = !_heads.empty();
    if (!_hasLast) return nullptr;
    std::pop_heap(_heads.begin(), _heads.end(), &isLater);
    _last = _heads.back();
    _heads.pop_back();
    return &_readers[_last._reader]->getRecord();
}

std::uint64_t ZlMerge::getLineCount() const
{
    std::uint64_t count = 0;
    for (const auto& reader : _readers) count += reader->getLineCount();
    return count;
}

} // namespace Zu
