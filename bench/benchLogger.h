// What the benchmarks of the logger share: a started logger, and the same event in three shapes.

#ifndef ZU_BENCH_BENCHLOGGER_H
#define ZU_BENCH_BENCHLOGGER_H

#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/osCpuInfo.h"
#include "base/osEnv.h"

#include <filesystem>
#include <string>
#include <unistd.h>

namespace bench
{

// The logger with a private directory, for the life of the object.
class Logger
{
public:
    Logger()
        : _directory(std::filesystem::temp_directory_path() /
                     ("zuBench" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(_directory);
        Zu::OsEnv::putVariable(("B7Q_TEST_DIR=" + _directory.string()).c_str());
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        Zu::LgLog::init();
    }

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    ~Logger()
    {
        Zu::LgLog::destroy();
        std::filesystem::remove_all(_directory);
    }

    std::string file(const std::string& name) const
    {
        return (_directory / name).string();
    }

private:
    std::filesystem::path _directory;
};

// (a) a literal; (b) text, an int and an unsigned; (c) text, an int, a double and 12 characters.
enum Shape
{
    LITERAL,
    TEXT_AND_INTEGERS,
    TEXT_AND_DOUBLE
};

inline constexpr const char* WORD = "twelve chars";

} // namespace bench

#endif
