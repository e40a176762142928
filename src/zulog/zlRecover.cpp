#include "zulog/zlRecover.h"

#include "app/lgMapFile.h"
#include "app/lgServiceLog.h"
#include "app/lgServiceMap.h"
#include "app/lgServicePlatform.h"
#include "app/lgServiceRecovery.h"
#include "base/exBase.h"
#include "base/lgInterProcessLock.h"
#include "base/lgOutputs.h"
#include "base/lgSetup.h"
#include "base/osEnv.h"
#include "base/osFilePath.h"
#include "zulog/zlFile.h"
#include "zulog/zlFormat.h"
#include "zulog/zlJson.h"
#include "zulog/zlNames.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

namespace Zu
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr const char* NOT_OWN = "it can't be opened as a plain file that only this user can change";
constexpr const char* IN_USE = "its process is running, or another one is recovering it";

bool hasSeparator(const std::string& name)
{
    return name.find('/') != std::string::npos ||
           name.find(*OsFilePath::getSeparator()) != std::string::npos;
}

std::string mapDirectory(const ZlRecoverOptions& options)
{
    std::string directory = options._mapDirectory;
    if (directory.empty()) return lgMapDirectory();
    if (directory.back() != '/' && directory.back() != *OsFilePath::getSeparator())
        directory += OsFilePath::getSeparator();
    return directory;
}

std::string withoutSeparator(const std::string& path)
{
    const std::filesystem::path form(path);
    return form.has_filename() || !form.has_parent_path() || !form.has_relative_path()
               ? path
               : form.parent_path().string();
}

// Whether ".." may follow a link, and so lead elsewhere than to what stands before it. Windows
// takes it for the text that it is.
bool hasParents(const std::filesystem::path& path)
{
    return std::filesystem::path::preferred_separator == '/' &&
           std::find(path.begin(), path.end(), "..") != path.end();
}

// Without "." and "..", as far as that is possible without looking at any file.
std::string lexicalOf(const std::string& directory)
{
    const std::filesystem::path path(directory);
    return withoutSeparator(hasParents(path) ? directory : path.lexically_normal().string());
}

std::string absoluteOf(const std::string& directory)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(directory, error);
    return error ? directory : lexicalOf(path.string());
}

// Through links, as far as they are there.
std::string resolvedOf(const std::string& directory)
{
    const std::string path = absoluteOf(directory);
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, error);
    return error ? path : withoutSeparator(resolved.string());
}

// Nobody knows what a relative name in a map counts from: such a name must be given likewise.
bool isSameDirectory(const std::string& ofMap, const std::string& named)
{
    if (ofMap == named) return true;
    if (OsFilePath::isAbsolute(ofMap.c_str())) return resolvedOf(ofMap) == resolvedOf(named);
    return !OsFilePath::isAbsolute(named.c_str()) && lexicalOf(ofMap) == lexicalOf(named);
}

// Whether a map is of a service with this log directory. The name of a map shows the directory as
// it was written there; the map itself can be read only when its process has ended.
class DirectoryFilter
{
public:
    explicit DirectoryFilter(const std::string& named) : _named(named)
    {
        for (const std::string& form :
             {named, lexicalOf(named), absoluteOf(named), resolvedOf(named)})
        {
            _prefixes.push_back(LgServiceMap::prefixFor(form));
            _prefixes.push_back(LgServiceMap::prefixFor(form + OsFilePath::getSeparator()));
        }
    }

    bool accepts(const std::string& directory, const std::string& name) const
    {
        const auto begins = [&name](const std::string& prefix) { return name.starts_with(prefix); };
        if (std::any_of(_prefixes.begin(), _prefixes.end(), begins)) return true;
        LgLeftFile file;
        if (file.open(directory + name) != LgLeftFile::Outcome::Opened) return false;
        LgServiceRecovery look(file, LgLineForm::Ticks, false, {});
        return look.load() && isSameDirectory(look.getMap().getHeader()._directory, _named);
    }

private:
    const std::string& _named;
    std::vector<std::string> _prefixes;
};

// Those of the named log directory.
std::vector<std::string> selectedPaths(const ZlRecoverOptions& options,
                                       const std::string& directory, ZlReports& reports)
{
    const std::vector<std::string> names = LgServiceRecovery::mapsIn(directory);
    const DirectoryFilter filter(options._logDirectory);
    std::vector<std::string> paths;
    for (const std::string& name : names)
        if (filter.accepts(directory, name)) paths.push_back(directory + name);
    if (paths.empty() && !names.empty())
        reports.failed("no map is of a service with the log directory \"" +
                       absoluteOf(options._logDirectory) + "\"; " + std::to_string(names.size()) +
                       (names.size() == 1 ? " other is in " : " others are in ") + directory);
    return paths;
}

std::vector<std::string> pathsOf(const ZlRecoverOptions& options, ZlReports& reports)
{
    const std::string directory = mapDirectory(options);
    std::vector<std::string> paths;
    for (const std::string& map : options._maps)
        paths.push_back(hasSeparator(map) ? map : directory + map);
    if (!paths.empty()) return paths;
    if (!zlIsDirectory(directory))
    {
        reports.failed("\"" + directory + "\" is not a directory");
        return paths;
    }
    if (!options._logDirectory.empty()) return selectedPaths(options, directory, reports);
    for (const std::string& name : LgServiceRecovery::mapsIn(directory))
        paths.push_back(directory + name);
    return paths;
}

std::string nameOf(const std::string& path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

// The process in the name of a map, behind the time: "<time>-<process>-<number>".
std::optional<std::uint32_t> processOf(const std::string& name)
{
    const auto end = name.rfind('-');
    if (end == std::string::npos || end == 0) return std::nullopt;
    const auto begin = name.rfind('-', end - 1);
    if (begin == std::string::npos) return std::nullopt;
    std::uint32_t process = 0;
    const char* const last = name.data() + end;
    const auto result = std::from_chars(name.data() + begin + 1, last, process);
    if (result.ec != std::errc() || result.ptr != last) return std::nullopt;
    return process;
}

// Lines, each with those that continue it, but not those of the service.
std::uint64_t countLines(std::string_view text)
{
    std::uint64_t count = 0;
    while (!text.empty())
    {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        if (!line.empty() && !line.starts_with('\t') && !line.starts_with("=====")) ++count;
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return count;
}

// How many of the events that are not known to be in the log may be there.
void addEvents(ZlLeft& left, const LgLeftMap& map, const std::vector<char>& isWritten)
{
    const std::vector<LgLeftMap::Event>& events = map.getEvents();
    for (std::size_t i = 0; i < events.size(); ++i)
    {
        if (isWritten[i]) continue;
        if (events[i]._isOverflow)
        {
            left._lost += static_cast<std::uint64_t>(events[i]._value);
            continue;
        }
        ++left._events;
        if (i < map.getBatchEvents()) ++left._unsure;
    }
}

// Likewise of the lines that wait.
void addLines(ZlLeft& left, const LgLeftMap& map)
{
    const LgMap::Batch& batch = map.getBatch();
    for (std::uint32_t log = 0; log < map.getWaiting().size(); ++log)
    {
        const LgLeftMap::Waiting& waiting = map.getWaiting()[log];
        const std::uint64_t count = countLines(waiting._text);
        left._lines += count;
        left._notWritten += waiting._dropped;
        for (std::uint32_t i = 0; map.getState() == LgMap::Writing && i < batch._fileCount; ++i)
            if (batch._files[i]._log == log && waiting._batch != map.getNumber())
                left._unsure += count;
    }
}

void addFacts(ZlLeft& left, LgServiceRecovery& recovery)
{
    const LgLeftMap& map = recovery.getMap();
    const LgMap::Header& header = map.getHeader();
    left._process = header._process;
    left._processStart = header._processStart;
    left._host = header._host;
    left._logDirectory = header._directory;
    left._damaged = map.getDamaged();
    addEvents(left, map, recovery.findWritten());
    addLines(left, map);
}

ZlLeft beginLeft(const std::string& path)
{
    ZlLeft left;
    left._path = path;
    const std::string name = nameOf(path);
    const std::int64_t made = LgServiceRecovery::timeOf(name);
    if (made > 0) left._made = made;
    if (made > 0) left._process = processOf(name);
    return left;
}

// What is done with a map that can be opened.
using Work = std::function<void(LgLeftFile& file, const ZlLeft& left)>;

// Opens one after the other, the oldest first. One that can't be opened goes to `other`.
void forEachLeft(const ZlRecoverOptions& options, ZlReports& reports, const Work& work,
                 const std::function<void(const ZlLeft&)>& other)
{
    for (const std::string& path : pathsOf(options, reports))
    {
        ZlLeft left = beginLeft(path);
        LgLeftFile file;
        const LgLeftFile::Outcome outcome = file.open(path);
        if (outcome == LgLeftFile::Outcome::Opened)
        {
            work(file, left);
            continue;
        }
        if (outcome == LgLeftFile::Outcome::Gone)
        {
            // One that was only found by looking has just been recovered.
            if (!options._maps.empty()) reports.failed("\"" + path + "\" is not there");
            continue;
        }
        const bool isRunning = outcome == LgLeftFile::Outcome::InUse;
        left._state = isRunning ? ZlLeft::State::Running : ZlLeft::State::Refused;
        left._reason = isRunning ? IN_USE : NOT_OWN;
        other(left);
    }
}

// Those that are running are a failure only for who has named them.
void reportOther(const ZlRecoverOptions& options, ZlReports& reports, const ZlLeft& left)
{
    if (left._state == ZlLeft::State::Running && options._maps.empty()) return;
    reports.failed(left._path + ": " + left._reason);
}

LgLineForm formOf(const LgServiceOptions& options)
{
    if (OsEnv::getVariable("ZU_LOG_DISABLE_TIMESTAMPS")) return LgLineForm::Plain;
    if (options._lineForm == LgServiceOptions::LineForm::Local) return LgLineForm::Local;
    return options._lineForm == LgServiceOptions::LineForm::Utc ? LgLineForm::Utc
                                                                : LgLineForm::Ticks;
}

const char* stateName(ZlLeft::State state)
{
    switch (state)
    {
    case ZlLeft::State::Left:
        return "left";
    case ZlLeft::State::Running:
        return "running";
    case ZlLeft::State::Refused:
        return "refused";
    default:
        return "unreadable";
    }
}

std::string countOf(std::uint64_t count, const char* one, const char* several)
{
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string ageOf(std::int64_t nanoseconds)
{
    constexpr std::int64_t MINUTE = 60;
    constexpr std::int64_t HOUR = 60 * MINUTE;
    constexpr std::int64_t DAY = 24 * HOUR;
    const std::int64_t seconds = std::max<std::int64_t>(nanoseconds, 0) / NANOSECONDS;
    if (seconds < 2 * MINUTE) return std::to_string(seconds) + " s ago";
    if (seconds < 2 * HOUR) return std::to_string(seconds / MINUTE) + " min ago";
    if (seconds < 2 * DAY) return std::to_string(seconds / HOUR) + " h ago";
    return std::to_string(seconds / DAY) + " days ago";
}

// In one line each, whatever is in the file.
void appendPlain(std::string& out, std::string_view text)
{
    zlAppendPrintable(out, text, false);
}

void appendContent(std::string& out, const ZlLeft& left, ZlTimeWriter& times)
{
    out += "  process " + std::to_string(left._process.value_or(0)) + ", started ";
    times.append(out, left._processStart);
    out += ", host ";
    appendPlain(out, left._host.empty() ? "-" : left._host);
    out += "\n  log directory ";
    appendPlain(out, left._logDirectory);
    out += "\n  " + countOf(left._events, "event waits", "events wait");
    if (left._lines > 0)
        out += ", " + countOf(left._lines, "line waits", "lines wait") + " for a file that failed";
    if (left._unsure > 0)
        out += "; " + std::to_string(left._unsure) + " of them may be in the log already";
    if (left._lost > 0) out += "; " + countOf(left._lost, "event was lost", "events were lost");
    if (left._notWritten > 0)
        out += "; " + countOf(left._notWritten, "event was", "events were") +
               " not written because a file failed";
    if (left._damaged > 0)
        out += "; " + countOf(left._damaged, "entry", "entries") + " can't be read";
    out += '\n';
}

void appendLeft(std::string& out, const ZlLeft& left, ZlTimeWriter& times, std::int64_t now)
{
    appendPlain(out, left._path);
    out += '\n';
    if (left._made)
    {
        out += "  made ";
        times.append(out, *left._made);
        out += ", " + ageOf(now - *left._made) + "\n";
    }
    if (left._state == ZlLeft::State::Left) return appendContent(out, left, times);
    if (left._process) out += "  process " + std::to_string(*left._process) + "\n";
    out += "  ";
    out += stateName(left._state);
    out += ": " + left._reason + "\n";
}

// In one line, since nothing can be done with their maps.
void appendRunning(std::string& out, const std::vector<ZlLeft>& maps)
{
    std::string processes;
    std::uint64_t count = 0;
    for (const ZlLeft& left : maps)
    {
        if (left._state != ZlLeft::State::Running) continue;
        ++count;
        processes += count > 1 ? ", " : "";
        processes += left._process ? std::to_string(*left._process) : "unknown";
    }
    if (count == 0) return;
    out += "In use: " + countOf(count, "map", "maps") + " of " +
           (count == 1 ? "process " : "processes ") + processes + "\n";
}

Json jsonOf(const ZlLeft& left, std::int64_t now)
{
    Json object = {{"path", left._path}, {"state", stateName(left._state)}};
    object["reason"] = left._reason.empty() ? Json() : Json(left._reason);
    object["made"] = left._made ? Json(lgIsoTime(*left._made, 6)) : Json();
    object["age_seconds"] =
        left._made ? Json(std::max<std::int64_t>(now - *left._made, 0) / NANOSECONDS) : Json();
    object["process"] = left._process ? Json(*left._process) : Json();
    if (left._state != ZlLeft::State::Left) return object;
    object["process_start"] = lgIsoTime(left._processStart, 6);
    object["host"] = left._host;
    object["log_directory"] = left._logDirectory;
    object["events"] = left._events;
    object["lines"] = left._lines;
    object["unsure"] = left._unsure;
    object["lost"] = left._lost;
    object["not_written"] = left._notWritten;
    object["damaged"] = left._damaged;
    return object;
}

void writeJson(const std::vector<ZlLeft>& maps, std::string& out, std::int64_t now)
{
    Json list = Json::array();
    for (const ZlLeft& left : maps) list.push_back(jsonOf(left, now));
    const Json object = {{"maps", std::move(list)}};
    zlAppendJson(out, object.dump(-1, ' ', false, Json::error_handler_t::replace));
    out += '\n';
}

void appendWaiting(ZlOutput& out, const LgLeftMap& map, bool isRaw)
{
    for (const LgLeftMap::Waiting& waiting : map.getWaiting())
    {
        if (waiting._dropped > 0)
            out.text() += LgServiceLog::notWrittenLine(waiting._dropped, waiting._failingSince);
        if (isRaw)
            out.text() += waiting._text;
        else
            zlAppendPrintable(out.text(), waiting._text, true);
        if (!waiting._text.empty() && waiting._text.back() != '\n') out.text() += '\n';
        out.writeIfLarge();
    }
}

void showOne(LgServiceRecovery& recovery, const ZlRecoverOptions& options, ZlOutput& out)
{
    const LgLeftMap& map = recovery.getMap();
    const LgLineOrigin origin = LgServiceRecovery::originOf(map.getHeader());
    const bool isRaw = options._service._rawText && !options._isTerminal;
    const bool isUtc = options._times == ZlTimeWriter::Form::Utc;
    LgLineWriter writer(isUtc ? LgLineForm::Utc : formOf(options._service), isRaw);
    writer.setOrigin(origin);
    const std::vector<char> isWritten = recovery.findWritten();
    out.text() += LgServiceRecovery::beginLines(origin);
    appendWaiting(out, map, isRaw);
    for (std::size_t i = 0; i < map.getEvents().size(); ++i)
    {
        const LgLeftMap::Event& event = map.getEvents()[i];
        if (isWritten[i] || (event._isOverflow && event._value == 0)) continue;
        LgServiceRecovery::appendEvent(out.text(), writer, event);
        out.writeIfLarge();
    }
    out.text() += LgServiceRecovery::endLine(origin);
    out.writeIfLarge();
}

// The log files that the next service with this log directory would have.
class Target
{
public:
    Target(const ZlRecoverOptions& options, const std::string& directory, std::uint32_t process)
    {
        const LgServiceOptions& service = options._service;
        LgServiceLog::Settings settings;
        settings._rotation._size = service._rotateSize;
        settings._rotation._minuteOfDay = service._rotateMinute;
        settings._rotation._kept = service._keptFiles;
        settings._pendingLimit = service._pendingLimit;
        settings._isStored = service._sync;
        settings._hasBanner = false;
        LgServiceLog::setSettings(settings);
        const auto pathOf = [&](const std::string& name)
        {
            const OsFilePath path(directory.c_str());
            const std::string file = service._processInNames ? withProcess(name, process) : name;
            return std::string((path + file.c_str()).getChars());
        };
        LgSetup setup;
        setup.read(&OsEnv::getVariable,
                   {pathOf(service._eventsName), pathOf(service._profilesName)});
        const auto open = [](const char* name, bool appends)
        { return LgServiceLog::open(name, appends); };
        _outputs.open(setup, open, [](std::ostream&) {});
        for (const LgTypes::Level level : LG_LEVELS)
            _logs._ofLevels[static_cast<std::size_t>(level)] =
                dynamic_cast<LgServiceLog*>(_outputs.get(level));
        const char* const lock = OsEnv::getVariable("ZU_INTERNAL_INTERPROCESS_LOG_LOCK");
        if (lock) _lock = ObjPtr<LgInterProcessLock>(LgInterProcessLock::create(lock));
        _logs._lock = _lock.get();
    }

    const LgServiceRecovery::Logs& getLogs() const
    {
        return _logs;
    }

private:
    // As the service does it.
    static std::string withProcess(std::string name, std::uint32_t process)
    {
        const std::size_t place = std::min(name.rfind('.'), name.size());
        return name.insert(place, "." + std::to_string(process));
    }

    LgOutputs _outputs;
    ObjPtr<LgInterProcessLock> _lock;
    LgServiceRecovery::Logs _logs;
};

// Why events can't be written to this log directory; empty if they can.
std::string refusalOf(const ZlRecoverOptions& options, const std::string& directory)
{
    if (directory.size() >= LgMap::DIRECTORY_SIZE - 1)
        return "its log directory has too long a name";
    const bool isNamed =
        !options._logDirectory.empty() && isSameDirectory(directory, options._logDirectory);
    if (!OsFilePath::isAbsolute(directory.c_str()) && !isNamed)
        return "its log directory \"" + directory +
               "\" is relative to a directory that is not known";
    if (zlIsDirectory(directory)) return {};
    return "its log directory \"" + directory + "\" is not there";
}

void writeOne(LgLeftFile& file, const ZlLeft& left, const ZlRecoverOptions& options,
              std::string& out, ZlReports& reports)
{
    const LgLineForm form = formOf(options._service);
    std::string directory;
    std::uint32_t process = 0;
    {
        LgServiceRecovery look(file, form, false, {});
        if (!look.load()) return reports.failed(left._path + ": " + look.getReason());
        if (look.getMap().isEmpty())
        {
            file.remove();
            out += left._path + ": nothing was left in it\n";
            return;
        }
        directory = look.getMap().getHeader()._directory;
        process = look.getMap().getHeader()._process;
    }
    const std::string refusal = refusalOf(options, directory);
    if (!refusal.empty()) return reports.failed(left._path + ": " + refusal);
    const Target target(options, directory, process);
    LgServiceRecovery recovery(file, form, options._service._rawText, target.getLogs());
    const LgServiceRecovery::Outcome outcome = recovery.runUnderLock();
    if (outcome == LgServiceRecovery::Outcome::Refused)
        return reports.failed(left._path + ": " + recovery.getReason());
    const bool isUnfinished = outcome == LgServiceRecovery::Outcome::Unfinished;
    const bool isNone = isUnfinished && recovery.getCount() == 0;
    if (!isNone)
        out += left._path + ": " + countOf(recovery.getCount(), "event", "events") +
               " written to the logs in " + directory + "\n";
    if (isUnfinished)
        reports.failed(left._path + ": a log file can't be written; " +
                       (isNone ? "its events stay" : "the other events stay"));
    else if (!recovery.getReason().empty())
        reports.note(left._path + ": " + recovery.getReason());
}

// In a thread that no signal of a file can end, as the service does it.
void runBlocked(const std::function<void()>& work)
{
    const LgServicePlatform::SignalBlock block;
    std::async(std::launch::async, work).get();
}

} // namespace

std::vector<ZlLeft> zlFindLeft(const ZlRecoverOptions& options, ZlReports& reports)
{
    std::vector<ZlLeft> maps;
    const auto look = [&](LgLeftFile& file, const ZlLeft& left)
    {
        maps.push_back(left);
        LgServiceRecovery recovery(file, LgLineForm::Ticks, false, {});
        if (recovery.load()) return addFacts(maps.back(), recovery);
        maps.back()._state = ZlLeft::State::Unreadable;
        maps.back()._reason = recovery.getReason();
    };
    forEachLeft(options, reports, look, [&](const ZlLeft& left) { maps.push_back(left); });
    return maps;
}

void zlRecoverList(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports)
{
    const std::vector<ZlLeft> maps = zlFindLeft(options, reports);
    const std::int64_t now = lgWallClock();
    if (options._isJson)
        writeJson(maps, out.text(), now);
    else
    {
        ZlTimeWriter times(options._times);
        for (const ZlLeft& left : maps)
            if (left._state != ZlLeft::State::Running) appendLeft(out.text(), left, times, now);
        appendRunning(out.text(), maps);
        if (maps.empty() && !reports.hasFailed())
            out.text() += "Nothing is left in " + mapDirectory(options) + "\n";
    }
    out.write();
}

void zlRecoverShow(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports)
{
    const auto show = [&](LgLeftFile& file, const ZlLeft& left)
    {
        LgServiceRecovery recovery(file, LgLineForm::Ticks, false, {});
        if (!recovery.load()) return reports.failed(left._path + ": " + recovery.getReason());
        if (!recovery.getMap().isEmpty()) showOne(recovery, options, out);
        if (recovery.getMap().getDamaged() > 0)
            reports.note(left._path + ": " + std::to_string(recovery.getMap().getDamaged()) +
                         " of its entries can't be read");
    };
    forEachLeft(options, reports, show,
                [&](const ZlLeft& left) { reportOther(options, reports, left); });
    out.write();
}

void zlRecoverWrite(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports)
{
    const auto write = [&](LgLeftFile& file, const ZlLeft& left)
    {
        std::string text;
        try
        {
            runBlocked([&] { writeOne(file, left, options, text, reports); });
        }
        catch (const ExBase& exception)
        {
            reports.failed(left._path + ": " + exception.getReason());
        }
        zlAppendPrintable(out.text(), text, true);
        out.write();
    };
    forEachLeft(options, reports, write,
                [&](const ZlLeft& left) { reportOther(options, reports, left); });
}

void zlRecoverRemove(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports)
{
    if (options._maps.empty() && !options._isAll)
        return reports.failed("which maps are to be removed must be said");
    const auto remove = [&](LgLeftFile& file, const ZlLeft& left)
    {
        ZlLeft facts = left;
        LgServiceRecovery recovery(file, LgLineForm::Ticks, false, {});
        const bool isReadable = recovery.load();
        if (isReadable) addFacts(facts, recovery);
        // Any file of this user can be named; a map that is damaged is known by its name alone.
        if (!isReadable && !nameOf(left._path).starts_with("zu-log-"))
            return reports.failed(left._path + " is not a map of events, and stays");
        file.remove();
        std::error_code ignored;
        if (std::filesystem::exists(left._path, ignored))
            return reports.failed(left._path + " can't be removed");
        appendPlain(out.text(), left._path);
        out.text() += ": removed, with " +
                      (isReadable ? countOf(facts._events + facts._lines, "event", "events")
                                  : "what can't be read: " + recovery.getReason()) +
                      "\n";
        out.write();
    };
    forEachLeft(options, reports, remove,
                [&](const ZlLeft& left) { reportOther(options, reports, left); });
}

} // namespace Zu
