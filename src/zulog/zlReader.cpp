#include "zulog/zlReader.h"

#include "zulog/zlFile.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>

namespace Zu
{

namespace
{

constexpr std::string_view MARK_BEGIN = "=====";
constexpr std::string_view STARTUP = "===== Message Logger Startup =====";
constexpr std::string_view STARTED = "===== Started on ";
constexpr std::string_view FREQUENCY = "===== Clock Frequency: ";
constexpr std::string_view STOPPED = "===== Message Logger Stopped =====";
constexpr std::string_view RECOVERY_BEGIN = "===== Recovered: events of process ";
constexpr std::string_view RECOVERY_END = "===== Recovered: end of the events of process ";

constexpr std::size_t NONE = std::string_view::npos;
constexpr std::size_t LEAST_BUFFER = 4096;

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The number at the beginning of a text.
std::optional<std::uint32_t> numberOf(std::string_view text)
{
    std::uint32_t number = 0;
    const auto [place, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

} // namespace

ZlReader::ZlReader(std::vector<std::string> files, ZlReports& reports, const Options& options)
    : _files(std::move(files)), _reports(reports), _options(options),
      _isAnySkipped(options._areMarksSkipped || options._levels != ~0U),
      _buffer(std::max(options._bufferSize, LEAST_BUFFER))
{
}

ZlReader::ZlReader(std::string name, std::unique_ptr<ZlSource> source, ZlReports& reports,
                   const Options& options)
    : ZlReader({}, reports, options)
{
    _name = std::move(name);
    beginFile(std::move(source));
}

ZlReader::~ZlReader() = default;

void ZlReader::append(std::unique_ptr<ZlSource> source)
{
    _sources.push_back(std::move(source));
}

void ZlReader::release(bool isAll)
{
    _isReleased = true;
    _isAllReleased = isAll;
}

bool ZlReader::openNext()
{
    if (!_sources.empty())
    {
        std::unique_ptr<ZlSource> source = std::move(_sources.front());
        _sources.pop_front();
        beginFile(std::move(source));
        return true;
    }
    while (_nextFile < _files.size())
    {
        _name = _files[_nextFile++];
        try
        {
            beginFile(zlOpenSource(_name, _options._openFiles));
            return true;
        }
        catch (const ZlError& error)
        {
            _reports.failed(error.what());
        }
    }
    return false;
}

void ZlReader::beginFile(std::unique_ptr<ZlSource> source)
{
    _source = std::move(source);
    _isAtEnd = false;
    _begin = 0;
    _end = 0;
    _searched = 0;
    _line = 0;
    _isInLine = false;
    _offset = 0;
    _areStamped.reset();
    forgetOrigin();
}

void ZlReader::setOrigin(const LgLineOrigin& origin)
{
    _origin = origin;
    _areStamped = true;
    _owner._host = origin._host;
    _owner._boot = origin._boot;
    _owner._process = origin._process;
    _owner._processStart = origin._processStart;
    _owner._ticksPerSecond = origin._ticksPerSecond;
    // A log of more processes than that has the host of the earlier ones only.
    constexpr std::size_t MOST_OWNERS = 10000;
    const auto place = _owners.find(origin._process);
    if (place != _owners.end())
        place->second = _owner;
    else if (_owners.size() < MOST_OWNERS)
        _owners.emplace(origin._process, _owner);
}

// Several processes may share a log, so that lines of one follow the start of another.
const ZlOwner& ZlReader::ownerOf(std::uint32_t process) const
{
    if (_owner._process == process) return _owner;
    const auto place = _owners.find(process);
    return place == _owners.end() ? _nobody : place->second;
}

void ZlReader::forgetOrigin()
{
    _origin.reset();
    _owner = {};
    _isOwnerOver = false;
}

// Whether the present end is the end for good.
bool ZlReader::isOver() const
{
    return _isAtEnd && (!_isLive || !_sources.empty());
}

// False at the present end. What is in the buffer may be at another place then.
bool ZlReader::fill()
{
    if (_isAtEnd && !_isLive) return false;
    if (_begin > 0)
    {
        std::memmove(_buffer.data(), _buffer.data() + _begin, _end - _begin);
        _end -= _begin;
        _begin = 0;
    }
    if (_end == _buffer.size()) _buffer.resize(2 * _buffer.size());
    std::size_t count = 0;
    try
    {
        count = _source->read(_buffer.data() + _end, _buffer.size() - _end);
    }
    catch (const ZlError& error)
    {
        _reports.failed(error.what());
    }
    _isAtEnd = count == 0;
    _end += count;
    return count > 0;
}

// Counted from the beginning of what is in the buffer; reads more as needed. NONE if there is none
// up to the present end, or within the longest line.
std::size_t ZlReader::findLineFeed(std::size_t from)
{
    for (;;)
    {
        const std::size_t size = _end - _begin;
        const char* const begin = _buffer.data() + _begin;
        if (const void* const found = std::memchr(begin + from, '\n', size - from))
            return static_cast<std::size_t>(static_cast<const char*>(found) - begin);
        from = size;
        if (size >= LONGEST || !fill()) return NONE;
    }
}

ZlReader::Block ZlReader::blockOf(std::size_t size, std::size_t firstEnd, std::uint64_t lines,
                                  const char* fault)
{
    const char* const begin = _buffer.data() + _begin;
    // On some platforms line ends have two characters.
    const auto withoutEnd = [begin](std::size_t length)
    {
        if (length > 0 && begin[length - 1] == '\n') --length;
        if (length > 0 && begin[length - 1] == '\r') --length;
        return std::string_view(begin, length);
    };
    Block block;
    block._size = size;
    block._lines = lines;
    block._first = withoutEnd(firstEnd);
    block._all = withoutEnd(size);
    block._fault = fault;
    return block;
}

// False if there is none up to the present end.
bool ZlReader::takeBlock(Block& block)
{
    const std::size_t feed = findLineFeed(_searched);
    if (feed == NONE)
    {
        const std::size_t size = std::min(_end - _begin, LONGEST);
        const bool isLong = size == LONGEST;
        _searched = isLong ? 0 : size;
        const bool isKept = !isLong && !isOver() && !_isAllReleased;
        if (size == 0 || isKept) return false;
        block = blockOf(size, size, isLong ? 0 : 1,
                        isLong ? "the line is longer than 1 MiB, and taken in parts"
                               : "the last line has no end");
        block._isCut = isLong;
        return true;
    }
    _searched = feed;
    block = blockOf(feed + 1, feed + 1, 1, nullptr);
    const bool isNextThere = _begin + block._size < _end;
    if (isNextThere && _buffer[_begin + block._size] != '\t') return true;
    const bool isMark = beginsWith(block._first, MARK_BEGIN);
    return isMark || addContinuations(block);
}

// Lines that begin with a TAB belong to the one in front of them. False if more of them may come.
bool ZlReader::addContinuations(Block& block)
{
    const std::size_t firstEnd = block._size;
    std::size_t size = block._size;
    std::uint64_t lines = 1;
    const char* fault = nullptr;
    bool isCut = false;
    for (; size < LONGEST; ++lines)
    {
        const bool isAtEnd = _begin + size == _end && !fill();
        if (isAtEnd && !isOver() && !_isReleased) return false;
        if (isAtEnd || _buffer[_begin + size] != '\t') break;
        const std::size_t feed = findLineFeed(size);
        if (feed != NONE)
        {
            size = feed + 1;
            continue;
        }
        isCut = _end - _begin >= LONGEST;
        if (!isCut && !isOver() && !_isAllReleased) return false;
        size = std::min(_end - _begin, LONGEST);
        fault = isCut ? "the event is longer than 1 MiB, and taken in parts"
                      : "the last line has no end";
        lines += isCut ? 0 : 1;
        break;
    }
    block = blockOf(size, firstEnd, lines, fault);
    block._isCut = isCut;
    return true;
}

void ZlReader::consume(const Block& block)
{
    _begin += block._size;
    _searched = 0;
    _line += block._lines;
    _offset += block._size;
    _allLines += block._lines;
    _isInLine = block._isCut;
}

// The level stands at a known place, so the rest of the line need not be looked at.
bool ZlReader::isSkipped(const Block& block) const
{
    if (!_isAnySkipped) return false;
    if (block._first.empty() || !isDigit(block._first.front()))
        return _options._areMarksSkipped && !beginsWith(block._first, MARK_BEGIN);
    const std::size_t place = zlFindLevel(block._first);
    LgTypes::Level level = LgTypes::InternalError;
    if (place == NONE || zlParseLevel(block._first.substr(place), level) == 0)
        return _options._areMarksSkipped;
    return ((_options._levels >> level) & 1U) == 0;
}

bool ZlReader::next()
{
    Step step = Step::Nothing;
    while (step == Step::Nothing) step = takeStep();
    if (step == Step::Record) return true;
    _isReleased = false;
    _isAllReleased = false;
    return false;
}

// Deals with one block.
ZlReader::Step ZlReader::takeStep()
{
    if (_isOwnerOver) forgetOrigin();
    if (!_source && !openNext()) return Step::End;
    Block block;
    const bool hasBlock = takeBlock(block);
    const bool isFileOver = !hasBlock && isOver();
    const bool isStartDue = _hasStart && (isFileOver || _isReleased);
    if (!hasBlock && !isFileOver && !isStartDue) return Step::End;
    if (isFileOver) _source.reset();
    if (_hasStart) return takeStepOfStart(hasBlock ? &block : nullptr);
    if (!hasBlock) return Step::Nothing;
    const bool isRecord = !isSkipped(block) && read(block);
    consume(block);
    const bool isWanted = zlIsEvent(_record._kind) || !_options._areMarksSkipped;
    return isRecord && isWanted ? Step::Record : Step::Nothing;
}

// The banner goes on with the block, or ends in front of it. It has neither continuations nor lines
// that are taken in parts.
ZlReader::Step ZlReader::takeStepOfStart(const Block* block)
{
    const bool isPart = block && !block->_isCut && addToStart(block->_all);
    if (isPart) consume(*block);
    if (isPart && !_origin) return Step::Nothing;
    finishStart();
    return _options._areMarksSkipped ? Step::Nothing : Step::Record;
}

// False for what is no record of its own.
bool ZlReader::read(const Block& block)
{
    beginRecord(ZlRecord::Kind::Event, block);
    if (_isInLine)
    {
        readUnreadable(block, "the rest of a line that is taken in parts");
        return true;
    }
    if (beginsWith(block._first, MARK_BEGIN) && readMark(block._first))
    {
        if (block._fault) report(block._fault);
        return _record._kind != ZlRecord::Kind::Event;
    }
    ZlHead head;
    if (zlParseHead(block._first, head))
    {
        _areStamped = true;
        readEvent(head, block._all.substr(head._length));
        if (block._fault) report(block._fault);
        return true;
    }
    const bool isContinuation = !block._first.empty() && block._first.front() == '\t';
    if (!isContinuation && !_areStamped.value_or(false) && !beginsWith(block._first, MARK_BEGIN))
    {
        readText(block._all);
        if (block._fault) report(block._fault);
        return true;
    }
    readUnreadable(block, isContinuation ? "a continuation without its event"
                                         : "this is no line of a log");
    return true;
}

void ZlReader::readUnreadable(const Block& block, const char* reason)
{
    _record._kind = ZlRecord::Kind::Unreadable;
    _record._process.reset();
    _record._owner = &_nobody;
    _record._text = block._all;
    report(block._fault ? block._fault : reason);
}

void ZlReader::beginRecord(ZlRecord::Kind kind, const Block& block)
{
    _record = {};
    _record._kind = kind;
    _record._owner = &_owner;
    _record._process = _owner._process;
    _record._file = &_name;
    _record._line = _line + 1;
    _record._raw = block._all;
    _record._text = block._all;
}

void ZlReader::report(const char* reason)
{
    _reports.wrongLine(_name, _record._line, reason);
}

void ZlReader::readEvent(const ZlHead& head, std::string_view text)
{
    if (head._form == ZlHead::Form::Iso)
    {
        _record._wall = head._wall;
        _record._zone = head._zone;
        _record._process = head._process;
        _record._owner = &ownerOf(head._process);
    }
    else
    {
        _record._ticks = head._ticks;
        if (_origin) _record._wall = lgWallOf(*_origin, head._ticks);
    }
    _record._thread = head._thread;
    _record._level = head._level;
    readText(text);
}

void ZlReader::readText(std::string_view text)
{
    if (zlParseOverflow(text, _record._count))
    {
        _record._kind = ZlRecord::Kind::Overflow;
        _record._text = text;
        return;
    }
    const std::size_t length = zlGroupLength(text);
    _record._group = text.substr(0, length);
    const bool hasBlank = length > 0 && length < text.size() && text[length] == ' ';
    _record._text = text.substr(length + (hasBlank ? 1 : 0));
}

// False for a line that is none of the logger's. A mark without a record leaves the kind as it is.
bool ZlReader::readMark(std::string_view line)
{
    LgLineOrigin origin;
    std::int64_t since = 0;
    if (line == STARTUP)
    {
        forgetOrigin();
        _areStamped = false;
        _hasStart = true;
        _isEmptyLineDue = false;
        _startLine = line;
        _startNumber = _record._line;
    }
    else if (lgParseOriginLine(line, origin))
        setOrigin(origin);
    else if (line == STOPPED)
    {
        _record._kind = ZlRecord::Kind::Stop;
        _isOwnerOver = true;
    }
    else if (beginsWith(line, RECOVERY_END))
    {
        _record._kind = ZlRecord::Kind::RecoveryEnd;
        _record._process = numberOf(line.substr(RECOVERY_END.size()));
        _isOwnerOver = true;
        _areStamped.reset();
    }
    else if (beginsWith(line, RECOVERY_BEGIN))
    {
        _record._kind = ZlRecord::Kind::RecoveryBegin;
        _record._process = numberOf(line.substr(RECOVERY_BEGIN.size()));
        forgetOrigin();
        _areStamped = true;
    }
    else if (zlParseNotWritten(line, _record._count, since))
    {
        _record._kind = ZlRecord::Kind::NotWritten;
        _record._wall = since;
    }
    else
        return false;
    return true;
}

// The further lines of a banner. The date ends with a line feed of its own.
bool ZlReader::addToStart(std::string_view line)
{
    const bool isEmptyLine = _isEmptyLineDue && line.empty();
    _isEmptyLineDue = false;
    if (isEmptyLine) return true;
    if (beginsWith(line, STARTED))
    {
        _isEmptyLineDue = true;
        _areStamped = true;
        return true;
    }
    if (beginsWith(line, FREQUENCY))
    {
        _areStamped = true;
        return true;
    }
    LgLineOrigin origin;
    if (!lgParseOriginLine(line, origin)) return false;
    setOrigin(origin);
    return true;
}

void ZlReader::finishStart()
{
    _hasStart = false;
    _record = {};
    _record._kind = ZlRecord::Kind::Start;
    _record._owner = &_owner;
    _record._process = _owner._process;
    _record._file = &_name;
    _record._line = _startNumber;
    _record._raw = _startLine;
    _record._text = _startLine;
    if (!_origin) return;
    _record._ticks = 0;
    _record._wall = lgWallOf(*_origin, 0);
}

} // namespace Zu
