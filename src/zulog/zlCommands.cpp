#include "zulog/zlCommands.h"

#include "zulog/zlFile.h"
#include "zulog/zlFollow.h"
#include "zulog/zlPage.h"
#include "zulog/zlPager.h"
#include "zulog/zlPlatform.h"
#include "zulog/zlReplacement.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

namespace Zu
{

namespace
{

using Name = ZlCommand::Name;

// Calls a function with each record that is selected. Returns how many lines were read.
template <class Function>
std::uint64_t forEachRecord(const ZlShowOptions& options, ZlReports& reports, Function function)
{
    ZlFilter filter(options._selection, reports);
    ZlMerge merge = zlOpenMerge(options, reports);
    while (const ZlRecord* const record = merge.next())
        if (filter.accepts(*record)) function(*record);
    filter.report();
    return merge.getLineCount();
}

// The page would replace a log before that is read.
void refuseInput(const ZlCommand& command)
{
    // What is wrong is reported when the logs are read.
    std::ostringstream ignored;
    ZlReports reports(ignored);
    ZlFile::Identity page;
    if (!ZlFile::find(command._pageFile, page)) return;
    const ZlShowOptions& show = command._show;
    for (const ZlLog& log : zlFindLogs(show._words, show._areRotatedAdded, reports))
        for (const std::string& file : log)
            if (ZlFile::Identity input; ZlFile::find(file, input) && input == page)
                throw ZlError("\"" + command._pageFile + "\" is one of the logs, and stays");
}

// Returns how many lines were read.
std::uint64_t writePage(const ZlCommand& command, std::FILE* file, ZlReports& reports)
{
    ZlOutput output(file);
    ZlPage page(command._pageTitle);
    page.begin(output.text());
    bool isEmpty = true;
    const auto append = [&](const ZlRecord& record)
    {
        isEmpty = false;
        page.append(output.text(), record);
        output.writeIfLarge();
    };
    const std::uint64_t lines = forEachRecord(command._show, reports, append);
    if (isEmpty) reports.note("nothing is selected, and the page is empty");
    page.end(output.text());
    output.write();
    return lines;
}

void recover(const ZlCommand& command, ZlOutput& output, ZlReports& reports)
{
    ZlRecoverOptions options = command._recover;
    // What the program's own service would take from it.
    options._service = LgServiceOptions::fromEnvironment();
    if (options._mapDirectory.empty()) options._mapDirectory = options._service._mappingDirectory;
    if (command._name == Name::RecoverList) zlRecoverList(options, output, reports);
    if (command._name == Name::RecoverShow) zlRecoverShow(options, output, reports);
    if (command._name == Name::RecoverWrite) zlRecoverWrite(options, output, reports);
    if (command._name == Name::RecoverRemove) zlRecoverRemove(options, output, reports);
}

void ship(const ZlCommand& command, ZlReports& reports)
{
    const std::atomic<bool> isStopped = false;
    ZlShipOptions options = command._ship;
    options._show = command._show;
    zlShip(options, reports, isStopped);
}

void control(const ZlCommand& command, ZlOutput& output, ZlReports& reports)
{
    ZlControlOptions options = command._control;
    if (options._directory.empty())
        options._directory = LgServiceOptions::fromEnvironment()._mappingDirectory;
    if (command._name == Name::Processes) zlShowProcesses(options, output, reports);
    if (command._name == Name::Level) zlChangeLevels(options, output, reports);
}

void run(const ZlCommand& command, ZlOutput& output, ZlReports& reports)
{
    const std::atomic<bool> isStopped = false;
    switch (command._name)
    {
    case Name::Print:
        output.text() += command._text;
        break;
    case Name::Show:
        zlShow(command._show, output, reports);
        break;
    case Name::Follow:
        zlFollow(command._show, command._lines, output, reports, isStopped);
        break;
    case Name::Stats:
        zlCount(command, output, reports);
        break;
    case Name::Html:
        zlMakePage(command, reports);
        break;
    case Name::Ship:
        ship(command, reports);
        break;
    case Name::Processes:
    case Name::Level:
        control(command, output, reports);
        break;
    default:
        recover(command, output, reports);
    }
}

// What was done before a failure is shown.
void runReported(const ZlCommand& command, ZlOutput& output, ZlReports& reports)
{
    try
    {
        run(command, output, reports);
    }
    catch (const std::exception& error)
    {
        reports.failed(error.what());
    }
}

void runWithOutput(const ZlCommand& command, ZlReports& reports)
{
    std::FILE* const pager = command._isPaged ? zlOpenPager(reports) : nullptr;
    ZlOutput output(pager ? pager : stdout);
    try
    {
        runReported(command, output, reports);
        output.write();
    }
    catch (const ZlOutput::Closed&)
    {
        // Who reads it has seen enough.
    }
    catch (const ZlError& error)
    {
        reports.failed(error.what());
    }
    if (pager && !ZlPlatform::closePager(pager)) reports.failed("the pager can't be started");
}

} // namespace

int zlRunCommand(const ZlCommand& command)
{
    if (command._name == Name::Print && command._exit != EXIT_SUCCESS)
    {
        std::cerr << command._text << std::flush;
        return command._exit;
    }
    ZlReports reports(std::cerr);
    for (const std::string& note : command._notes) reports.note(note);
    runWithOutput(command, reports);
    reports.endReports();
    return reports.hasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}

void zlCount(const ZlCommand& command, ZlOutput& output, ZlReports& reports)
{
    ZlStats stats;
    const std::uint64_t lines = forEachRecord(
        command._show, reports, [&stats](const ZlRecord& record) { stats.add(record); });
    stats.setLineCount(lines);
    if (command._isStatsJson)
        stats.appendJson(output.text());
    else
        stats.appendText(output.text(), command._stats);
}

void zlMakePage(const ZlCommand& command, ZlReports& reports)
{
    if (command._pageFile.empty())
    {
        writePage(command, stdout, reports);
        return;
    }
    refuseInput(command);
    ZlReplacement page(command._pageFile);
    const std::uint64_t lines = writePage(command, page.getFile(), reports);
    // A page of nothing is of no use where nothing could be read.
    if (lines > 0 || !reports.hasFailed()) page.finish();
}

} // namespace Zu
