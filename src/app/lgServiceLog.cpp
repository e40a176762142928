#include "app/lgServiceLog.h"

#include "app/lgMapFile.h"
#include "base/lgLog.h"
#include "base/lgReader.h"

#include <algorithm>
#include <iostream>
#include <streambuf>

namespace Zu
{

namespace
{

constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr LgServiceLog::Clock::duration FIRST_PAUSE = std::chrono::milliseconds(100);
constexpr LgServiceLog::Clock::duration LONGEST_PAUSE = std::chrono::seconds(10);

LgServiceLog::Settings& settings()
{
    static LgServiceLog::Settings theSettings;
    return theSettings;
}

} // namespace

LgServiceLog::Clock::time_point (*LgServiceLog::_now)() = &LgServiceLog::Clock::now;

constinit std::atomic<bool> LgServiceLog::_hasRotated{false};

// Takes what others insert into the stream: the logger its banners, an LgReader its lines.
class LgServiceLog::Buffer : public std::streambuf
{
public:
    explicit Buffer(LgServiceLog& log) : _log(log) {}

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        _log.insert(std::string_view(text, static_cast<std::size_t>(size)));
        return size;
    }

    int_type overflow(int_type character) override
    {
        if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
        const char one = traits_type::to_char_type(character);
        _log.insert(std::string_view(&one, 1));
        return character;
    }

private:
    LgServiceLog& _log;
};

LgServiceLog::LgServiceLog(std::string path)
    : std::ostream(nullptr), _givenPath(std::move(path)),
      _file(std::make_unique<LgServiceFile>(_givenPath, settings()._rotation)),
      _buffer(std::make_unique<Buffer>(*this))
{
    rdbuf(_buffer.get());
    imbue(std::locale::classic());
}

LgServiceLog::~LgServiceLog()
{
    giveUp();
}

std::unique_ptr<std::ostream> LgServiceLog::open(const char* name, bool)
{
    return std::make_unique<LgServiceLog>(name);
}

void LgServiceLog::setSettings(const Settings& newSettings)
{
    settings() = newSettings;
}

bool LgServiceLog::isDirect() const
{
    return rdbuf() == _buffer.get();
}

void LgServiceLog::setPath(const std::string& path)
{
    if (path != getPath())
    {
        // The failure was the other file's.
        _failingSince.reset();
        _dropped = 0;
    }
    storeBeforeClose();
    _file = std::make_unique<LgServiceFile>(path, settings()._rotation);
    _isBannerDue = true;
}

void LgServiceLog::setOrigin(const LgLineOrigin* origin)
{
    _origin.reset();
    if (origin) _origin = *origin;
    _isOriginDue = true;
}

// The logger's banner is written when the first line is, so that a program can still say where its
// logs go, and that it needs none.
void LgServiceLog::insert(std::string_view text)
{
    if (text.empty() || (_isBannerDue && text == LgLog::getBanner())) return;
    const std::vector<Line> lines{{static_cast<std::uint32_t>(text.size()), false}};
    _isInserting = true;
    const bool isReady = prepare(text.size(), lines.size());
    _isInserting = false;
    if (isReady)
        write(text, lines);
    else
        wait(text, lines);
}

bool LgServiceLog::open()
{
    if (_file->isOpen()) return true;
    const int error = _file->open();
    if (error != 0)
    {
        fail(error);
        return false;
    }
    _isBannerDue = true;
    _isOriginDue = true;
    lookAtEnd();
    return true;
}

// The last line may be one that another process has not ended.
void LgServiceLog::lookAtEnd()
{
    const std::uint64_t size = _file->getSize();
    char last = '\n';
    if (size > 0) _file->readAt(size - 1, &last, 1);
    _isLineCut = last != '\n';
}

bool LgServiceLog::prepare(std::size_t size, std::size_t lines)
{
    const bool isReady = isUsable(size);
    const std::size_t all = (isReady ? _prefix.size() : _waiting.size()) + size;
    _prefix.reserve(all);
    _waiting.reserve(all);
    _waitingLines.reserve(_waitingLines.size() + lines);
    return isReady;
}

// Whether to ask the system what has become of the file: for each batch, but not for each of many
// lines that are inserted one by one.
bool LgServiceLog::isLookDue()
{
    if (_isInserting && _now() < _nextLook) return false;
    _nextLook = _now() + FIRST_PAUSE;
    return true;
}

bool LgServiceLog::isUsable(std::size_t size)
{
    if (isFailing() && _now() < _nextTry) return false;
    const bool looks = isLookDue();
    if (looks && _file->isOpen() && _file->isReplaced()) openAnew();
    if (!open()) return false;
    if (looks && _file->isTruncated()) _isBannerDue = true;
    if (looks && _file->hasOthersText())
    {
        lookAtEnd();
        if (settings()._isDatedAgain) _isOriginDue = true;
    }
    collectPrefix();
    if (!_file->isRotationDue(_prefix.size() + size, lgWallClock() / NANOSECONDS)) return true;
    if (Clock::now() < _nextRotation) return true;
    storeBeforeClose();
    const int error = _file->rotate();
    if (error != 0)
    {
        _nextRotation = Clock::now() + LONGEST_PAUSE;
        return true;
    }
    ++_rotations;
    _hasRotated = true;
    if (!open()) return false;
    collectPrefix();
    return true;
}

// Somebody has renamed or removed it. If there can't be another one, as without its directory, the
// old one stays in use.
void LgServiceLog::openAnew()
{
    auto next = std::make_unique<LgServiceFile>(_file->getPath(), settings()._rotation);
    const int error = next->open();
    if (error == 0)
    {
        next->close();
        storeBeforeClose();
        _file = std::move(next);
        _isRemovalReported = false;
        return;
    }
    if (_isRemovalReported) return;
    _isRemovalReported = true;
    std::cerr << "The log file \"" << _file->getPath()
              << "\" was removed, and another one can't be opened: "
              << LgServiceFile::errorText(error) << std::endl;
}

// A later flush finds the file closed.
void LgServiceLog::storeBeforeClose()
{
    if (!settings()._isStored || !_file->isUnstored()) return;
    const bool isStored = _file->sync();
    noteStoring(isStored, LgServiceFilePlatform::lastError());
    if (!isStored) _isStoringLost = true;
}

void LgServiceLog::noteStoring(bool isStored, int error)
{
    if (!isStored && !_isStoringReported)
        std::cerr << "The log file \"" << _file->getPath()
                  << "\" can't be forced to the disk: " << LgServiceFile::errorText(error)
                  << std::endl;
    _isStoringReported = !isStored;
}

std::string LgServiceLog::dates() const
{
    std::string text;
    if (_isLineCut) text += '\n';
    if (_isBannerDue && settings()._hasBanner) text += LgLog::getBanner();
    if (_origin && (_isBannerDue || _isOriginDue)) text += lgOriginLine(*_origin);
    if (_dropped > 0) text += notWrittenLine(_dropped, getFailingSince());
    return text;
}

std::string LgServiceLog::notWrittenLine(std::uint64_t count, std::int64_t since)
{
    return "===== Not Written: " + std::to_string(count) + " events since " + lgIsoTime(since, 6) +
           " =====\n";
}

void LgServiceLog::collectPrefix()
{
    _prefix = dates();
    _datesSize = _prefix.size();
    _prefix += _waiting;
}

std::optional<LgServiceLog::Part> LgServiceLog::getPart() const
{
    const std::optional<LgServiceFile::Identity> identity = _file->getIdentity();
    if (!identity) return std::nullopt;
    return Part{*identity, _file->getSize()};
}

void LgServiceLog::write(std::string_view text, const std::vector<Line>& lines)
{
    _prefix += text;
    if (_prefix.empty())
    {
        // What waited was dropped, and nothing is to be said of it.
        work();
        return;
    }
    _waitingLines.insert(_waitingLines.end(), lines.begin(), lines.end());
    const LgServiceFile::Written written = _file->write(_prefix);
    if (written._size >= _datesSize)
    {
        _isBannerDue = false;
        _isOriginDue = false;
        _dropped = 0;
    }
    keepFrom(written._size, std::string_view(_prefix).substr(_datesSize));
    if (written._error == 0)
        work();
    else
        fail(written._error);
}

// Keeps the lines that are not wholly in the file; one that was begun is written again. One of
// which only the line feed is missing is not: that comes with what is written next.
void LgServiceLog::keepFrom(std::size_t written, std::string_view text)
{
    if (written == _datesSize + text.size())
    {
        _isLineCut = false;
        if (!_waiting.empty()) ++_changes;
        _waiting.clear();
        _waitingLines.clear();
        return;
    }
    const std::size_t done = written > _datesSize ? written - _datesSize : 0;
    std::size_t begin = 0;
    auto line = _waitingLines.begin();
    for (; line != _waitingLines.end() && begin + line->_length <= done + 1; ++line)
        begin += line->_length;
    _waitingLines.erase(_waitingLines.begin(), line);
    if (written > 0) _isLineCut = _prefix[written - 1] != '\n';
    if (begin > 0) ++_changes;
    const std::size_t before = begin > 0 ? 0 : _waiting.size();
    _waiting.assign(text.substr(begin));
    enforceLimit(before);
}

void LgServiceLog::wait(std::string_view text, const std::vector<Line>& lines)
{
    const std::size_t before = _waiting.size();
    _waiting += text;
    _waitingLines.insert(_waitingLines.end(), lines.begin(), lines.end());
    enforceLimit(before);
}

// The latest lines are dropped, so that those before the failure are complete. So many bytes waited
// before.
void LgServiceLog::enforceLimit(std::size_t before)
{
    std::size_t size = _waiting.size();
    std::uint64_t dropped = 0;
    while (size > settings()._pendingLimit)
    {
        size -= _waitingLines.back()._length;
        if (_waitingLines.back()._isEvent) ++dropped;
        _waitingLines.pop_back();
    }
    if (size < before) ++_changes;
    _waiting.resize(size);
    _dropped += dropped;
    if (dropped > 0) LgReader::addUnwrittenCount(dropped);
}

bool LgServiceLog::isTryDue() const
{
    return isFailing() && _now() >= _nextTry;
}

void LgServiceLog::giveUp()
{
    std::uint64_t dropped = 0;
    const Waiting waiting = takeWaiting();
    for (const Line& line : waiting._lines)
        if (line._isEvent) ++dropped;
    if (dropped > 0) LgReader::addUnwrittenCount(dropped);
}

LgServiceLog::Waiting LgServiceLog::takeWaiting()
{
    if (!_waiting.empty()) ++_changes;
    return {std::exchange(_waiting, {}), std::exchange(_waitingLines, {}),
            std::exchange(_dropped, 0), getFailingSince()};
}

void LgServiceLog::setWaiting(Waiting waiting)
{
    ++_changes;
    _waiting = std::move(waiting._text);
    _waitingLines = std::move(waiting._lines);
    _dropped = waiting._dropped;
    _failingSince = waiting._since;
    tryNow();
}

void LgServiceLog::reopen()
{
    storeBeforeClose();
    _file->close();
}

void LgServiceLog::fail(int error)
{
    const Clock::time_point now = _now();
    _pause = isFailing() ? std::min(2 * _pause, LONGEST_PAUSE) : FIRST_PAUSE;
    _nextTry = now + _pause;
    if (isFailing()) return;
    _failingSince = lgWallClock();
    std::cerr << "The log file \"" << _file->getPath()
              << "\" can't be written, and is tried again: " << LgServiceFile::errorText(error)
              << std::endl;
}

void LgServiceLog::work()
{
    if (!isFailing()) return;
    _failingSince.reset();
    std::cerr << "The log file \"" << _file->getPath() << "\" is written again." << std::endl;
}

} // namespace Zu
