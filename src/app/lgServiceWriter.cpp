#include "app/lgServiceWriter.h"

#include "app/lgMapFile.h"
#include "app/lgServiceRegistry.h"
#include "base/hwCounter.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <limits>

namespace Zu
{

namespace
{

constexpr std::size_t MOST_TEXT = std::size_t{256} * 1024;
// A look at a queue without events takes a small part of the time of this many lines. The more
// lines, the farther an event may stand behind later ones that was stamped before a look and
// published after it.
constexpr std::size_t LINES_PER_LOOK_AT_A_QUEUE = 16;
constexpr std::int64_t HOUR = 3600LL * 1000000000;
constexpr std::int64_t MILLISECOND = 1000000;

LgServiceLog* lgServiceLogOf(LgTypes::Level level)
{
    return dynamic_cast<LgServiceLog*>(LgLog::getLevelOutput(level));
}

// Calls a function with each log and the first level that it is of.
template <class Function> void forEachLog(Function function)
{
    std::array<const LgServiceLog*, LgTypes::NUM_LEVELS> known{};
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level));
        const bool isKnown = std::find(known.begin(), known.end(), log) != known.end();
        if (!log || isKnown) continue;
        known[static_cast<std::size_t>(level)] = log;
        function(static_cast<std::uint32_t>(level), *log);
    }
}

std::uint32_t firstLevelOf(const std::ostream* stream)
{
    int level = 0;
    while (LgLog::getLevelOutput(static_cast<LgTypes::Level>(level)) != stream) ++level;
    return static_cast<std::uint32_t>(level);
}

// The order of the heap of cursors.
constexpr auto isLaterCursor = [](const auto& one, const auto& other)
{ return one._time > other._time; };

// The generation of the registry's list; 0 in another registry than the service's own, whose list
// may change at any time.
std::uint64_t lgServiceGeneration()
{
    const bool isOwn = dynamic_cast<const LgServiceRegistry*>(LgLog::getRegistry()) != nullptr;
    return isOwn ? LgServiceRegistry::getGeneration() : 0;
}

std::string overflowText(std::uint64_t count)
{
    return "Event overflow [" + std::to_string(count) + "]";
}

} // namespace

void (*LgServiceWriter::_atStep)(Step step) = nullptr;

namespace
{

void at(LgServiceWriter::Step step)
{
    if (LgServiceWriter::_atStep) LgServiceWriter::_atStep(step);
}

} // namespace

LgServiceWriter::LgServiceWriter(LgServiceMap& map, LgServiceWaiting& waiting, LgLineForm form,
                                 bool isRaw)
    : _map(map), _waiting(waiting), _form(form), _isRaw(isRaw), _scratch(LgStream::BufSize),
      _unwrittenBefore(LgReader::getUnwrittenCount())
{
    const LgProcessFacts facts = lgProcessFacts();
    _origin._start = LgLog::getStart();
    _origin._ticksPerSecond = static_cast<std::uint64_t>(std::llround(1 / HwCounter::resolution()));
    _origin._process = facts._process;
    _origin._processStart = facts._processStart;
    _origin._host = facts._host;
    _origin._boot = facts._boot;
    if (_map.isOpen()) _number = _map.header()._state >> LgMap::STATE_BITS;
    lookAtClock();
    lookAtForm();
}

void LgServiceWriter::openLogs()
{
    const auto note = [this]
    {
        const std::lock_guard guard(_status._mutex);
        noteFiles();
    };
    note();
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        if (LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level)))
            if (log->prepare(0, 0)) log->write({}, {});
    forEachLog([this](std::uint32_t level, LgServiceLog& log) { _waiting.giveBack(level, log); });
    note();
}

void LgServiceWriter::reopen()
{
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        if (LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level)))
            log->reopen();
}

bool LgServiceWriter::isFailing() const
{
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        const LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level));
        if (log && log->isFailing()) return true;
    }
    return false;
}

bool LgServiceWriter::isTryDue() const
{
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        const LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level));
        if (log && log->isTryDue()) return true;
    }
    return false;
}

// The lines are dated anew when the wall clock was set, and every hour.
void LgServiceWriter::lookAtClock()
{
    const std::uint64_t tick = HwCounter::timeStamp();
    const std::int64_t wall = lgWallClock();
    const bool hasMoved = _dated == 0 || std::llabs(wall - lgWallOf(_origin, tick)) >= MILLISECOND;
    if (!hasMoved && wall - _dated < HOUR) return;
    _dated = wall;
    _origin._tick = tick;
    _origin._wall = wall;
    _lineWriter.reset();
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        if (LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level)))
            log->setOrigin(LgLog::isTimeStampsEnabled() ? &_origin : nullptr);
}

// Time stamps can be switched on and off at any time.
void LgServiceWriter::lookAtForm()
{
    const LgLineForm form = LgLog::isTimeStampsEnabled() ? _form : LgLineForm::Plain;
    if (_lineWriter && form == _present) return;
    _present = form;
    _lineWriter.emplace(form, _isRaw);
    _lineWriter->setOrigin(_origin);
}

bool LgServiceWriter::writeBatch()
{
    if (!hasWork() && !isTryDue()) return false;
    _canGoOn = false;
    noteFills();
    lookAtClock();
    lookAtForm();
    // Before anything is taken: it raises if a holder of the lock has died.
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    collect();
    at(Step::Collected);
    const bool isWorth = !_lines.empty() || isTryDue();
    if (isWorth)
    {
        writeCollected();
        noteBatch();
    }
    endQueues();
    _canGoOn = true;
    return isWorth;
}

// Whether there is anything to do: in what the last look has left, or in what a new one finds.
bool LgServiceWriter::hasWork()
{
    _finished.clear();
    if (isLookGood()) return true;
    // What comes later waits for the next look, so that a queue that was looked at early does not
    // fall behind one that was looked at late.
    // It may raise in the middle.
    _canGoOn = false;
    _until = HwCounter::timeStamp();
    _sinceLook = 0;
    return findQueues();
}

// Whether the next batch can be made of what the last look has left. Queues that had no events then
// can only have later ones, but for those that were being logged at that moment.
bool LgServiceWriter::isLookGood() const
{
    if (!_canGoOn || _cursors.empty() || _cursors.front()._time > _until) return false;
    if (_sinceLook >= LINES_PER_LOOK_AT_A_QUEUE * _known.size()) return false;
    return lgServiceGeneration() == _generation && _generation != 0;
}

std::uint64_t LgServiceWriter::getEarliestLeft() const
{
    const bool isKnown = _canGoOn && !_cursors.empty();
    return isKnown ? _cursors.front()._time : std::numeric_limits<std::uint64_t>::max();
}

void LgServiceWriter::noteFills()
{
    const std::lock_guard guard(_status._mutex);
    _status._earliest = _cursors.empty() ? 0 : _cursors.front()._time;
    for (const Cursor& cursor : _cursors)
    {
        std::uint32_t& largest = _status._fills[cursor._queue];
        largest = std::max(largest, cursor._queue->getWaitingCount());
    }
}

void LgServiceWriter::noteBatch()
{
    const std::lock_guard guard(_status._mutex);
    LgServiceHealth& health = _status._health;
    for (std::size_t i = 0; i < _counts.size(); ++i) health._events[i] += _counts[i];
    _counts.fill(0);
    _status._earliest = _cursors.empty() ? 0 : _cursors.front()._time;
    for (const Cursor& cursor : _finished)
    {
        if (!cursor._queue->isWaiting(cursor._position)) continue;
        const std::uint64_t time = cursor._queue->getEntryAt(cursor._position).getTimeStamp();
        if (_status._earliest == 0 || time < _status._earliest) _status._earliest = time;
    }
    noteFiles();
}

// With the status locked.
void LgServiceWriter::noteFiles()
{
    std::vector<LgServiceHealth::File>& files = _status._health._files;
    std::size_t count = 0;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        const LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level));
        const auto begin = files.begin();
        const auto end = begin + static_cast<std::ptrdiff_t>(count);
        const auto isIt = [log](const LgServiceHealth::File& file)
        { return file._path == log->getPath(); };
        if (!log || std::any_of(begin, end, isIt)) continue;
        if (count == files.size()) files.emplace_back();
        LgServiceHealth::File& file = files[count++];
        if (file._path != log->getPath()) file._path = log->getPath();
        file._isFailing = log->isFailing();
        file._pending = log->getPending();
        file._rotations = log->getRotations();
    }
    files.resize(count);
}

void LgServiceWriter::addHealth(LgServiceHealth& health,
                                const std::vector<const LgQueue*>& queues) const
{
    const std::lock_guard guard(_status._mutex);
    health._events = _status._health._events;
    health._files = _status._health._files;
    health._unwritten = LgReader::getUnwrittenCount() - _unwrittenBefore;
    for (std::size_t i = 0; i < queues.size(); ++i)
    {
        const auto fill = _status._fills.find(queues[i]);
        if (fill != _status._fills.end()) health._queues[i]._largest = fill->second;
    }
    const std::uint64_t now = HwCounter::timeStamp();
    if (health._waiting == 0 || _status._earliest == 0 || now <= _status._earliest) return;
    const double seconds = static_cast<double>(now - _status._earliest) * HwCounter::resolution();
    health._behind = std::chrono::microseconds(std::llround(seconds * 1e6));
}

// Threads come and go far less often than batches.
void LgServiceWriter::lookAtRegistry()
{
    const std::uint64_t generation = lgServiceGeneration();
    if (generation != 0 && generation == _generation) return;
    const List<LgQueue*> list = LgLog::getRegistry()->getQueueList();
    std::vector<LgQueue*> queues(list.begin(), list.end());
    // A queue may be in the list twice.
    std::sort(queues.begin(), queues.end(), std::less<>());
    queues.erase(std::unique(queues.begin(), queues.end()), queues.end());
    _known.clear();
    for (LgQueue* const queue : queues)
        _known.push_back(
            {queue, queue->getThreadId(), _map.indexOf(*queue), queue->getReadPosition()._entry});
    _generation = generation;
}

// Most threads are silent: their queues stand where they stood, and nothing else is looked at.
bool LgServiceWriter::hasEvents(Known& known) const
{
    if (!known._queue->isWaiting({known._next, 0})) return false;
    known._next = known._queue->getReadPosition()._entry;
    return !known._queue->isEmpty();
}

// Whether there is anything to do.
bool LgServiceWriter::findQueues()
{
    _cursors.clear();
    _ended.clear();
    lookAtRegistry();
    for (std::uint32_t i = 0; i < _known.size(); ++i)
    {
        LgQueue* const queue = _known[i]._queue;
        // Asked first: the last event may come just before the thread ends.
        const bool isEnded = !queue->isCreatorAlive();
        if (hasEvents(_known[i]))
        {
            const LgQueue::ReadPosition position = queue->getReadPosition();
            const std::uint32_t end = queue->getEntriesEnd();
            const std::uint64_t time = queue->getEntryAt(position).getTimeStamp();
            _cursors.push_back({queue, position, end, time, i, _known[i]._inMap, LgMap::NONE, 0});
        }
        else if (isEnded)
            _ended.push_back(i);
    }
    std::make_heap(_cursors.begin(), _cursors.end(), isLaterCursor);
    return !_cursors.empty() || !_ended.empty();
}

void LgServiceWriter::beginBatch()
{
    _lines.clear();
    _queues.clear();
    _echo.clear();
    _size = 0;
    _outputCount = 0;
}

void LgServiceWriter::collect()
{
    beginBatch();
    // The others have their turn with a later batch.
    if (_ended.size() > LgMap::MOST_EVENTS) _ended.resize(LgMap::MOST_EVENTS);
    for (const std::uint32_t known : _ended) addRestOfLosses(known);
    collectEvents();
    _sinceLook += _lines.size();
}

// The producer's cache line is asked again only when what it has shown is used up: it goes to and
// fro otherwise, which costs the producer more than the event.
bool LgServiceWriter::hasNext(Cursor& cursor)
{
    if (cursor._end == cursor._position._entry) cursor._end = cursor._queue->getEntriesEnd();
    return cursor._end != cursor._position._entry;
}

// Leaves in the heap what the next batch may go on with.
void LgServiceWriter::collectEvents()
{
    while (!_cursors.empty() && _cursors.front()._time <= _until &&
           _lines.size() < LgMap::MOST_EVENTS && _size < MOST_TEXT)
    {
        std::pop_heap(_cursors.begin(), _cursors.end(), isLaterCursor);
        Cursor& cursor = _cursors.back();
        addEvent(cursor);
        if (hasNext(cursor))
        {
            cursor._time = cursor._queue->getEntryAt(cursor._position).getTimeStamp();
            std::push_heap(_cursors.begin(), _cursors.end(), isLaterCursor);
            continue;
        }
        _finished.push_back(cursor);
        _cursors.pop_back();
    }
}

void LgServiceWriter::addEvent(Cursor& cursor)
{
    LgQueue& queue = *cursor._queue;
    const std::uint32_t thread = _known[cursor._known]._thread;
    if (cursor._inBatch == LgMap::NONE) cursor._inBatch = enter(queue, cursor._inMap);
    const LgQueue::Entry& entry = queue.getEntryAt(cursor._position);
    const std::uint64_t time = entry.getTimeStamp();
    if (entry.isOverflowEntry())
    {
        const std::uint32_t count = lossesOf(cursor, entry);
        cursor._lost += count;
        const std::string text = overflowText(count);
        if (count > 0)
            addLine(cursor._inBatch, {time, thread, LgTypes::Informational, text}, count);
        else
            _lines.push_back({0, 0, cursor._inBatch, LgMap::NONE, 0});
    }
    else
    {
        const std::string_view text = queue.getTextAt(cursor._position, _scratch.data());
        ++_counts[static_cast<std::size_t>(entry.getLevel())];
        addLine(cursor._inBatch, {time, thread, entry.getLevel(), text}, 0);
    }
    queue.stepEntry(cursor._position);
}

// Nothing if nobody has counted: for a queue that is not the service's.
std::optional<std::uint64_t> LgServiceWriter::reportedOf(const LgQueue& queue, std::uint32_t inMap)
{
    if (inMap == LgMap::NONE) return _map.getReportedOnHeap(queue);
    return _map.queueAt(inMap)._reported;
}

// An entry's place in the ring may have the count of an earlier burst in it: no more is reported
// than was lost.
std::uint32_t LgServiceWriter::lossesOf(const Cursor& cursor, const LgQueue::Entry& entry)
{
    const auto count = static_cast<std::uint32_t>(entry.getOverflowCount());
    const auto before = reportedOf(*cursor._queue, cursor._inMap);
    if (!before) return count;
    const std::uint64_t reported = *before + cursor._lost;
    const std::uint64_t lost = cursor._queue->getLostCount();
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(count, lost > reported ? lost - reported : 0));
}

// Losses that raced with the writing of their entry are in no entry. When the thread or the service
// ends they are known exactly.
void LgServiceWriter::addRestOfLosses(std::uint32_t known)
{
    LgQueue& queue = *_known[known]._queue;
    const std::uint32_t inMap = _known[known]._inMap;
    const std::uint64_t lost = queue.getLostCount();
    const std::uint64_t reported = lost > 0 ? reportedOf(queue, inMap).value_or(lost) : 0;
    if (lost <= reported) return;
    const auto count = static_cast<std::uint32_t>(lost - reported);
    addLine(
        enter(queue, inMap),
        {HwCounter::timeStamp(), queue.getThreadId(), LgTypes::Informational, overflowText(count)},
        count);
    _queues.back()._restLines = 1;
    const LgQueue::ReadPosition position = queue.getReadPosition();
    _finished.push_back({&queue, position, position._entry, 0, known, inMap, 0, count});
}

// The queue's place in the batch.
std::uint16_t LgServiceWriter::enter(const LgQueue& queue, std::uint32_t inMap)
{
    const LgQueue::ReadPosition position = queue.getReadPosition();
    const std::uint64_t reported = inMap == LgMap::NONE ? 0 : _map.queueAt(inMap)._reported;
    _queues.push_back({inMap, position._entry, position._text, 0, reported});
    return static_cast<std::uint16_t>(_queues.size() - 1);
}

void LgServiceWriter::addLine(std::uint16_t inBatch, const LgLineEvent& event, std::uint32_t lost)
{
    LgMap::BatchLine line{0, 0, inBatch, LgMap::NONE, lost};
    Output* const output = outputOf(event._level);
    const bool isEchoed = LgLog::isLevelEchoed(event._level);
    if (!output && lost == 0 && LgLog::isFileMissing(event._level)) LgReader::addUnwrittenCount(1);
    std::string& text = output ? output->_text : _echo;
    const std::size_t begin = text.size();
    if (output || isEchoed) _lineWriter->append(text, event);
    const std::size_t length = text.size() - begin;
    if (output && isEchoed) _echo.append(text, begin, length);
    _size += length;
    if (output)
    {
        line._length = static_cast<std::uint32_t>(length);
        line._hash = LgMap::hashOf(text.data() + begin, length);
        line._file = static_cast<std::uint16_t>(output - _outputs.data());
        output->_lines.push_back({line._length, lost == 0});
    }
    _lines.push_back(line);
}

LgServiceWriter::Output* LgServiceWriter::outputOf(LgTypes::Level level)
{
    std::ostream* const stream = LgLog::getLevelOutput(level);
    if (!stream) return nullptr;
    for (std::size_t i = 0; i < _outputCount; ++i)
        if (_outputs[i]._stream == stream) return &_outputs[i];
    if (_outputCount == _outputs.size()) _outputs.emplace_back();
    Output& output = _outputs[_outputCount++];
    output._stream = stream;
    output._level = firstLevelOf(stream);
    output._log = dynamic_cast<LgServiceLog*>(stream);
    if (output._log && !output._log->isDirect()) output._log = nullptr;
    output._text.clear();
    output._lines.clear();
    return &output;
}

void LgServiceWriter::writeCollected()
{
    // A file that failed is tried again even if nothing is new for it.
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        const LgServiceLog* const log = lgServiceLogOf(static_cast<LgTypes::Level>(level));
        if (log && log->isTryDue()) outputOf(static_cast<LgTypes::Level>(level));
    }
    prepare();
    if (_map.isOpen())
    {
        fillBatch();
        _map.commit(++_number, LgMap::Writing);
    }
    at(Step::Committed);
    write();
    at(Step::Wrote);
    if (_map.isOpen()) _map.commit(_number, LgMap::Written);
    at(Step::CommittedAgain);
    move();
    if (_map.isOpen()) _map.commit(_number, LgMap::Idle);
    at(Step::Done);
}

void LgServiceWriter::prepare()
{
    for (std::size_t i = 0; i < _outputCount; ++i)
    {
        Output& output = _outputs[i];
        output._file = LgMap::NONE;
        output._hasWaited = output._log && output._log->getPending() > 0;
        output._isReady =
            output._log && output._log->prepare(output._text.size(), output._lines.size());
    }
}

// Written to the batch that does not count yet.
void LgServiceWriter::fillBatch()
{
    LgMap::Batch& batch = _map.batch(_number + 1);
    batch._fileCount = 0;
    batch._lineCount = 0;
    for (std::size_t i = 0; i < _outputCount; ++i)
    {
        Output& output = _outputs[i];
        const auto part = output._isReady ? output._log->getPart() : std::nullopt;
        const bool isWaiting = output._log && !output._isReady;
        if ((!part && !isWaiting) || batch._fileCount == LgMap::MOST_FILES) continue;
        output._file = static_cast<std::uint16_t>(batch._fileCount++);
        LgMap::BatchFile& file = batch._files[output._file];
        file = {};
        file._log = output._level;
        if (!part) continue;
        const std::string& prefix = output._log->getPrefix();
        file = {part->_identity._volume,
                part->_identity._number,
                part->_offset,
                prefix.size() + output._text.size(),
                output._level,
                1,
                output._log->getDatesSize(),
                0};
        if (prefix.empty()) continue;
        batch._lines[batch._lineCount++] = {static_cast<std::uint32_t>(prefix.size()),
                                            LgMap::hashOf(prefix.data(), prefix.size()),
                                            LgMap::NONE, output._file, 0};
    }
    for (LgMap::BatchLine line : _lines)
    {
        if (line._file != LgMap::NONE) line._file = _outputs[line._file]._file;
        batch._lines[batch._lineCount++] = line;
    }
    std::copy(_queues.begin(), _queues.end(), batch._queues);
    batch._queueCount = static_cast<std::uint32_t>(_queues.size());
    at(Step::Prepared);
}

void LgServiceWriter::write()
{
    for (std::size_t i = 0; i < _outputCount; ++i)
    {
        Output& output = _outputs[i];
        if (output._log && output._isReady)
            output._log->write(output._text, output._lines);
        else if (output._log)
            output._log->wait(output._text, output._lines);
        else
            writeToStream(output);
        if (!output._log) continue;
        if (output._hasWaited || output._log->getPending() > 0) at(Step::Tried);
        _waiting.store(output._level, *output._log, _number);
    }
    if (!_echo.empty()) LgReader::writeLine(std::cout, _echo.data(), _echo.size());
}

// A stream that the application has put in the place of a log gets lines one by one.
void LgServiceWriter::writeToStream(const Output& output)
{
    const char* place = output._text.data();
    for (const LgServiceLog::Line& line : output._lines)
    {
        const bool isWritten = LgReader::writeLine(*output._stream, place, line._length);
        if (!isWritten && line._isEvent) LgReader::addUnwrittenCount(1);
        place += line._length;
    }
}

void LgServiceWriter::move()
{
    for (Cursor& cursor : _finished) move(cursor);
    for (Cursor& cursor : _cursors) move(cursor);
}

// Afterwards the queue is in no batch, and may be in the next one.
void LgServiceWriter::move(Cursor& cursor)
{
    if (cursor._inBatch == LgMap::NONE) return;
    const bool isInMap = cursor._inMap != LgMap::NONE;
    if (!isInMap && cursor._lost > 0) _map.addReportedOnHeap(*cursor._queue, cursor._lost);
    if (isInMap) _map.queueAt(cursor._inMap)._reported += cursor._lost;
    cursor._queue->removeUpTo(cursor._position);
    _known[cursor._known]._next = cursor._position._entry;
    cursor._inBatch = LgMap::NONE;
    cursor._lost = 0;
    at(Step::MovedOne);
}

// The queues of ended threads are the reader's to delete.
void LgServiceWriter::endQueues()
{
    if (_ended.empty()) return;
    const std::lock_guard guard(_status._mutex);
    for (const std::uint32_t known : _ended)
    {
        LgQueue* const queue = _known[known]._queue;
        _status._fills.erase(queue);
        LgLog::getRegistry()->deregisterQueue(queue);
        _map.forgetOnHeap(*queue);
        LgQueue::end(queue);
    }
    _ended.clear();
}

// What files that fail did not take, and the losses that are in no entry. Threads that live on have
// such losses, too, and nobody may look at their queues again.
void LgServiceWriter::writeLast()
{
    _cursors.clear();
    // Queues of threads that have ended since the last look are gone.
    lookAtRegistry();
    std::uint32_t next = 0;
    do
    {
        beginBatch();
        _finished.clear();
        while (next < _known.size() && _lines.size() < LgMap::MOST_EVENTS) addRestOfLosses(next++);
        if (!_lines.empty() || isFailing()) writeCollected();
    } while (next < _known.size());
}

LgServiceWriter::Rest LgServiceWriter::finish()
{
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    forEachLog([](std::uint32_t, LgServiceLog& log) { log.tryNow(); });
    writeLast();
    Rest rest = Rest::None;
    forEachLog(
        [&](std::uint32_t level, LgServiceLog& log)
        {
            if (log.getPending() == 0 && log.getDropped() == 0) return;
            const bool isKept = _waiting.keep(level, log);
            if (!isKept) log.giveUp();
            rest = std::max(rest, isKept ? Rest::Kept : Rest::Lost);
        });
    return rest;
}

} // namespace Zu
