// Seven lines with the values of the levels' variables, in the order of the levels, and a line with
// the default level of groups. A file name is replaced by one in a scratch directory: only the
// marks in front of it count.

#include "base/lgLog.h"
#include "base/lgMajorGroup.h"
#include "base/lgTypes.h"
#include "base/osEnv.h"

#include "fuzzTarget.h"
#include "hardwareCounter.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <string>

namespace
{

using Zu::LgLog;
namespace LgTypes = Zu::LgTypes;

constexpr const char* DIRECTORY = "B7Q_TEST_DIR";
constexpr const char* DEFAULT_LEVEL = "ZU_LOG_DEFAULT_LEVEL";
constexpr const char* VARIABLES[] = {
    "ZU_LOG_INTERNAL_ERROR", "ZU_LOG_FATAL_ERROR", "ZU_LOG_RECOVERABLE_ERROR", "ZU_LOG_WARNING",
    "ZU_LOG_INFORMATIONAL",  "ZU_LOG_TRACING",     "ZU_LOG_PROFILING"};
constexpr const char* NAMES[] = {"Internal Error", "Fatal Error", "Error",    "Warning",
                                 "Informational",  "Tracing",     "Profiling"};

// Sets a variable for one input. The empty value removes it.
class Variable
{
public:
    Variable(const char* name, const std::string& value) : _name(name)
    {
        const char* const former = Zu::OsEnv::getVariable(name);
        _former = former ? former : "";
        set(value);
    }

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    ~Variable()
    {
        set(_former);
    }

private:
    void set(const std::string& value) const
    {
        Zu::OsEnv::putVariable((_name + "=" + value).c_str());
    }

    std::string _name;
    std::string _former;
};

struct Setting
{
    std::string _value;
    bool _enabled = true;
    bool _echo = false;
    bool _append = false;
    std::optional<std::string> _file;
};

Setting settingOf(const std::string& text, int level, const support::TempDir& dir)
{
    Setting setting;
    setting._value = text;
    if (text.empty())
    {
        setting._file = dir.file("events.log");
        // The other levels keep marks of an earlier set-up if their variable is not set.
        if (level > LgTypes::InternalError && level < LgTypes::Tracing) return setting;
        setting._value = "%";
        setting._echo = true;
        setting._file.reset();
        return setting;
    }
    if (text.compare(0, 2, "--") == 0)
    {
        setting._enabled = false;
        return setting;
    }
    const bool hasTwoMarks = text.compare(0, 2, "%+") == 0 || text.compare(0, 2, "++") == 0;
    const bool hasMark = text[0] == '%' || text[0] == '+';
    const std::string marks = text.substr(0, hasTwoMarks ? 2 : hasMark ? 1 : 0);
    setting._echo = marks.find('%') != std::string::npos;
    setting._append = marks.find('+') != std::string::npos;
    if (marks.size() < text.size())
        setting._file = dir.file(text.size() % 2 == 0 ? "even.log" : "odd.log");
    else if (hasTwoMarks)
        setting._file = "";
    setting._value = marks + setting._file.value_or("");
    return setting;
}

struct RunningLogger
{
    RunningLogger()
    {
        LgLog::init();
    }

    ~RunningLogger()
    {
        LgLog::destroy();
    }
};

using Settings = std::array<Setting, LgTypes::NUM_LEVELS>;

std::string displayOf(const Settings& settings)
{
    std::string text = "===== Log Setup =====\n";
    for (std::size_t i = 0; i < settings.size(); ++i)
    {
        const Setting& setting = settings[i];
        text += std::string(NAMES[i]) + ": ";
        if (!setting._enabled) text += "Disabled";
        if (setting._echo) text += "stdout, ";
        if (setting._file) text += *setting._file + " ";
        if (setting._append) text += "[Append]";
        text += "\n";
    }
    return text + "===== End Setup =====\n";
}

void checkSetup(const Settings& settings)
{
    const support::StreamCapture capture(std::cout);
    LgLog::displaySetup();
    FUZZ_REQUIRE(capture.text() == displayOf(settings));
    for (std::size_t i = 0; i < settings.size(); ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        FUZZ_REQUIRE(LgLog::isLevelEchoed(level) == settings[i]._echo);
        FUZZ_REQUIRE((LgLog::getLevelOutput(level) != nullptr) == settings[i]._file.has_value());
        for (std::size_t k = 0; k < i; ++k)
        {
            if (!settings[i]._file) continue;
            const bool isSame = LgLog::getLevelOutput(level) ==
                                LgLog::getLevelOutput(static_cast<LgTypes::Level>(k));
            FUZZ_REQUIRE(isSame == (settings[i]._file == settings[k]._file));
        }
    }
}

// Every run of the logger has left its two banners, and nothing else. The first level that names
// the file decides whether it is truncated.
void checkFiles(const Settings& settings)
{
    const std::string run = "===== Message Logger Startup =====\n"
                            "===== Message Logger Stopped =====\n";
    std::map<std::string, bool> files;
    for (const Setting& setting : settings)
        if (setting._file && !setting._file->empty())
            files.emplace(*setting._file, setting._append);
    for (const auto& [file, append] : files)
    {
        std::ifstream stream(file, std::ios::binary);
        FUZZ_REQUIRE(stream);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        FUZZ_REQUIRE(text == (append ? run + run : run));
    }
}

void run(fuzz::Input input)
{
    fuzz::startHardwareCounter();
    static const support::TempDir theDir;
    for (const char* const name : {"events.log", "prof.log", "even.log", "odd.log"})
        std::filesystem::remove(theDir.file(name));
    Settings settings;
    for (std::size_t i = 0; i < settings.size(); ++i)
        settings[i] = settingOf(input.takeLine(), static_cast<int>(i), theDir);
    const std::string defaultText = input.takeLine();

    const Variable directory(DIRECTORY, theDir.path());
    const Variable defaultLevel(DEFAULT_LEVEL, defaultText);
    std::optional<Variable> variables[LgTypes::NUM_LEVELS];
    for (std::size_t i = 0; i < settings.size(); ++i)
        variables[i].emplace(VARIABLES[i], settings[i]._value);
    // With time stamps the banners would contain the time at which they were written.
    LgLog::disableTimeStamps();
    for (int round = 0; round < 2; ++round)
    {
        Zu::LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
        const RunningLogger logger;
        checkSetup(settings);
        int expected = LgTypes::Warning;
        for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
            if (defaultText == NAMES[level]) expected = level == 0 ? 1 : level;
        FUZZ_REQUIRE(Zu::LgMajorGroup::getDefaultThreshold() == expected);
    }
    Zu::LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
    LgLog::enableTimeStamps();
    checkFiles(settings);
}

} // namespace

FUZZ_TARGET(logSetup, run);
