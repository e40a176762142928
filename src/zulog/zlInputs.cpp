#include "zulog/zlInputs.h"

#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlFormat.h"
#include "zulog/zlNames.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace Zu
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view LOG_ENDING = ".log";
constexpr std::string_view COMPRESSED_ENDING = ".gz";

bool endsWith(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

std::string quoted(const std::string& name)
{
    std::string text = "\"";
    zlAppendPrintable(text, name, false);
    return text + "\"";
}

// The number of a rotated file: what stands behind the log's name and a point. 0 for no such file.
std::uint64_t rotationOf(std::string_view name, std::string_view log)
{
    if (name.size() <= log.size() + 1 || name.substr(0, log.size()) != log) return 0;
    if (name[log.size()] != '.') return 0;
    name.remove_prefix(log.size() + 1);
    if (endsWith(name, COMPRESSED_ENDING)) name.remove_suffix(COMPRESSED_ENDING.size());
    std::uint64_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [place, error] = std::from_chars(name.data(), end, number);
    return error == std::errc() && place == end && name.front() != '0' ? number : 0;
}

// The names of the plain files of a directory, sorted.
std::set<std::string> filesIn(const fs::path& directory, std::error_code& error)
{
    std::set<std::string> names;
    fs::directory_iterator place(directory, error);
    for (; !error && place != fs::directory_iterator(); place.increment(error))
    {
        std::error_code ignored;
        if (!place->is_directory(ignored)) names.insert(zlNameOf(place->path().filename()));
    }
    return names;
}

// From the oldest one on. What was not yet compressed counts, since it may be compressed just now.
std::vector<std::string> rotatedIn(const std::set<std::string>& names, const std::string& log)
{
    std::map<std::uint64_t, std::string, std::greater<>> rotated;
    const std::string prefix = log + ".";
    for (auto place = names.lower_bound(prefix);
         place != names.end() && place->compare(0, prefix.size(), prefix) == 0; ++place)
    {
        const std::string& name = *place;
        const std::uint64_t number = rotationOf(name, log);
        if (number == 0) continue;
        std::string& known = rotated[number];
        if (known.empty() || endsWith(known, COMPRESSED_ENDING)) known = name;
    }
    std::vector<std::string> files;
    files.reserve(rotated.size());
    for (const auto& [number, name] : rotated) files.push_back(name);
    return files;
}

// Whether a name is that of a log's file, or of one that it was rotated to by a date, as in
// "events.log-20261123.gz"; "log" is the name of the log.
bool isLogFile(std::string_view name, std::string& log)
{
    const std::size_t end = name.find(LOG_ENDING);
    if (end == std::string_view::npos || end == 0) return false;
    const std::string_view rest = name.substr(end + LOG_ENDING.size());
    log = name.substr(0, end + LOG_ENDING.size());
    return rest.empty() || rest.front() == '-' || rotationOf(name, log) > 0;
}

void addDirectory(std::vector<ZlLog>& logs, const std::string& word, ZlReports& reports)
{
    const fs::path directory = zlPathOf(word);
    std::error_code error;
    const std::set<std::string> names = filesIn(directory, error);
    if (error)
        return reports.failed(quoted(word) +
                              " can't be read: " + LgServiceFile::errorText(error.value()));
    std::map<std::string, ZlLog> found;
    for (const std::string& name : names)
    {
        std::string log;
        if (!isLogFile(name, log)) continue;
        const bool isNumbered = rotationOf(name, log) > 0;
        ZlLog& files = found[isNumbered ? log : name];
        if (!files.empty()) continue;
        if (isNumbered || name == log) files = rotatedIn(names, log);
        if (names.contains(isNumbered ? log : name)) files.push_back(isNumbered ? log : name);
    }
    if (found.empty()) reports.failed("there is no log in " + quoted(word));
    for (auto& [name, files] : found)
    {
        for (std::string& file : files) file = zlNameOf(directory / zlPathOf(file));
        logs.push_back(std::move(files));
    }
}

// A file counts where it is named first.
void dropRepeated(std::vector<ZlLog>& logs)
{
    std::set<std::pair<std::uint64_t, std::uint64_t>> known;
    const auto isRepeated = [&](const std::string& file)
    {
        ZlFile::Identity identity;
        if (file == "-" || !ZlFile::find(file, identity)) return false;
        // What has no identity, as some devices, is each a file of its own.
        const bool isNone = identity == ZlFile::Identity();
        return !isNone && !known.emplace(identity._volume, identity._number).second;
    };
    for (ZlLog& log : logs) std::erase_if(log, isRepeated);
    std::erase_if(logs, [](const ZlLog& log) { return log.empty(); });
}

} // namespace

const std::set<std::string>& ZlListing::namesIn(const std::string& directory)
{
    const auto [place, isNew] = _names.try_emplace(directory);
    std::error_code ignored;
    if (isNew) place->second = filesIn(zlPathOf(directory), ignored);
    return place->second;
}

std::vector<std::string> ZlListing::findPresentLogs(const std::string& directory)
{
    std::vector<std::string> files;
    for (const std::string& name : namesIn(directory))
    {
        std::string log;
        if (isLogFile(name, log) && name == log)
            files.push_back(zlNameOf(zlPathOf(directory) / zlPathOf(name)));
    }
    return files;
}

ZlLog ZlListing::findRotated(const std::string& file)
{
    const fs::path path = zlPathOf(file);
    const fs::path directory = path.parent_path();
    ZlLog files = rotatedIn(namesIn(zlDirectoryOf(file)), zlNameOf(path.filename()));
    for (std::string& name : files) name = zlNameOf(directory / zlPathOf(name));
    return files;
}

ZlLogWords::ZlLogWords(std::vector<std::string> words) : _words(std::move(words)) {}

std::vector<std::string> ZlLogWords::findLogs(ZlListing& listing)
{
    std::vector<std::string> names;
    for (const std::string& word : _words)
    {
        const bool isDirectory = zlIsDirectory(word);
        if (isDirectory) _directories.insert(word);
        if (isDirectory)
            for (std::string& name : listing.findPresentLogs(word))
                names.push_back(std::move(name));
        else if (!_directories.contains(word))
            names.push_back(word);
    }
    return names;
}

std::vector<std::string> ZlLogWords::getDirectories() const
{
    std::set<std::string> directories;
    for (const std::string& word : _words)
        directories.insert(_directories.contains(word) ? word : zlDirectoryOf(word));
    return {directories.begin(), directories.end()};
}

bool zlIsNamedCompressed(const std::string& file)
{
    return endsWith(file, COMPRESSED_ENDING);
}

std::vector<ZlLog> zlFindLogs(const std::vector<std::string>& words, bool areRotatedAdded,
                              ZlReports& reports)
{
    std::vector<ZlLog> logs;
    ZlListing listing;
    for (const std::string& word : words)
    {
        if (word != "-" && zlIsDirectory(word))
        {
            addDirectory(logs, word, reports);
            continue;
        }
        ZlLog log;
        if (areRotatedAdded && word != "-") log = listing.findRotated(word);
        log.push_back(word);
        logs.push_back(std::move(log));
    }
    dropRepeated(logs);
    return logs;
}

} // namespace Zu
