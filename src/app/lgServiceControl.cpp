#include "app/lgServiceControl.h"

#include "app/lgMapFile.h"
#include "app/lgServiceJson.h"
#include "base/lgEvent.h"
#include "base/lgEx.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <iostream>
#include <utility>
#include <vector>

namespace Zu
{

namespace
{

std::string quoted(std::string_view text)
{
    std::string result(1, '"');
    result += text;
    result += '"';
    return result;
}

using Outcome = LgControlPeer::Outcome;

template <std::size_t SIZE> void copyText(char (&to)[SIZE], const std::string& text)
{
    const std::size_t length = std::min(text.size(), SIZE - 1);
    std::copy_n(text.data(), length, to);
    to[length] = '\0';
}

// What processes have left that were killed.
void removeRemnants(const std::string& directory)
{
    for (const std::string& name : lgNamesIn(directory, LgControlFile::prefix()))
    {
        LgControlPeer peer;
        if (peer.open(directory + name) == Outcome::Left) LgControlPeer::remove(directory + name);
    }
}

std::string newPath(const std::string& directory, std::uint32_t process)
{
    return directory + LgControlFile::prefix() + std::to_string(lgWallClock()) + "-" +
           std::to_string(process);
}

std::uint64_t load(const std::uint64_t& number)
{
    return __atomic_load_n(&number, __ATOMIC_ACQUIRE);
}

// Cuts the first line off. It has no line end.
std::string_view takeLine(std::string_view& text)
{
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string errorText(const std::string& reason)
{
    return LgJsonMembers().add("error", lgJsonText(reason)).object();
}

std::string nameOf(int level)
{
    return LgTypes::levelToString(static_cast<LgTypes::Level>(level));
}

std::string levelsText(std::uint32_t levels)
{
    std::string text;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        if ((levels & LgTypes::levelBit[level]) == 0) continue;
        if (!text.empty()) text += ',';
        text += lgJsonText(nameOf(level));
    }
    return std::string("[").append(text).append("]");
}

std::string groupText(std::string_view name, std::uint32_t levels)
{
    return LgJsonMembers().add("name", lgJsonText(name)).add("levels", levelsText(levels)).object();
}

void addToList(std::string& list, const std::string& json)
{
    if (!list.empty()) list += ',';
    list += json;
}

std::string groupsText()
{
    std::string list;
    LgMajorGroup::visitAll([&](const char* name, const LgMajorGroup& group)
                           { addToList(list, groupText(name, group.getLogLevels())); });
    return std::string("[").append(list).append("]");
}

// Null if there is none.
LgMajorGroup* find(std::string_view name)
{
    LgMajorGroup* found = nullptr;
    LgMajorGroup::visitAll(
        [&](const char* known, LgMajorGroup& group)
        {
            if (name == known) found = &group;
        });
    return found;
}

// An event of the writing thread itself, which none of its own groups can switch off.
void note(const std::string& text)
{
    LgQueue& queue = LgLog::getQueue();
    if (!queue.reserveEntry(LgTypes::Informational)) return;
    LgInsertion insertion(queue);
    queue.getStream() << "LogLevels " << text.c_str();
    insertion.complete();
}

// "by process 4711"; removes the line that says so.
std::string takeAsker(std::string_view& lines)
{
    constexpr std::string_view BY = "by ";
    std::string_view rest = lines;
    const std::string_view line = takeLine(rest);
    if (!line.starts_with(BY) || line.find('=') != std::string_view::npos)
        return "by another process";
    lines = rest;
    return std::string("by process ").append(line.substr(BY.size()));
}

} // namespace

LgServiceControl::LgServiceControl(Settings settings) : _settings(std::move(settings))
{
    const LgProcessFacts facts = lgProcessFacts();
    removeRemnants(_settings._fileDirectory);
    if (!_file.create(newPath(_settings._fileDirectory, facts._process)))
    {
        std::cerr << "The log service can't be asked by other processes: " << _file.getError()
                  << std::endl;
        return;
    }
    LgControl::Header& header = *_file.header();
    header._version = LgControl::VERSION;
    header._process = facts._process;
    header._processStart = facts._processStart;
    header._serviceStart = lgWallClock();
    copyText(header._program, lgProgramPath());
    copyText(header._directory, _settings._logDirectory);
    // Last: without it, nobody asks.
    std::atomic_signal_fence(std::memory_order_release);
    std::memcpy(header._magic, LgControl::MAGIC, sizeof LgControl::MAGIC);
}

bool LgServiceControl::isAsked()
{
    return _file.header() && load(_file.header()->_requestNumber) != _answered;
}

void LgServiceControl::answer()
{
    LgControl::Header& header = *_file.header();
    const std::uint64_t number = load(header._requestNumber);
    const LgControl::Text facts = header._request;
    const std::size_t length = std::min(facts._length, LgControl::MOST_REQUEST);
    // A copy, which nobody changes meanwhile.
    const std::string request(_file.request(), length);
    if (LgControl::hashOf(request.data(), length, number) != facts._hash) return;
    _answered = number;
    try
    {
        write(number, answerTo(request));
    }
    catch (const std::exception& exception)
    {
        write(number, errorText(exception.what()));
    }
}

void LgServiceControl::write(std::uint64_t number, const std::string& text)
{
    LgControl::Header& header = *_file.header();
    char* const room =
        text.size() <= LgControl::MOST_ANSWER ? _file.roomForAnswer(text.size()) : nullptr;
    const std::size_t length = room ? text.size() : 0;
    if (room) std::copy_n(text.data(), length, room);
    header._answer._length = static_cast<std::uint32_t>(length);
    header._answer._hash = LgControl::hashOf(text.data(), length, number);
    __atomic_store_n(&header._answerNumber, number, __ATOMIC_RELEASE);
}

std::string LgServiceControl::answerTo(std::string_view request)
{
    const std::string_view word = takeLine(request);
    if (word == "status") return status();
    if (word == "set") return set(request);
    if (word == "reset") return reset(request);
    return errorText("this service has no answer to " + quoted(word));
}

std::string LgServiceControl::status() const
{
    LgServiceHealth health = _settings._health();
    LgJsonMembers outputs;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        outputs.add(nameOf(level),
                    lgJsonText(_settings._outputOf(static_cast<LgTypes::Level>(level))));
    std::string changed;
    for (const auto& [name, change] : _changes)
        addToList(changed, groupText(name, change._before.getLogLevels()));
    LgJsonMembers members;
    members.add("process", lgProcessFacts()._process)
        .add("program", lgJsonText(lgProgramPath()))
        .add("directory", lgJsonText(_settings._logDirectory))
        .add("threads", health._queues.size())
        .add("outputs", outputs.object())
        .add("groups", groupsText())
        .add("changed", "[" + changed + "]");
    std::string all = LgJsonMembers(members).add("health", health.toJson()).object();
    if (all.size() <= LgControl::MOST_ANSWER) return all;
    health._queues.clear();
    health._limits.clear();
    return members.add("health", health.toJson()).object();
}

std::string LgServiceControl::set(std::string_view lines)
{
    const std::string asker = takeAsker(lines);
    std::vector<Threshold> thresholds;
    std::string text;
    while (!lines.empty())
    {
        const std::string_view line = takeLine(lines);
        const std::size_t end = line.rfind('=');
        if (end == std::string_view::npos) return errorText(quoted(line) + " names no level");
        const std::string group(line.substr(0, end));
        if (!find(group)) return errorText("there is no group " + quoted(group));
        try
        {
            const std::string level(line.substr(end + 1));
            thresholds.push_back({group, LgTypes::stringToLevel(level.c_str())});
        }
        catch (const LgEx::InvalidLevelString&)
        {
            return errorText(quoted(line.substr(end + 1)) + " is not a level");
        }
        text += (text.empty() ? "" : ", ") + std::string(line);
    }
    for (const Threshold& threshold : thresholds) set(threshold);
    if (!thresholds.empty()) note("set " + asker + ": " + text);
    return status();
}

void LgServiceControl::set(const Threshold& threshold)
{
    LgMajorGroup& group = *find(threshold._group);
    const LgMajorGroup before = group;
    group.setLogThreshold(threshold._level, false);
    const auto [change, isNew] = _changes.try_emplace(threshold._group, Change{before, 0});
    // What the program has set itself meanwhile is what it gets back.
    if (!isNew && change->second._set != before.getLogLevels()) change->second._before = before;
    change->second._set = group.getLogLevels();
}

std::string LgServiceControl::reset(std::string_view lines)
{
    const std::string asker = takeAsker(lines);
    std::string text;
    for (const auto& [name, change] : _changes)
    {
        LgMajorGroup* const group = find(name);
        // What the program has set itself meanwhile stays.
        if (!group || group->getLogLevels() != change._set) continue;
        *group = change._before;
        text += (text.empty() ? "" : ", ") + name;
    }
    _changes.clear();
    if (!text.empty()) note("reset " + asker + ": " + text);
    return status();
}

} // namespace Zu
