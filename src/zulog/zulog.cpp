// The program that reads logs.

#include "zulog/zlCommandLine.h"
#include "zulog/zlFollow.h"
#include "zulog/zlPlatform.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>

namespace
{

void run(const Zu::ZlCommand& command, Zu::ZlReports& reports)
{
    std::FILE* const pager = command._isPaged ? Zu::ZlPlatform::openPager() : nullptr;
    Zu::ZlOutput output(pager ? pager : stdout);
    try
    {
        const std::atomic<bool> isStopped = false;
        if (command._name == Zu::ZlCommand::Name::Follow)
            Zu::zlFollow(command._show, command._lines, output, reports, isStopped);
        else
            Zu::zlShow(command._show, output, reports);
    }
    catch (const Zu::ZlOutput::Closed&)
    {
        // Who reads it has seen enough.
    }
    if (pager) Zu::ZlPlatform::closePager(pager);
}

int runCommand(const Zu::ZlCommand& command)
{
    if (command._name == Zu::ZlCommand::Name::Print)
    {
        (command._exit == 0 ? std::cout : std::cerr) << command._text << std::flush;
        return command._exit;
    }
    Zu::ZlReports reports(std::cerr);
    try
    {
        run(command, reports);
    }
    catch (const std::exception& error)
    {
        reports.failed(error.what());
    }
    reports.endReports();
    return reports.hasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    Zu::ZlPlatform::prepare();
    const char* const noColour = std::getenv("NO_COLOR");
    Zu::ZlSurroundings surroundings;
    surroundings._isOutputTerminal = Zu::ZlPlatform::isTerminal(stdout);
    surroundings._isColourRefused = noColour && *noColour != '\0';
    surroundings._now = Zu::ZlPlatform::getNow();
    return runCommand(Zu::zlReadCommandLine(Zu::ZlPlatform::getWords(argc, argv), surroundings));
}
