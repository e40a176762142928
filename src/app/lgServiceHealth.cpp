#include "app/lgServiceHealth.h"

#include "app/lgServiceJson.h"

#include <cstddef>

namespace Zu
{

namespace
{

std::string textOf(const LgServiceHealth::Queue& queue)
{
    return LgJsonMembers()
        .add("thread", queue._thread)
        .add("entries", queue._entries)
        .add("waiting", queue._waiting)
        .add("largest", queue._largest)
        .add("lost", queue._lost)
        .object();
}

std::string textOf(const LgServiceHealth::File& file)
{
    return LgJsonMembers()
        .add("path", lgJsonText(file._path))
        .add("failing", file._isFailing ? "true" : "false")
        .add("pending", file._pending)
        .add("rotations", file._rotations)
        .object();
}

std::string textOf(const LgServiceHealth::Limit& limit)
{
    return LgJsonMembers()
        .add("file", lgJsonText(limit._file))
        .add("line", static_cast<std::uint64_t>(limit._line))
        .add("group", lgJsonText(limit._group))
        .add("level", lgJsonText(LgTypes::levelToString(limit._level)))
        .add("perSecond", limit._isPerSecond ? "true" : "false")
        .add("number", limit._number)
        .add("written", limit._written)
        .add("leftOut", limit._leftOut)
        .add("owed", limit._owed)
        .object();
}

std::string textOf(const LgServiceHealth::LimitSum& sum)
{
    return LgJsonMembers()
        .add("statements", sum._statements)
        .add("written", sum._written)
        .add("leftOut", sum._leftOut)
        .object();
}

template <class Part> std::string listOf(const std::vector<Part>& parts)
{
    std::string text = "[";
    for (const Part& part : parts)
    {
        if (text.size() > 1) text += ',';
        text += textOf(part);
    }
    return text += ']';
}

} // namespace

std::string LgServiceHealth::toJson() const
{
    LgJsonMembers events;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
        events.add(LgTypes::levelToString(static_cast<LgTypes::Level>(i)),
                   _events[static_cast<std::size_t>(i)]);
    return LgJsonMembers()
        .add("events", events.object())
        .add("lost", _lost)
        .add("unwritten", _unwritten)
        .add("waiting", _waiting)
        .add("behindMicroseconds", static_cast<std::uint64_t>(_behind.count()))
        .add("recovered", _recovered)
        .add("queues", listOf(_queues))
        .add("files", listOf(_files))
        .add("perSecond", textOf(_perSecond))
        .add("everyNth", textOf(_everyNth))
        .add("limits", listOf(_limits))
        .object();
}

} // namespace Zu
