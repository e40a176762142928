#include "zulog/zlFollow.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace Zu
{

namespace
{

namespace fs = std::filesystem;

// An event is written with its continuations at once, so they follow within this time.
constexpr int PATIENCE = 20;
// How often directories are looked at that can't be watched.
constexpr int PERIOD = 500;

fs::path pathOf(const std::string& name)
{
    return fs::path(std::u8string(name.begin(), name.end()));
}

std::string nameOf(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

bool isDirectory(const std::string& name)
{
    std::error_code error;
    return fs::is_directory(pathOf(name), error);
}

std::string directoryOf(const std::string& name)
{
    const fs::path directory = pathOf(name).parent_path();
    return directory.empty() ? "." : nameOf(directory);
}

// A file that others append to.
class GrowingSource : public ZlSource
{
public:
    explicit GrowingSource(const std::string& name) : _file(name) {}

    std::size_t read(char* place, std::size_t size) override
    {
        return _file.read(place, size);
    }

    const ZlFile& getFile() const
    {
        return _file;
    }

    // Whether somebody has shortened it.
    bool isTruncated() const
    {
        return _file.getSize() < _file.getOffset();
    }

private:
    ZlFile _file;
};

} // namespace

// One name, and the file that it leads to.
class ZlFollower::Log
{
public:
    Log(std::string name, ZlReports& reports, const ZlReader::Options& options)
        : _name(std::move(name)), _reports(reports), _options(options)
    {
    }

    const std::string& getName() const
    {
        return _name;
    }

    // Goes on with another file where the name leads to one, and with those that were rotated in
    // between. Where the name leads nowhere for the moment, the file is kept.
    void look()
    {
        ZlFile::Identity identity;
        if (!ZlFile::find(_name, identity)) return;
        const bool isOther = _source && !(identity == _identity);
        if (_source && !isOther && !_source->isTruncated()) return;
        if (isOther)
            for (const std::string& name : filesInBetween()) addRotated(name);
        open(_name);
    }

    bool next()
    {
        if (!_reader || _hasRecord) return _hasRecord;
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
        if (_reader) _reader->release(false);
    }

    std::uint64_t getOffset() const
    {
        return _source ? _source->getFile().getOffset() : 0;
    }

private:
    void open(const std::string& name)
    {
        try
        {
            auto source = std::make_unique<GrowingSource>(name);
            _identity = source->getFile().getIdentity();
            _source = source.get();
            add(std::move(source));
        }
        catch (const ZlError& error)
        {
            if (!_isReported) _reports.failed(error.what());
            _isReported = true;
        }
    }

    void addRotated(const std::string& name)
    {
        try
        {
            add(zlOpenSource(name));
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

    // Those that were rotated after the present file was.
    std::vector<std::string> filesInBetween() const
    {
        std::vector<std::string> files = zlRotatedFiles(_name);
        const auto isPresent = [this](const std::string& file)
        {
            ZlFile::Identity identity;
            return ZlFile::find(file, identity) && identity == _identity;
        };
        const auto present = std::find_if(files.begin(), files.end(), isPresent);
        files.erase(files.begin(), present == files.end() ? present : present + 1);
        return files;
    }

    const std::string _name;
    ZlReports& _reports;
    const ZlReader::Options _options;
    std::unique_ptr<ZlReader> _reader;
    // What the name led to last; the reader's.
    GrowingSource* _source = nullptr;
    ZlFile::Identity _identity;
    std::int64_t _time = std::numeric_limits<std::int64_t>::min();
    bool _hasRecord = false;
    bool _isReported = false;
};

ZlFollower::ZlFollower(const ZlShowOptions& options, std::size_t lines, ZlOutput& output,
                       ZlReports& reports)
    : _options(options), _reports(reports), _printer(options, output, reports)
{
    findLogs();
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

void ZlFollower::findLogs()
{
    std::vector<std::string> names;
    for (const std::string& word : _options._words)
    {
        if (!isDirectory(word))
        {
            names.push_back(word);
            continue;
        }
        for (std::string& name : zlFindPresentLogs(word)) names.push_back(std::move(name));
    }
    const ZlReader::Options reading = zlReaderOptions(_options, names.size());
    for (std::string& name : names)
    {
        const auto isIt = [&name](const auto& log) { return log->getName() == name; };
        if (std::none_of(_logs.begin(), _logs.end(), isIt))
            _logs.push_back(std::make_unique<Log>(std::move(name), _reports, reading));
    }
}

bool ZlFollower::look()
{
    findLogs();
    for (const auto& log : _logs) log->look();
    return show();
}

void ZlFollower::release()
{
    for (const auto& log : _logs) log->release();
    show();
}

// The earliest record first.
bool ZlFollower::show()
{
    std::uint64_t before = 0;
    for (const auto& log : _logs) before += log->getOffset();
    bool isAny = false;
    for (;;)
    {
        Log* earliest = nullptr;
        for (const auto& log : _logs)
            if (log->next() && (!earliest || log->getTime() < earliest->getTime()))
                earliest = log.get();
        if (!earliest) break;
        _printer.add(earliest->getRecord());
        earliest->take();
        isAny = true;
    }
    _printer.flush();
    std::uint64_t behind = 0;
    for (const auto& log : _logs) behind += log->getOffset();
    return isAny || behind != before;
}

std::vector<std::string> ZlFollower::getDirectories() const
{
    std::vector<std::string> directories;
    for (const std::string& word : _options._words)
        directories.push_back(isDirectory(word) ? word : directoryOf(word));
    return directories;
}

void zlFollow(const ZlShowOptions& options, std::size_t lines, ZlOutput& output, ZlReports& reports,
              const std::atomic<bool>& isStopped)
{
    ZlWatch watch;
    ZlFollower follower(options, lines, output, reports);
    while (!isStopped)
    {
        const bool areAllWatched = watch.add(follower.getDirectories());
        // What was written before that.
        bool isNew = follower.look();
        while (isNew)
        {
            watch.wait(PATIENCE);
            isNew = follower.look();
        }
        follower.release();
        watch.wait(areAllWatched ? -1 : PERIOD);
    }
}

} // namespace Zu
