#include "zulog/zlControl.h"

#include "app/lgMapFile.h"
#include "app/lgServiceLine.h"
#include "base/osFilePath.h"
#include "zulog/zlAsker.h"
#include "zulog/zlFilter.h"
#include "zulog/zlFormat.h"
#include "zulog/zlNames.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace Zu
{

namespace
{

using Json = nlohmann::ordered_json;
using Asker = std::unique_ptr<ZlAsker>;

constexpr const char* STATUS = "status\n";

std::string controlDirectory(const ZlControlOptions& options)
{
    std::string directory = options._directory;
    if (directory.empty()) return lgMapDirectory();
    if (directory.back() != '/' && directory.back() != *OsFilePath::getSeparator())
        directory += OsFilePath::getSeparator();
    return directory;
}

// In one line, whatever it is.
std::string plain(const std::string& text)
{
    std::string result;
    zlAppendPrintable(result, text, false);
    return result;
}

// The name of a program without its directory and ".exe".
std::string nameOf(const std::string& program)
{
    constexpr std::string_view END = ".exe";
    std::string name = program.substr(program.find_last_of("/\\") + 1);
    if (name.ends_with(END)) name.resize(name.size() - END.size());
    return name;
}

bool isNamed(const ZlAsker& asker, const std::string& text)
{
    return text == std::to_string(asker.getProcess()) || text == nameOf(asker.getProgram());
}

std::vector<Asker> findAll(const ZlControlOptions& options, ZlReports& reports)
{
    std::vector<Asker> askers;
    const std::string directory = controlDirectory(options);
    if (!zlIsDirectory(directory))
    {
        reports.failed("\"" + directory + "\" is not a directory");
        return askers;
    }
    for (const std::string& path : zlFindControlFiles(directory))
    {
        auto asker = std::make_unique<ZlAsker>(path);
        if (asker->getState() == ZlAsker::State::Left) LgControlPeer::remove(path);
        if (asker->getState() == ZlAsker::State::Refused)
            reports.note(path + ": " + asker->getReason());
        if (asker->getState() == ZlAsker::State::Ready) askers.push_back(std::move(asker));
    }
    return askers;
}

// Those that are named; all without names.
std::vector<Asker> find(const ZlControlOptions& options, ZlReports& reports)
{
    std::vector<Asker> all = findAll(options, reports);
    if (options._processes.empty()) return all;
    std::vector<Asker> named;
    for (const std::string& text : options._processes)
    {
        const std::size_t before = named.size();
        for (Asker& asker : all)
            if (asker && isNamed(*asker, text)) named.push_back(std::move(asker));
        if (named.size() == before)
            reports.failed("there is no process \"" + text + "\" with a log service");
    }
    return named;
}

// Why there is no answer, or it is a refusal; empty with an answer. Who reads one of another form
// than expected meets an exception of Json.
std::string ask(ZlAsker& asker, const std::string& request, const ZlControlOptions& options,
                Json& answer)
{
    std::string text;
    if (!asker.ask(request, options._patience, text)) return asker.getReason();
    answer = Json::parse(text, nullptr, false);
    if (!answer.is_object()) return "it gives an answer that can't be read";
    const auto error = answer.find("error");
    if (error == answer.end()) return {};
    return error->is_string() ? error->get<std::string>() : "it refuses";
}

std::string titleOf(const ZlAsker& asker)
{
    return "process " + std::to_string(asker.getProcess()) + " (" + plain(asker.getProgram()) + ")";
}

// Asks, and reports what fails.
std::optional<Json> askOrReport(ZlAsker& asker, const std::string& request,
                                const ZlControlOptions& options, ZlReports& reports)
{
    Json answer;
    const std::string error = ask(asker, request, options, answer);
    if (error.empty()) return answer;
    reports.failed(titleOf(asker) + ": " + error);
    return std::nullopt;
}

// The threshold, as in "Warning, Profiling".
std::string levelsOf(const Json& group)
{
    std::string threshold;
    bool hasProfiling = false;
    for (const Json& level : group.at("levels"))
    {
        if (level == "Profiling")
            hasProfiling = true;
        else
            threshold = level.get<std::string>();
    }
    if (threshold.empty()) return hasProfiling ? "Profiling" : "-";
    return plain(threshold) + (hasProfiling ? ", Profiling" : "");
}

// Null if it was not changed.
const Json* changeOf(const Json& status, const Json& group)
{
    for (const Json& change : status.at("changed"))
        if (change.at("name") == group.at("name")) return &change;
    return nullptr;
}

std::string padded(std::string text, std::size_t width)
{
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

void appendGroups(std::string& out, const Json& status, const char* indent)
{
    std::size_t width = 0;
    for (const Json& group : status.at("groups"))
        width = std::max(width, plain(group.at("name")).size());
    for (const Json& group : status.at("groups"))
    {
        out += indent + padded(plain(group.at("name")), width) + "  " + levelsOf(group);
        if (const Json* const change = changeOf(status, group))
            out += " (before: " + levelsOf(*change) + ")";
        out += '\n';
    }
    if (status.at("groups").empty()) out += std::string(indent) + "no groups\n";
}

void appendStart(std::string& out, const ZlAsker& asker, const ZlControlOptions& options)
{
    ZlTimeWriter(options._times).append(out, asker.getServiceStart());
}

void appendEvents(std::string& out, const Json& health)
{
    std::string text;
    for (const auto& [level, count] : health.at("events").items())
        if (count != 0)
            text += (text.empty() ? "" : ", ") + plain(level) + " " +
                    std::to_string(count.get<std::uint64_t>());
    out += "  events     " + (text.empty() ? "none" : text) + "\n";
}

void appendFiles(std::string& out, const Json& health)
{
    for (const Json& file : health.at("files"))
    {
        out += "  file       " + plain(file.at("path"));
        if (file.at("rotations") != 0) out += ", rotated " + file.at("rotations").dump() + " times";
        if (file.at("failing") == true)
            out += ", fails; " + file.at("pending").dump() + " bytes wait for it";
        out += '\n';
    }
}

// All that one process answers.
void appendDetails(std::string& out, const ZlAsker& asker, const Json& status,
                   const ZlControlOptions& options)
{
    const Json& health = status.at("health");
    out += "Process " + std::to_string(asker.getProcess()) + ": " + plain(asker.getProgram()) +
           "\n  logs since ";
    appendStart(out, asker, options);
    out += '\n';
    appendFiles(out, health);
    appendEvents(out, health);
    out += "  lost       " + health.at("lost").dump() + ", not written " +
           health.at("unwritten").dump() + ", recovered " + health.at("recovered").dump() + "\n";
    out += "  waiting    " + health.at("waiting").dump() + ", the oldest for " +
           health.at("behindMicroseconds").dump() + " us\n";
    out += "  threads    " + status.at("threads").dump() + "\n  groups\n";
    appendGroups(out, status, "    ");
}

std::uint64_t sumOf(const Json& events)
{
    std::uint64_t sum = 0;
    for (const Json& count : events) sum += count.get<std::uint64_t>();
    return sum;
}

std::string rightAligned(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

constexpr std::size_t WIDTH = 10;

void appendHead(std::string& out, const ZlControlOptions& options)
{
    std::string start;
    ZlTimeWriter(options._times).append(start, 0);
    out += rightAligned("PROCESS", WIDTH) + "  " + padded("SINCE", start.size());
    for (const char* const title : {"EVENTS", "LOST", "UNWRITTEN", "WAITING"})
        out += rightAligned(title, WIDTH + 2);
    out += "  PROGRAM\n";
}

void appendRow(std::string& out, const ZlAsker& asker, const Json& status,
               const ZlControlOptions& options)
{
    const Json& health = status.at("health");
    out += rightAligned(std::to_string(asker.getProcess()), WIDTH) + "  ";
    appendStart(out, asker, options);
    out += rightAligned(std::to_string(sumOf(health.at("events"))), WIDTH + 2);
    for (const char* const figure : {"lost", "unwritten", "waiting"})
        out += rightAligned(health.at(figure).dump(), WIDTH + 2);
    out += "  " + plain(asker.getProgram()) + "\n";
}

// "leftOut" as "left_out": a service names its members in the way of programs, and zulog in that of
// its other forms. Names of levels have blanks.
std::string memberName(const std::string& name)
{
    std::string result;
    for (const char character : name)
    {
        const bool isUpper = character >= 'A' && character <= 'Z';
        const bool isInside = !result.empty() && result.back() >= 'a' && result.back() <= 'z';
        if (isUpper && isInside) result += '_';
        result += isUpper && isInside ? static_cast<char>(character - 'A' + 'a') : character;
    }
    return result;
}

Json withMemberNames(const Json& value)
{
    Json result = value;
    if (value.is_array())
        for (Json& each : result) each = withMemberNames(each);
    if (!value.is_object()) return result;
    result = Json::object();
    for (const auto& [name, member] : value.items())
        result[memberName(name)] = withMemberNames(member);
    return result;
}

// With the facts that do not take its answer.
Json jsonOf(const ZlAsker& asker, const Json& status)
{
    Json result = withMemberNames(status);
    result["process_start"] = lgIsoTime(asker.getProcessStart(), 6);
    result["service_start"] = lgIsoTime(asker.getServiceStart(), 6);
    return result;
}

void writeJson(ZlOutput& out, const Json& json)
{
    out.text() += json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

// A service of another make may leave out what is expected.
template <class Function>
void readAnswer(const ZlAsker& asker, ZlReports& reports, Function function)
{
    try
    {
        function();
    }
    catch (const Json::exception&)
    {
        reports.failed(titleOf(asker) + ": it gives an answer that can't be read");
    }
}

// Whether any group is of this name, or of this glob; adds the lines of a request.
bool addChange(std::string& request, const Json& status, const ZlControlOptions::Change& change)
{
    bool isFound = false;
    for (const Json& group : status.at("groups"))
    {
        const auto name = group.at("name").get<std::string>();
        if (name != change._group && !zlMatchesGlob(change._group, name)) continue;
        isFound = true;
        request += name + "=" + LgTypes::levelToString(change._level) + "\n";
    }
    return isFound;
}

std::string namesOf(const Json& status)
{
    std::string names;
    for (const Json& group : status.at("groups"))
        names += (names.empty() ? "" : ", ") + plain(group.at("name"));
    return names.empty() ? "there are none" : "there are " + names;
}

// The text of the request; empty, with a report, if a group is not there.
std::string requestOf(const ZlControlOptions& options, const ZlAsker& asker, const Json& status,
                      ZlReports& reports)
{
    const std::string by = "by " + std::to_string(lgProcessFacts()._process) + "\n";
    if (options._isReset) return "reset\n" + by;
    std::string request = "set\n" + by;
    for (const ZlControlOptions::Change& change : options._changes)
    {
        if (addChange(request, status, change)) continue;
        reports.failed(titleOf(asker) + ": no group is of the name \"" + change._group + "\"; " +
                       namesOf(status));
        return {};
    }
    return request;
}

bool isChange(const ZlControlOptions& options)
{
    return options._isReset || !options._changes.empty();
}

void changeLevels(ZlAsker& asker, const ZlControlOptions& options, bool isOneOfSeveral,
                  ZlOutput& out, ZlReports& reports)
{
    std::optional<Json> status = askOrReport(asker, STATUS, options, reports);
    if (!status) return;
    if (isChange(options))
    {
        const std::string request = requestOf(options, asker, *status, reports);
        if (request.empty()) return;
        status = askOrReport(asker, request, options, reports);
        if (!status) return;
    }
    if (isOneOfSeveral) out.text() += titleOf(asker) + "\n";
    appendGroups(out.text(), *status, isOneOfSeveral ? "  " : "");
}

} // namespace

bool zlParseChange(std::string_view text, ZlControlOptions::Change& change)
{
    const std::size_t end = text.rfind('=');
    if (end == std::string_view::npos || end == 0) return false;
    const auto levels = zlParseLevels("=" + std::string(text.substr(end + 1)));
    if (!levels || !std::has_single_bit(*levels)) return false;
    change._group = text.substr(0, end);
    change._level = static_cast<LgTypes::Level>(std::countr_zero(*levels));
    return true;
}

void zlShowProcesses(const ZlControlOptions& options, ZlOutput& out, ZlReports& reports)
{
    const std::vector<Asker> askers = find(options, reports);
    const bool isTable = options._processes.empty() && !options._isJson;
    Json list = Json::array();
    if (isTable && askers.empty() && !reports.hasFailed())
        out.text() += "No process has a log service.\n";
    if (isTable && !askers.empty()) appendHead(out.text(), options);
    for (const Asker& asker : askers)
    {
        std::optional<Json> status = askOrReport(*asker, STATUS, options, reports);
        if (!status) continue;
        const auto show = [&]
        {
            std::string text;
            if (options._isJson)
                list.push_back(jsonOf(*asker, *status));
            else if (isTable)
                appendRow(text, *asker, *status, options);
            else
                appendDetails(text, *asker, *status, options);
            out.text() += text;
        };
        readAnswer(*asker, reports, show);
    }
    if (options._isJson) writeJson(out, {{"processes", std::move(list)}});
}

void zlChangeLevels(const ZlControlOptions& options, ZlOutput& out, ZlReports& reports)
{
    const std::vector<Asker> askers = find(options, reports);
    const bool areSeveral = askers.size() > 1;
    if (areSeveral && isChange(options))
    {
        std::string ids;
        for (const Asker& asker : askers)
            ids += (ids.empty() ? "" : ", ") + std::to_string(asker->getProcess());
        return reports.failed("several processes are meant; choose one of " + ids);
    }
    for (const Asker& asker : askers)
        readAnswer(*asker, reports,
                   [&] { changeLevels(*asker, options, areSeveral, out, reports); });
}

} // namespace Zu
