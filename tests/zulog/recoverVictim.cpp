// Does with what dead processes have left what its first word says, and may itself be ended at a
// step of that.

#include "app/lgServiceRecovery.h"
#include "zulog/zlRecover.h"

#include "stress/hardEnd.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace
{

int stepsLeft = 0;

void endAtStep()
{
    if (--stepsLeft == 0) stress::killSelf();
}

} // namespace

// <command> <directory of the maps> <step, or 0> <map>...
int main(int argc, char** argv)
{
    if (argc < 4) return 2;
    const std::string command = argv[1];
    stepsLeft = std::atoi(argv[3]);
    Zu::LgServiceRecovery::_atStep = &endAtStep;
    Zu::ZlRecoverOptions options;
    options._mapDirectory = argv[2];
    options._maps.assign(argv + 4, argv + argc);
    options._isAll = true;
    Zu::ZlOutput out(stdout);
    Zu::ZlReports reports(std::cerr);
    if (command == "list") zlRecoverList(options, out, reports);
    if (command == "show") zlRecoverShow(options, out, reports);
    if (command == "write") zlRecoverWrite(options, out, reports);
    if (command == "remove") zlRecoverRemove(options, out, reports);
    return reports.hasFailed() ? 1 : 0;
}
