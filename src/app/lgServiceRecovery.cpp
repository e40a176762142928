#include "app/lgServiceRecovery.h"

#include "app/lgServiceMap.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "base/lgTypes.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <exception>
#include <iostream>
#include <string_view>
#include <utility>

namespace Zu
{

namespace
{

constexpr std::size_t MOST_TEXT = std::size_t{256} * 1024;
constexpr std::int64_t SECONDS_PER_DAY = 86400;
constexpr std::int64_t NANOSECONDS = 1000000000;

void at()
{
    if (LgServiceRecovery::_atStep) LgServiceRecovery::_atStep();
}

void report(const std::string& path, const char* what, const std::string& reason)
{
    std::cerr << "The events in " << path << ' ' << what << ": " << reason << std::endl;
}

// Whether nothing waits in it: so a process leaves it that ends by exit() while a service lives.
bool isEmpty(const LgLeftFile& file)
{
    LgLeftMap map;
    const auto read = [&file](std::uint64_t offset, void* to, std::size_t size)
    { return file.read(offset, to, size); };
    return map.load(read) && map.isEmpty();
}

// How many of these bytes a file has at a place; whether it ends behind them.
std::pair<std::size_t, bool> countSame(const LgServiceFile& file, std::uint64_t offset,
                                       std::string_view text)
{
    constexpr std::size_t PIECE = 65536;
    std::string piece;
    std::size_t count = 0;
    while (count < text.size())
    {
        piece.resize(std::min(PIECE, text.size() - count));
        const std::ptrdiff_t size = file.readAt(offset + count, piece.data(), piece.size());
        if (size <= 0) return {count, size == 0};
        piece.resize(static_cast<std::size_t>(size));
        const auto place = std::mismatch(piece.begin(), piece.end(), text.begin() + count).first;
        count += static_cast<std::size_t>(place - piece.begin());
        if (place != piece.end()) return {count, false};
    }
    return {count, false};
}

// Whether a line ends here, with those that continue it.
bool isLineEnd(std::string_view text, std::size_t place)
{
    if (place == 0) return true;
    return text[place - 1] == '\n' && (place == text.size() || text[place] != '\t');
}

} // namespace

void (*LgServiceRecovery::_atStep)() = nullptr;

LgServiceRecovery::Logs LgServiceRecovery::Logs::ofLogger()
{
    Logs logs;
    for (std::size_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        logs._ofLevels[i] = dynamic_cast<LgServiceLog*>(LgLog::getLevelOutput(level));
        logs._isMissing[i] = LgLog::isFileMissing(level);
    }
    logs._lock = LgLog::getInterProcessLock();
    return logs;
}

LgServiceRecovery::LgServiceRecovery(LgLeftFile& file, LgLineForm form, bool isRaw,
                                     const Logs& logs)
    : _file(file), _logs(logs), _lineWriter(form, isRaw)
{
}

bool LgServiceRecovery::load()
{
    const auto read = [this](std::uint64_t offset, void* to, std::size_t size)
    { return _file.read(offset, to, size); };
    if (!_map.load(read))
    {
        _reason = _map.getReason();
        return false;
    }
    _origin = originOf(_map.getHeader());
    return true;
}

LgServiceRecovery::Outcome LgServiceRecovery::run()
{
    if (!load()) return Outcome::Refused;
    _lineWriter.setOrigin(_origin);
    findLogs();
    _nextNumber = _map.getNumber() + 1;
    for (const LgLeftMap::Queue& queue : _map.getQueues())
        _positions.push_back({queue._index, queue._entry, queue._text, 0, queue._reported});
    const std::vector<char> isWritten = findWritten();
    findWaiting();
    if (!storeFound()) return Outcome::Unfinished;
    const std::size_t count = _map.getEvents().size();
    if ((count > 0 || isWaitingLeft()) && !hasAllLogs()) return Outcome::Unfinished;
    // First the events of the batch that was being written, and what waited before: what is known
    // of them counts for all.
    std::size_t begin = 0;
    std::size_t end = _map.getBatchEvents();
    while (begin < count || isWaitingLeft())
    {
        if (end <= begin)
        {
            std::size_t size = 0;
            for (end = begin; end < count && end - begin < LgMap::MOST_EVENTS && size < MOST_TEXT;
                 ++end)
                size += _map.getEvents()[end]._text.size();
        }
        const std::uint64_t before = _count;
        if (!writeChunk(begin, end, isWritten))
        {
            // What the logs have of the chunk is found when it is written again.
            _count = before;
            return Outcome::Unfinished;
        }
        begin = end;
    }
    if (_map.getDamaged() > 0)
        _reason = std::to_string(_map.getDamaged()) + " of them could not be read";
    _file.remove();
    return Outcome::Complete;
}

// What only the last batch shows, before another one takes its place: where queues were being moved
// to, and that lines that waited are written.
bool LgServiceRecovery::storeFound()
{
    for (const LgLeftMap::Queue& queue : _map.getQueues())
    {
        const std::uint64_t place = queue._facts._block + queue._facts._entriesBegin;
        if (!queue._isMoving) continue;
        if (!_file.write(place, &queue._entry, sizeof queue._entry)) return false;
        at();
    }
    for (std::uint32_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const LgLeftMap::Waiting& waiting = _map.getWaiting()[i];
        const bool isNothing = waiting._text.empty() && waiting._dropped == 0;
        if (_waiting[i]._isDone && !isNothing && !storeNothing(i, waiting._batch)) return false;
    }
    return true;
}

void LgServiceRecovery::findLogs()
{
    for (LgServiceLog* const log : _logs._ofLevels)
    {
        const bool isKnown =
            std::any_of(_outputs.begin(), _outputs.end(),
                        [log](const Output& output) { return output._log == log; });
        if (!log || isKnown) continue;
        _outputs.emplace_back()._log = log;
        log->prepare(0, 0);
    }
}

// Whether no event would go nowhere that was meant for a file.
bool LgServiceRecovery::hasAllLogs() const
{
    if (_outputs.empty()) return false;
    for (std::uint32_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
        if (!_waiting[i]._isDone && isMissing(static_cast<LgTypes::Level>(i))) return false;
    const std::vector<LgLeftMap::Event>& events = _map.getEvents();
    return std::none_of(events.begin(), events.end(),
                        [this](const LgLeftMap::Event& event)
                        {
                            return isMissing(event._isOverflow
                                                 ? LgTypes::Informational
                                                 : static_cast<LgTypes::Level>(event._value));
                        });
}

// Which events of the last batch are in the logs.
std::vector<char> LgServiceRecovery::findWritten()
{
    std::vector<char> isWritten(_map.getEvents().size(), 0);
    if (_map.getState() == LgMap::Idle) return isWritten;
    const std::vector<std::vector<char>> ofQueues = findWrittenLines();
    const LgMap::Batch& batch = _map.getBatch();
    // The events of a queue and its lines in the batch have the same order.
    std::vector<std::size_t> counts(batch._queueCount, 0);
    for (std::size_t i = 0; i < _map.getBatchEvents(); ++i)
    {
        const std::uint32_t index = _map.getQueues()[_map.getEvents()[i]._queue]._index;
        for (std::uint32_t j = 0; j < batch._queueCount; ++j)
            if (batch._queues[j]._queue == index && counts[j] < ofQueues[j].size())
                isWritten[i] = ofQueues[j][counts[j]++];
    }
    return isWritten;
}

// For each queue of the last batch, which of its lines are in the logs. Those that were being
// written are looked for there, from the place where the batch began, up to the first line that is
// not wholly there.
std::vector<std::vector<char>> LgServiceRecovery::findWrittenLines()
{
    const LgMap::Batch& batch = _map.getBatch();
    Place places[LgMap::MOST_FILES] = {};
    // Whether what is not in the file is among the lines that wait for it.
    bool isKept[LgMap::MOST_FILES] = {};
    for (std::uint32_t i = 0; i < batch._fileCount; ++i)
    {
        const LgMap::BatchFile& file = batch._files[i];
        places[i] = {logOf(file), file._offset};
        isKept[i] = file._log < LgMap::MOST_FILES &&
                    _map.getWaiting()[file._log]._batch == _map.getNumber();
    }
    std::vector<std::vector<char>> ofQueues(batch._queueCount);
    for (std::uint32_t i = 0; i < batch._lineCount; ++i)
    {
        const LgMap::BatchLine& line = batch._lines[i];
        bool isThere = _map.getState() == LgMap::Written || line._file == LgMap::NONE;
        if (!isThere && line._file < batch._fileCount)
            isThere = isKept[line._file] || isAt(places[line._file], line);
        if (line._queue < batch._queueCount) ofQueues[line._queue].push_back(isThere ? 1 : 0);
    }
    return ofQueues;
}

// The log that a batch was written to; null if it is none of these.
LgServiceLog* LgServiceRecovery::logOf(const LgMap::BatchFile& file) const
{
    const LgServiceFile::Identity identity{file._volume, file._number};
    for (const Output& output : _outputs)
        if (file._isOpen != 0 && output._log->file().getIdentity() == identity) return output._log;
    return nullptr;
}

// Before anything is written.
void LgServiceRecovery::findWaiting()
{
    for (std::uint32_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const LgLeftMap::Waiting& waiting = _map.getWaiting()[i];
        const bool isNothing = waiting._text.empty() && waiting._dropped == 0;
        _waiting[i] = {0, waiting._dropped, isNothing};
    }
    if (_map.getState() != LgMap::Writing) return;
    const LgMap::Batch& batch = _map.getBatch();
    for (std::uint32_t i = 0; i < batch._fileCount; ++i)
    {
        const std::uint32_t log = batch._files[i]._log;
        if (log < LgTypes::NUM_LEVELS && _map.getWaiting()[log]._batch != _map.getNumber())
            findInFile(batch._files[i], log);
    }
}

// Which part of the lines that waited the last batch has written. Only the line feed may be missing
// behind the last one: that comes with what is written next.
void LgServiceRecovery::findInFile(const LgMap::BatchFile& file, std::uint32_t log)
{
    const LgServiceLog* const target = logOf(file);
    if (!target) return;
    Waiting& waiting = _waiting[log];
    if (waiting._isDone) return;
    const std::string& all = _map.getWaiting()[log]._text;
    const std::size_t from = std::min<std::uint64_t>(file._waitingFrom, all.size());
    const std::uint64_t place = file._offset + file._waitingAt;
    const std::string_view text = std::string_view(all).substr(from);
    const auto [same, isEnd] = countSame(target->getFile(), place, text);
    std::size_t end = isEnd && same + 1 <= text.size() ? same + 1 : same;
    while (!isLineEnd(text, end)) --end;
    waiting._from = from + end;
    if (target->getFile().getSize() >= place) waiting._dropped = 0;
    waiting._isDone = waiting._from == all.size() && waiting._dropped == 0;
}

bool LgServiceRecovery::isWaitingLeft() const
{
    return std::any_of(_waiting.begin(), _waiting.end(),
                       [](const Waiting& waiting) { return !waiting._isDone; });
}

// Whether a line is in a log; the place moves behind it. The file may end before the line feed of
// the last one: that comes with what is written next.
bool LgServiceRecovery::isAt(Place& place, const LgMap::BatchLine& line)
{
    if (!place._log) return false;
    constexpr std::uint32_t LONGEST_LINE = 64U << 20;
    std::string text(std::min(line._length, LONGEST_LINE), '\n');
    const std::ptrdiff_t size = place._log->file().readAt(place._offset, text.data(), text.size());
    const bool isWhole = size == static_cast<std::ptrdiff_t>(text.size());
    const bool isThere = (isWhole || size + 1 == static_cast<std::ptrdiff_t>(text.size())) &&
                         LgMap::hashOf(text.data(), text.size()) == line._hash;
    place._offset += line._length;
    if (!isThere || !isWhole) place._log = nullptr;
    return isThere;
}

LgServiceRecovery::Output* LgServiceRecovery::outputOf(LgTypes::Level level)
{
    const LgServiceLog* const log = _logs._ofLevels[static_cast<std::size_t>(level)];
    for (Output& output : _outputs)
        if (log && output._log == log) return &output;
    return nullptr;
}

// Where lines go that waited for the log of this level and others. There is one.
LgServiceRecovery::Output& LgServiceRecovery::outputOfWaiting(std::uint32_t log)
{
    for (std::uint32_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>((log + i) % LgTypes::NUM_LEVELS);
        if (Output* const output = outputOf(level)) return *output;
    }
    return _outputs.front();
}

LgServiceRecovery::Output* LgServiceRecovery::outputOf(const LgLeftMap::Event& event)
{
    if (event._isOverflow && event._value == 0) return nullptr;
    return outputOf(event._isOverflow ? LgTypes::Informational
                                      : static_cast<LgTypes::Level>(event._value));
}

LgLineOrigin LgServiceRecovery::originOf(const LgMap::Header& header)
{
    return {header._start,   header._originTick,   header._originWall, header._ticksPerSecond,
            header._process, header._processStart, header._host,       header._boot};
}

std::string LgServiceRecovery::beginLines(const LgLineOrigin& origin)
{
    std::string text = "===== Recovered: events of process " + std::to_string(origin._process) +
                       ", started " + lgIsoTime(origin._processStart, 6) + ", host ";
    lgAppendEscaped(text, origin._host.empty() ? "-" : origin._host);
    return text + " =====\n" + lgOriginLine(origin);
}

// What the process itself would have written.
std::string LgServiceRecovery::droppedLine(std::uint32_t log) const
{
    const std::uint64_t dropped = _waiting[log]._dropped;
    if (dropped == 0) return {};
    return LgServiceLog::notWrittenLine(dropped, _map.getWaiting()[log]._failingSince);
}

std::string LgServiceRecovery::endLine(const LgLineOrigin& origin)
{
    return "===== Recovered: end of the events of process " + std::to_string(origin._process) +
           " =====\n";
}

void LgServiceRecovery::appendEvent(std::string& out, LgLineWriter& writer,
                                    const LgLeftMap::Event& event)
{
    const std::string text =
        event._isOverflow ? "Event overflow [" + std::to_string(event._value) + "]" : event._text;
    const LgTypes::Level level =
        event._isOverflow ? LgTypes::Informational : static_cast<LgTypes::Level>(event._value);
    writer.append(out, {event._time, event._thread, level, text});
}

void LgServiceRecovery::addService(Output& output, const std::string& text)
{
    output._text += text;
    output._lines.push_back({static_cast<std::uint32_t>(text.size()), false});
    _batch._lines[_batch._lineCount++] = {static_cast<std::uint32_t>(text.size()),
                                          LgMap::hashOf(text.data(), text.size()), LgMap::NONE,
                                          static_cast<std::uint16_t>(&output - _outputs.data()), 0};
}

// Writes some events as the process itself would have done.
bool LgServiceRecovery::writeChunk(std::size_t begin, std::size_t end,
                                   const std::vector<char>& isWritten)
{
    beginBatch();
    const bool isLast = chooseWaiting() && end == _map.getEvents().size();
    for (std::size_t i = begin; i < end; ++i)
    {
        Output* const output = isWritten[i] ? nullptr : outputOf(_map.getEvents()[i]);
        if (output) output->_isUsed = true;
    }
    // Their prefixes come first.
    for (Output& output : _outputs)
        if ((output._isUsed || (isLast && output._hasBegun)) && !beginOutput(output)) return false;
    // The last event of each queue; none is the end.
    const std::vector<std::size_t> lastOf = addEvents(begin, end, isWritten);
    if (isLast)
        for (Output& output : _outputs)
            if (output._hasBegun) addService(output, endLine(_origin));
    const std::uint64_t number = _nextNumber++;
    if (!store(number, LgMap::Writing) || !writeOutputs(isLast)) return false;
    at();
    if (!storeWaitingDone(number) || !store(number, LgMap::Written)) return false;
    for (std::size_t i = 0; i < lastOf.size(); ++i)
        if (lastOf[i] != end && !moveQueue(_map.getQueues()[i], _map.getEvents()[lastOf[i]]))
            return false;
    return store(number, LgMap::Idle);
}

void LgServiceRecovery::beginBatch()
{
    _batch._fileCount = static_cast<std::uint32_t>(_outputs.size());
    _batch._queueCount = 0;
    _batch._lineCount = 0;
    for (Output& output : _outputs)
    {
        _batch._files[&output - _outputs.data()] = {};
        output._text.clear();
        output._lines.clear();
        output._isUsed = false;
        output._waiting = LgMap::NONE;
    }
}

// One for each output. Returns whether no further ones are left.
bool LgServiceRecovery::chooseWaiting()
{
    bool isAll = true;
    for (std::uint32_t i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        if (_waiting[i]._isDone) continue;
        Output& output = outputOfWaiting(i);
        output._isUsed = true;
        if (output._waiting == LgMap::NONE)
            output._waiting = i;
        else
            isAll = false;
    }
    return isAll;
}

// Enters which part of the file has them.
void LgServiceRecovery::addWaiting(Output& output, LgMap::BatchFile& file)
{
    if (output._waiting == LgMap::NONE) return;
    const std::string_view all = _map.getWaiting()[output._waiting]._text;
    const std::size_t from = _waiting[output._waiting]._from;
    file._log = output._waiting;
    file._waitingAt = output._log->getPrefix().size() + output._text.size();
    file._waitingFrom = from;
    for (std::size_t i = from + 1; i <= all.size(); ++i)
        if (isLineEnd(all, i)) ++_count;
    if (from < all.size()) addService(output, std::string(all.substr(from)));
}

// They are not to be written again.
bool LgServiceRecovery::storeWaitingDone(std::uint64_t number)
{
    for (const Output& output : _outputs)
    {
        if (output._waiting == LgMap::NONE) continue;
        if (!storeNothing(output._waiting, number)) return false;
        _waiting[output._waiting]._isDone = true;
    }
    return true;
}

bool LgServiceRecovery::storeNothing(std::uint32_t log, std::uint64_t batch)
{
    const std::uint64_t place = offsetof(LgMap::Header, _waiting) + log * sizeof(LgMap::WaitingLog);
    const std::uint32_t other = 1 - (_map.getHeader()._waiting[log]._current & 1);
    const LgMap::Waiting nothing = {0, 0, LgMap::hashBytes("", 0), batch, 0, 0};
    if (!_file.write(place + other * sizeof nothing, &nothing, sizeof nothing)) return false;
    at();
    if (!_file.write(place + offsetof(LgMap::WaitingLog, _current), &other, sizeof other))
        return false;
    at();
    return true;
}

// Enters where a log's part begins, and what stands there before the first event.
bool LgServiceRecovery::beginOutput(Output& output)
{
    if (!output._log->prepare(0)) return false;
    const auto part = output._log->getPart();
    const auto index = static_cast<std::uint16_t>(&output - _outputs.data());
    LgMap::BatchFile& file = _batch._files[index];
    file._log = LgMap::NONE;
    if (part)
        file = {part->_identity._volume,
                part->_identity._number,
                part->_offset,
                0,
                LgMap::NONE,
                1,
                0,
                0};
    const std::string& prefix = output._log->getPrefix();
    if (!prefix.empty())
        _batch._lines[_batch._lineCount++] = {static_cast<std::uint32_t>(prefix.size()),
                                              LgMap::hashOf(prefix.data(), prefix.size()),
                                              LgMap::NONE, index, 0};
    if (!output._isUsed) return true;
    std::string text = output._hasBegun ? std::string() : beginLines(_origin);
    if (output._waiting != LgMap::NONE) text += droppedLine(output._waiting);
    if (!text.empty()) addService(output, text);
    addWaiting(output, file);
    output._hasBegun = true;
    return true;
}

std::vector<std::size_t> LgServiceRecovery::addEvents(std::size_t begin, std::size_t end,
                                                      const std::vector<char>& isWritten)
{
    std::vector<std::uint32_t> inBatch(_map.getQueues().size(), LgMap::NONE);
    std::vector<std::size_t> lastOf(_map.getQueues().size(), end);
    for (std::size_t i = begin; i < end; ++i)
    {
        const LgLeftMap::Event& event = _map.getEvents()[i];
        if (inBatch[event._queue] == LgMap::NONE)
        {
            inBatch[event._queue] = _batch._queueCount;
            enter(event._queue);
        }
        lastOf[event._queue] = i;
        addEvent(event, inBatch[event._queue], isWritten[i] ? nullptr : outputOf(event));
    }
    return lastOf;
}

// False if a file is full: then the next service goes on where this one ends.
bool LgServiceRecovery::writeOutputs(bool isLast)
{
    for (Output& output : _outputs)
    {
        if (output._text.empty()) continue;
        output._log->write(output._text, output._lines);
        if (output._log->isFailing())
        {
            output._log->takeWaiting();
            return false;
        }
        if (isLast) output._log->dateAgain();
    }
    return true;
}

// The queue's positions before the chunk: where it began, or behind its events that an earlier
// chunk has written.
void LgServiceRecovery::enter(std::uint32_t number)
{
    _batch._queues[_batch._queueCount++] = _positions[number];
}

void LgServiceRecovery::addEvent(const LgLeftMap::Event& event, std::uint32_t inBatch,
                                 Output* output)
{
    const std::uint32_t lost = event._isOverflow ? static_cast<std::uint32_t>(event._value) : 0;
    LgMap::BatchLine line{0, 0, static_cast<std::uint16_t>(inBatch), LgMap::NONE, lost};
    if (event._isRest) _batch._queues[inBatch]._restLines = 1;
    if (output)
    {
        const std::size_t before = output->_text.size();
        appendEvent(output->_text, _lineWriter, event);
        line._length = static_cast<std::uint32_t>(output->_text.size() - before);
        line._hash = LgMap::hashOf(output->_text.data() + before, line._length);
        line._file = static_cast<std::uint16_t>(output - _outputs.data());
        output->_lines.push_back({line._length, !event._isOverflow});
        ++_count;
    }
    _batch._lines[_batch._lineCount++] = line;
    LgMap::BatchQueue& position = _positions[event._queue];
    position._entry = event._nextEntry;
    position._text = event._nextText;
    position._reported += lost;
}

bool LgServiceRecovery::store(std::uint64_t number, LgMap::State state)
{
    const std::uint64_t place = LgMap::BATCHES_AT + (number & 1) * LgMap::BATCH_SPACE;
    if (state == LgMap::Writing && !_file.write(place, &_batch, sizeof _batch)) return false;
    at();
    const std::uint64_t word = (number << LgMap::STATE_BITS) | state;
    const bool isStored = _file.write(offsetof(LgMap::Header, _state), &word, sizeof word);
    at();
    return isStored;
}

bool LgServiceRecovery::moveQueue(const LgLeftMap::Queue& queue, const LgLeftMap::Event& last)
{
    const LgMap::Queue& facts = queue._facts;
    const std::uint64_t slot = LgMap::QUEUES_AT + std::uint64_t(queue._index) * sizeof facts;
    const std::uint64_t reported = _positions[last._queue]._reported;
    const bool isMoved =
        _file.write(slot + offsetof(LgMap::Queue, _reported), &reported, sizeof reported) &&
        _file.write(facts._block + facts._textBegin, &last._nextText, sizeof last._nextText) &&
        _file.write(facts._block + facts._entriesBegin, &last._nextEntry, sizeof last._nextEntry);
    at();
    return isMoved;
}

std::vector<std::string> LgServiceRecovery::mapsIn(const std::string& directory)
{
    std::vector<std::string> names = lgNamesIn(directory, lgMapPrefix());
    std::sort(names.begin(), names.end(),
              [](const std::string& one, const std::string& other)
              { return timeOf(one) < timeOf(other); });
    return names;
}

// Behind the prefix of a log directory, "<hash>-".
std::int64_t LgServiceRecovery::timeOf(const std::string& name)
{
    const auto process = name.rfind('-', name.rfind('-') - 1);
    const auto time = process == std::string::npos ? process : name.rfind('-', process - 1);
    std::int64_t nanoseconds = 0;
    if (time < process) std::from_chars(name.data() + time + 1, name.data() + process, nanoseconds);
    return nanoseconds;
}

std::uint64_t LgServiceRecovery::recoverAll(const std::string& mapDirectory,
                                            const std::string& logDirectory, const std::string& own,
                                            LgLineForm form, bool isRaw, int keptMaps, int keptDays)
{
    const std::string directory = mapDirectory.empty() ? lgMapDirectory() : mapDirectory;
    const std::string prefix = LgServiceMap::prefixFor(logDirectory);
    const std::vector<std::string> names = mapsIn(directory);
    std::uint64_t count = 0;
    std::vector<std::string> others;
    // Opening its own file would end the lock that shows that this process lives.
    const std::string ownName = own.substr(own.find_last_of("/\\") + 1);
    for (const std::string& name : names)
    {
        const std::string path = directory + name;
        if (name == ownName) continue;
        if (name.compare(0, prefix.size(), prefix) != 0)
        {
            others.push_back(name);
            continue;
        }
        LgLeftFile file;
        const LgLeftFile::Outcome outcome = file.open(path);
        if (outcome == LgLeftFile::Outcome::Refused)
            report(path, "are not recovered", "it is not a file that only this user can change");
        if (outcome != LgLeftFile::Outcome::Opened) continue;
        LgServiceRecovery recovery(file, form, isRaw);
        const Outcome result = recovery.runUnderLock();
        count += recovery.getCount();
        if (result == Outcome::Refused)
        {
            report(path, "are not recovered", recovery.getReason());
            others.push_back(name);
        }
        else if (!recovery.getReason().empty())
            report(path, "are recovered", recovery.getReason());
    }
    discardOld(directory, others, keptMaps, keptDays);
    return count;
}

LgServiceRecovery::Outcome LgServiceRecovery::runUnderLock()
{
    constexpr int TRIES = 2;
    for (int i = 0; i < TRIES; ++i)
    {
        try
        {
            const LgInterProcessLockGuard guard(_logs._lock);
            return run();
        }
        catch (const std::exception& exception)
        {
            std::cerr << "The log service can't recover events: " << exception.what() << std::endl;
        }
    }
    return Outcome::Unfinished;
}

// What nobody recovers does not stay for ever.
void LgServiceRecovery::discardOld(const std::string& directory,
                                   const std::vector<std::string>& names, int keptMaps,
                                   int keptDays)
{
    const std::int64_t now = lgWallClock();
    std::size_t left = names.size();
    for (const std::string& name : names)
    {
        const bool isOld = (now - timeOf(name)) / NANOSECONDS > keptDays * SECONDS_PER_DAY;
        if (!isOld && left <= static_cast<std::size_t>(keptMaps)) return;
        LgLeftFile file;
        if (file.open(directory + name) != LgLeftFile::Outcome::Opened) continue;
        const char* const reason = isOld ? "they are too old" : "there are too many such files";
        if (!isEmpty(file)) report(directory + name, "are discarded", reason);
        file.remove();
        --left;
    }
}

} // namespace Zu
