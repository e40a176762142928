#include "app/lgServiceFile.h"

#include "base/osOutputFile.h"

#include <chrono>

namespace Zu
{

namespace
{

namespace Platform = LgServiceFilePlatform;

constexpr std::int64_t MINUTE = 60;
constexpr std::int64_t DAY = 86400;
constexpr int MINUTES_OF_DAY = 1440;

// Of a file that is put away. Whoever compresses it may have left both: should a rotation end
// between the two, the one that is complete has the lower number and is kept for longer.
constexpr const char* ENDINGS[] = {".gz", ""};

std::string numbered(const std::string& path, int number)
{
    return number == 0 ? path : path + '.' + std::to_string(number);
}

bool isTaken(const std::string& path, int number, const LgServiceFile::IsThere& isThere)
{
    for (const char* const ending : ENDINGS)
        if (isThere(numbered(path, number) + ending)) return true;
    return false;
}

std::int64_t present()
{
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(time).count();
}

// The number of the day, before 1970 as well.
std::int64_t dayOf(std::int64_t seconds)
{
    return seconds / DAY - (seconds % DAY < 0 ? 1 : 0);
}

// The instant at which clocks first show this local time. Clocks are not changed twice within two
// days, so the offset is one of two.
std::int64_t universalOf(std::int64_t local, const LgServiceFile::OffsetAt& offsetAt)
{
    const std::int64_t before = offsetAt(local - DAY);
    const std::int64_t after = offsetAt(local + DAY);
    const bool isBefore = offsetAt(local - before) == before;
    const bool isAfter = offsetAt(local - after) == after;
    return local - (isBefore || !isAfter ? before : after);
}

} // namespace

LgServiceFile::LgServiceFile(std::string path, const Rotation& rotation)
    : _path(std::move(path)), _rotation(rotation), _file(Platform::NO_FILE)
{
}

LgServiceFile::~LgServiceFile()
{
    close();
}

bool LgServiceFile::isOpen() const
{
    return _file != Platform::NO_FILE;
}

int LgServiceFile::open()
{
    if (isOpen()) return 0;
    _file = osOpenOutputFile(_path.c_str(), OsOutputMode::Kept);
    if (!isOpen()) return Platform::lastError();
    const std::optional<Platform::Status> status = Platform::statusOf(_file);
    _identity = status ? status->_identity : std::nullopt;
    _isPlain = status && status->_isPlain;
    _known = _isPlain ? status->_size : 0;
    _since = status ? status->_modified : 0;
    _isUnstored = false;
    return 0;
}

void LgServiceFile::close()
{
    if (isOpen()) Platform::close(_file);
    _file = Platform::NO_FILE;
}

std::optional<LgServiceFile::Identity> LgServiceFile::getIdentity() const
{
    return isOpen() ? _identity : std::nullopt;
}

std::uint64_t LgServiceFile::getSize() const
{
    if (!isOpen() || !_isPlain) return 0;
    const std::optional<Platform::Status> status = Platform::statusOf(_file);
    return status ? status->_size : 0;
}

LgServiceFile::Written LgServiceFile::write(std::string_view text)
{
    if (!isOpen()) return {0, Platform::notOpen()};
    const bool isFirst = _known == 0;
    Written written;
    while (written._size < text.size() && written._error == 0)
    {
        const std::string_view rest = text.substr(written._size);
        const std::ptrdiff_t taken = Platform::write(_file, rest.data(), rest.size());
        if (taken < 0)
            written._error = Platform::lastError();
        else
            written._size += static_cast<std::size_t>(taken);
    }
    if (_isPlain) _known += written._size;
    if (_isPlain && written._size > 0) _isUnstored = true;
    if (isFirst && _known != 0) _since = present();
    return written;
}

bool LgServiceFile::isReplaced() const
{
    return isOpen() && _identity &&
           Platform::targetOf(_path, _file, *_identity) == Platform::Target::OTHER;
}

bool LgServiceFile::isTruncated()
{
    _hasOthersText = false;
    if (!isOpen() || !_isPlain) return false;
    const std::optional<Platform::Status> status = Platform::statusOf(_file);
    if (!status) return false;
    const bool isShorter = status->_size < _known;
    _hasOthersText = status->_size > _known;
    _known = status->_size;
    return isShorter;
}

bool LgServiceFile::isRotationDue(std::size_t size, std::int64_t now) const
{
    const std::uint64_t there = getSize();
    if (there == 0) return false;
    if (_rotation._size != 0 && there + size > _rotation._size) return true;
    const int minute = _rotation._minuteOfDay;
    if (minute < 0 || minute >= MINUTES_OF_DAY) return false;
    return _since > now + DAY || _since < getLatest(minute, now, getLocalOffset);
}

int LgServiceFile::rotate()
{
    const std::optional<Platform::Status> status = Platform::statusOf(_path);
    if (status && !status->_isPlain) return 0;
    for (const auto& [from, to] : getRenames(_path, Platform::isThere))
        if (!Platform::rename(from, to)) return Platform::lastError();
    close();
    for (const std::string& name : getSurplus(_path, _rotation._kept, Platform::isThere))
        Platform::remove(name);
    return 0;
}

bool LgServiceFile::sync()
{
    if (!isOpen()) return false;
    if (_isPlain && !Platform::sync(_file)) return false;
    _isUnstored = false;
    return true;
}

int LgServiceFile::copyToStore(std::unique_ptr<LgServiceFile>& copy)
{
    copy.reset();
    if (!isOpen() || !_isPlain) return 0;
    auto other = std::make_unique<LgServiceFile>(_path, _rotation);
    other->_file = Platform::duplicate(_file);
    if (!other->isOpen()) return Platform::lastError();
    other->_isPlain = true;
    copy = std::move(other);
    _isUnstored = false;
    return 0;
}

std::ptrdiff_t LgServiceFile::readAt(std::uint64_t offset, char* buffer, std::size_t size) const
{
    if (!isOpen() || !_isPlain) return -1;
    std::size_t done = 0;
    while (done < size)
    {
        const std::ptrdiff_t given =
            Platform::readAt(_file, offset + done, buffer + done, size - done);
        if (given < 0) return -1;
        if (given == 0) break;
        done += static_cast<std::size_t>(given);
    }
    return static_cast<std::ptrdiff_t>(done);
}

std::string LgServiceFile::errorText(int code)
{
    std::string text = Platform::textOf(code);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    return text.empty() ? "Error " + std::to_string(code) : text;
}

// Only the numbers below a free one move, and the oldest first, so that each target is free.
LgServiceFile::Renames LgServiceFile::getRenames(const std::string& path, const IsThere& isThere)
{
    Renames renames;
    if (!isThere(path)) return renames;
    int free = 1;
    while (isTaken(path, free, isThere)) ++free;
    for (int number = free - 1; number > 0; --number)
        for (const std::string ending : ENDINGS)
        {
            const std::string from = numbered(path, number) + ending;
            if (isThere(from)) renames.emplace_back(from, numbered(path, number + 1) + ending);
        }
    renames.emplace_back(path, numbered(path, 1));
    return renames;
}

// The oldest first, so that what is left continues the numbers. An interrupted rotation has left at
// most one number free; names that only look like a number, such as a date, are further away.
std::vector<std::string> LgServiceFile::getSurplus(const std::string& path, int kept,
                                                   const IsThere& isThere)
{
    const int first = kept < 0 ? 1 : kept + 1;
    int end = first;
    while (isTaken(path, end, isThere) || isTaken(path, end + 1, isThere)) ++end;
    std::vector<std::string> surplus;
    for (int number = end - 1; number >= first; --number)
        for (const char* const ending : ENDINGS)
            if (isThere(numbered(path, number) + ending))
                surplus.push_back(numbered(path, number) + ending);
    return surplus;
}

std::int64_t LgServiceFile::getLatest(int minuteOfDay, std::int64_t now, const OffsetAt& offsetAt)
{
    // Clocks that are put back past midnight show the end of a day again after the next one has
    // begun.
    std::int64_t day = dayOf(now + offsetAt(now)) + 1;
    for (;;)
    {
        const std::int64_t instant = universalOf(day * DAY + minuteOfDay * MINUTE, offsetAt);
        if (instant <= now) return instant;
        --day;
    }
}

} // namespace Zu
