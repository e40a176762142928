// A logger with a private directory of log files, for tests within the process.

#ifndef ZU_TESTS_RUNNINGLOGGER_H
#define ZU_TESTS_RUNNINGLOGGER_H

#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/osCpuInfo.h"

#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <fstream>
#include <string>
#include <vector>

namespace support
{

// The logger runs for the lifetime of an object, and is restored at its end.
class RunningLogger
{
public:
    RunningLogger() : _variable("B7Q_TEST_DIR")
    {
        _variable.set(_dir.path());
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        Zu::LgLog::init();
    }

    RunningLogger(const RunningLogger&) = delete;
    RunningLogger& operator=(const RunningLogger&) = delete;

    ~RunningLogger()
    {
        stop();
        Zu::LgLog::setQueueFunction(nullptr);
    }

    // Closes the log files before the end of the object's life.
    void stop()
    {
        if (_running) Zu::LgLog::destroy();
        _running = false;
    }

    // The lines written to a log file so far, without its banners.
    std::vector<std::string> linesOf(const std::string& name) const
    {
        std::vector<std::string> lines;
        std::ifstream file(_dir.file(name), std::ios::binary);
        for (std::string line; std::getline(file, line);)
            if (!line.empty() && line.rfind("=====", 0) != 0) lines.push_back(line);
        return lines;
    }

    // The texts of the lines: what follows their level.
    std::vector<std::string> textsOf(const std::string& name) const
    {
        std::vector<std::string> texts = linesOf(name);
        for (std::string& line : texts) line.erase(0, line.find(": ") + 2);
        return texts;
    }

private:
    TempDir _dir;
    VariableGuard _variable;
    bool _running = true;
};

} // namespace support

#endif
