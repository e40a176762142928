#include "zulog/zlFollow.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <limits>
#include <queue>
#include <string_view>
#include <utility>

namespace Zu
{

namespace
{

// An event is written with its continuations at once, so they follow within this time.
constexpr std::chrono::milliseconds PATIENCE{20};
// How often directories are looked at that can't be watched.
constexpr int PERIOD = 500;

// A file that others append to.
class GrowingSource : public ZlSource
{
public:
    GrowingSource(const std::string& name, std::shared_ptr<ZlOpenFiles> pool)
        : _file(name, std::move(pool)), _facts(_file.getFacts())
    {
    }

    std::size_t read(char* place, std::size_t size) override
    {
        if (_isEnded) return 0;
        const std::size_t count = _file.read(place, size);
        remember(std::string_view(place, count));
        return count;
    }

    ZlPooledFile& getFile()
    {
        return _file;
    }

    // Whether the file no longer has what was read: somebody has emptied it, and may have written
    // it anew since.
    bool isReplaced(const ZlFile::Facts& facts)
    {
        if (facts._size < _file.getOffset()) return true;
        const bool isUnchanged = facts == _facts;
        _facts = facts;
        return !isUnchanged && !hasLast();
    }

    // What is in the file now is read by another source.
    void end()
    {
        _isEnded = true;
    }

private:
    // Lines with times differ within this length.
    static constexpr std::size_t REMEMBERED = 256;

    void remember(std::string_view text)
    {
        _last.append(text.substr(text.size() - std::min(text.size(), REMEMBERED)));
        if (_last.size() > REMEMBERED) _last.erase(0, _last.size() - REMEMBERED);
    }

    // Whether the bytes in front of the place of reading are still there.
    bool hasLast()
    {
        const std::uint64_t offset = _file.getOffset();
        char present[REMEMBERED];
        std::size_t count = 0;
        _file.seek(offset - _last.size());
        while (count < _last.size())
        {
            const std::size_t more = _file.read(present + count, _last.size() - count);
            if (more == 0) break;
            count += more;
        }
        _file.seek(offset);
        return std::string_view(present, count) == _last;
    }

    ZlPooledFile _file;
    std::string _last;
    ZlFile::Facts _facts;
    bool _isEnded = false;
};

struct RotatedFile
{
    std::int64_t _written;
    // Among the files that a log was rotated to.
    std::ptrdiff_t _place;
    std::string _name;
};

// The earliest first. Of files of the same time, those that stand closer to the one that was read
// last are earlier.
std::vector<std::string> inOrder(std::vector<RotatedFile> files, std::ptrdiff_t last)
{
    const auto keyOf = [last](const RotatedFile& file)
    { return std::pair(file._written, std::abs(file._place - last)); };
    std::sort(files.begin(), files.end(),
              [&](const RotatedFile& one, const RotatedFile& other)
              { return keyOf(one) < keyOf(other); });
    std::vector<std::string> names;
    names.reserve(files.size());
    for (RotatedFile& file : files) names.push_back(std::move(file._name));
    return names;
}

} // namespace

// One name, and the file that it leads to.
class ZlFollower::Log
{
public:
    Log(std::string name, ZlReports& reports, ZlReader::Options options)
        : _name(std::move(name)), _reports(reports), _options(std::move(options))
    {
    }

    const std::string& getName() const
    {
        return _name;
    }

    // Goes on with another file where the name leads to one, and with those that were rotated in
    // between. Where the name leads nowhere for the moment, the file is kept.
    void look(ZlListing& listing)
    {
        ZlFile::Facts facts;
        const bool isThere = ZlFile::find(_name, facts);
        _isIdle = false;
        try
        {
            const bool isNone = isThere && !goOn(facts, listing);
            _isIdle = isNone && getOffset() > 0 && facts._size == getOffset();
        }
        catch (const ZlError& error)
        {
            if (!_isReported) _reports.failed(error.what());
            _isReported = true;
        }
        _mayHold = _mayHold || !_isIdle;
    }

    bool next()
    {
        if (!_reader || _isIdle || _hasRecord) return _hasRecord;
        return _hasRecord = _reader->next();
    }

    const ZlRecord& getRecord() const
    {
        return _reader->getRecord();
    }

    // Of the record: what has none follows the one in front of it.
    std::int64_t getTime()
    {
        _time = std::max(_time, getRecord()._wall.value_or(_time));
        return _time;
    }

    void take()
    {
        _hasRecord = false;
    }

    void release()
    {
        if (!_reader || !_mayHold) return;
        _reader->release(false);
        _isIdle = false;
        _mayHold = false;
    }

    std::uint64_t getOffset() const
    {
        return _source ? _source->getFile().getOffset() : 0;
    }

private:
    // True if there is another file to be read.
    bool goOn(const ZlFile::Facts& facts, ZlListing& listing)
    {
        const bool isOther = _source && !(facts._identity == _identity);
        if (_source && !isOther && !_source->isReplaced(facts)) return false;
        auto source = std::make_unique<GrowingSource>(_name, _options._openFiles);
        if (isOther)
            addRotated(listing);
        else if (_source)
            _source->end();
        _identity = source->getFile().getIdentity();
        _source = source.get();
        add(std::move(source));
        findRotated(listing);
        return true;
    }

    void addRotated(ZlListing& listing)
    {
        std::vector<std::string> names;
        try
        {
            names = filesInBetween(listing);
        }
        catch (const ZlError& error)
        {
            // The present file itself is gone.
            _source->end();
            _reports.failed(error.what());
        }
        for (const std::string& name : names) addRotated(name);
    }

    void addRotated(const std::string& name)
    {
        try
        {
            add(zlOpenSource(name, _options._openFiles));
        }
        catch (const ZlError& error)
        {
            _reports.failed(error.what());
        }
    }

    void add(std::unique_ptr<ZlSource> source)
    {
        if (_reader) return _reader->append(std::move(source));
        _reader = std::make_unique<ZlReader>(_name, std::move(source), _reports, _options);
        _reader->setLive();
    }

    // What is there is not to be read, whatever it is renamed to.
    void findRotated(ZlListing& listing)
    {
        _rotated.clear();
        for (const std::string& file : listing.findRotated(_name))
            if (ZlFile::Identity identity; ZlFile::find(file, identity))
                _rotated.push_back(identity);
    }

    bool isKnown(const ZlFile::Identity& identity) const
    {
        return identity == _identity ||
               std::find(_rotated.begin(), _rotated.end(), identity) != _rotated.end();
    }

    // Those that were rotated after the present file was, the earliest first. Whether numbers rise
    // or fall with time depends on who rotates, so the times count.
    std::vector<std::string> filesInBetween(ZlListing& listing) const
    {
        const std::int64_t written = _source->getFile().getFacts()._written;
        std::vector<RotatedFile> files;
        std::ptrdiff_t present = -1;
        std::ptrdiff_t place = 0;
        for (const std::string& name : listing.findRotated(_name))
        {
            ZlFile::Facts facts;
            if (!ZlFile::find(name, facts)) continue;
            if (facts._identity == _identity) present = place;
            // A file that is compressed keeps its time, but not its identity.
            const bool isEarlier = facts._written < written ||
                                   (facts._written == written && zlIsNamedCompressed(name));
            if (!isKnown(facts._identity) && !isEarlier)
                files.push_back({facts._written, place, name});
            ++place;
        }
        return inOrder(std::move(files), present);
    }

    const std::string _name;
    ZlReports& _reports;
    const ZlReader::Options _options;
    std::unique_ptr<ZlReader> _reader;
    // What the name led to last; the reader's.
    GrowingSource* _source = nullptr;
    ZlFile::Identity _identity;
    // The files that were there as rotated ones when it was opened.
    std::vector<ZlFile::Identity> _rotated;
    std::int64_t _time = std::numeric_limits<std::int64_t>::min();
    bool _hasRecord = false;
    // Whether there was nothing new at the last look.
    bool _isIdle = false;
    // Whether the reader may keep an event since the last release.
    bool _mayHold = false;
    bool _isReported = false;
};

ZlFollower::ZlFollower(const ZlShowOptions& options, std::size_t lines, ZlOutput& output,
                       ZlReports& reports)
    : _options(options), _reports(reports), _printer(options, output, reports),
      _words(options._words)
{
    ZlListing listing;
    findLogs(listing);
    for (const auto& log : _logs)
        if (ZlFile::Identity identity; !ZlFile::find(log->getName(), identity))
            _reports.note("\"" + log->getName() + "\" is not there yet");
    _printer.begin();
    _printer.keepLast(lines);
    look();
    release();
    _printer.showLast();
}

ZlFollower::~ZlFollower() = default;

void ZlFollower::findLogs(ZlListing& listing)
{
    std::vector<std::string> names = _words.findLogs(listing);
    ZlReader::Options reading = zlReaderOptions(_options, names.size());
    reading._openFiles = _openFiles;
    for (std::string& name : names)
        if (_names.insert(name).second)
            _logs.push_back(std::make_unique<Log>(std::move(name), _reports, reading));
}

bool ZlFollower::look()
{
    ZlListing listing;
    findLogs(listing);
    for (const auto& log : _logs) log->look(listing);
    return show();
}

void ZlFollower::release()
{
    for (const auto& log : _logs) log->release();
    show();
}

std::uint64_t ZlFollower::countBytes() const
{
    std::uint64_t count = 0;
    for (const auto& log : _logs) count += log->getOffset();
    return count;
}

// The earliest record first, and of the same time those of the log that was found first.
bool ZlFollower::show()
{
    using Head = std::pair<std::int64_t, std::size_t>;
    const std::uint64_t before = countBytes();
    std::priority_queue<Head, std::vector<Head>, std::greater<>> heads;
    const auto advance = [&](std::size_t log)
    {
        if (_logs[log]->next()) heads.emplace(_logs[log]->getTime(), log);
    };
    for (std::size_t log = 0; log < _logs.size(); ++log) advance(log);
    const bool isAny = !heads.empty();
    while (!heads.empty())
    {
        const std::size_t earliest = heads.top().second;
        heads.pop();
        _printer.add(_logs[earliest]->getRecord());
        _logs[earliest]->take();
        advance(earliest);
    }
    _printer.flush();
    return isAny || countBytes() != before;
}

std::vector<std::string> ZlFollower::getDirectories() const
{
    return _words.getDirectories();
}

void zlFollow(const ZlShowOptions& options, std::size_t lines, ZlOutput& output, ZlReports& reports,
              const std::atomic<bool>& isStopped)
{
    using Clock = std::chrono::steady_clock;
    ZlWatch watch;
    ZlFollower follower(options, lines, output, reports);
    Clock::time_point released;
    bool isReleased = true;
    while (!isStopped)
    {
        const bool areAllWatched = watch.add(follower.getDirectories());
        // What was written before that, too.
        if (follower.look())
        {
            released = Clock::now() + PATIENCE;
            isReleased = false;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(released - Clock::now());
        if (!isReleased && left.count() > 0)
        {
            watch.wait(static_cast<int>(left.count()));
            continue;
        }
        if (!isReleased) follower.release();
        isReleased = true;
        watch.wait(areAllWatched ? -1 : PERIOD);
    }
}

} // namespace Zu
