// A logger for one round of a scenario.

#ifndef ZU_TESTS_STRESS_ROUNDLOGGER_H
#define ZU_TESTS_STRESS_ROUNDLOGGER_H

#include "base/osEnv.h"
#include "stress/account.h"
#include "stress/producer.h"
#include "support/runningLogger.h"

#include <optional>
#include <string>

namespace stress
{

// A logger within this process, with the group of this suite and a private directory.
class RoundLogger
{
public:
    RoundLogger() : _group(std::in_place) {}

    // Where the log files are.
    static std::string dir()
    {
        return Zu::OsEnv::getVariable("B7Q_TEST_DIR");
    }

    static std::string file()
    {
        return dir() + "/events.log";
    }

    // Ends it, and returns the account of its file.
    FileAccount read()
    {
        stop();
        return stress::read(file());
    }

    void stop()
    {
        _group.reset();
        _logger.stop();
    }

private:
    support::RunningLogger _logger;
    std::optional<Group> _group;
};

} // namespace stress

#endif
