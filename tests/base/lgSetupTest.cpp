#include "base/lgSetup.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace
{

using Zu::LgLevelSetup;
using Zu::LgLogFiles;
using Zu::LgSetup;
namespace LgTypes = Zu::LgTypes;

const LgLogFiles FILES{"logs/events.log", "logs/prof.log"};

using Variables = std::map<std::string, std::string>;

void read(LgSetup& setup, const Variables& variables, const LgLogFiles& files = FILES)
{
    setup.read(
        [&](const char* name)
        {
            const auto found = variables.find(name);
            return found == variables.end() ? nullptr : found->second.c_str();
        },
        files);
}

LgSetup setupOf(const Variables& variables, const LgLogFiles& files = FILES)
{
    LgSetup setup;
    read(setup, variables, files);
    return setup;
}

LgLevelSetup record(bool enabled, bool echo, bool append, std::optional<std::string> file,
                    bool missing = false)
{
    return {enabled, echo, append, std::move(file), missing};
}

TEST(LgSetup, ReadsAValueByItsFirstMarks)
{
    struct Row
    {
        const char* _value;
        LgLevelSetup _expected;
    };
    const Row rows[] = {
        {"%", record(true, true, false, std::nullopt)},
        {"+", record(true, false, true, std::nullopt)},
        {"%+", record(true, true, true, "")},
        {"++", record(true, false, true, "")},
        {"--", record(false, false, false, std::nullopt)},
        {"--name", record(false, false, false, std::nullopt)},
        {"--+name", record(false, false, false, std::nullopt)},
        {"%name", record(true, true, false, "name")},
        {"+name", record(true, false, true, "name")},
        {"%+name", record(true, true, true, "name")},
        {"++name", record(true, false, true, "name")},
        {"+%name", record(true, false, true, "%name")},
        {"%%name", record(true, true, false, "%name")},
        {"%++name", record(true, true, true, "+name")},
        {"-name", record(true, false, false, "-name")},
        {"-", record(true, false, false, "-")},
        {"name+", record(true, false, false, "name+")},
        {"", record(true, false, false, "")},
    };
    for (const Row& row : rows)
        EXPECT_EQ(LgSetup::parse(row._value), row._expected) << "'" << row._value << "'";
}

TEST(LgSetup, GivesLevelsWithoutVariablesTheirDefaults)
{
    const LgSetup setup = setupOf({});
    for (const LgTypes::Level level : {LgTypes::InternalError, LgTypes::FatalError, LgTypes::Error,
                                       LgTypes::Warning, LgTypes::Informational})
        EXPECT_EQ(setup[level], record(true, false, false, "logs/events.log")) << level;
    EXPECT_EQ(setup[LgTypes::Profiling], record(true, false, false, "logs/prof.log"));
    EXPECT_EQ(setup[LgTypes::Tracing], record(true, true, false, std::nullopt));
}

TEST(LgSetup, LeavesLevelsWithoutAFileWhereTheLogDirectoryCannotBeUsed)
{
    const LgSetup setup = setupOf({}, {});
    // Deliberately, these two read as disabled and the others do not.
    for (const LgTypes::Level level : {LgTypes::InternalError, LgTypes::Profiling})
        EXPECT_EQ(setup[level], record(false, false, false, std::nullopt, true)) << level;
    for (const LgTypes::Level level :
         {LgTypes::FatalError, LgTypes::Error, LgTypes::Warning, LgTypes::Informational})
        EXPECT_EQ(setup[level], record(true, false, false, std::nullopt, true)) << level;
    EXPECT_EQ(setup[LgTypes::Tracing], record(true, true, false, std::nullopt));
}

TEST(LgSetup, ReadsEachLevelFromItsOwnVariable)
{
    const struct
    {
        const char* _name;
        LgTypes::Level _level;
    } rows[] = {
        {"ZU_LOG_INTERNAL_ERROR", LgTypes::InternalError},
        {"ZU_LOG_FATAL_ERROR", LgTypes::FatalError},
        {"ZU_LOG_RECOVERABLE_ERROR", LgTypes::Error},
        {"ZU_LOG_WARNING", LgTypes::Warning},
        {"ZU_LOG_INFORMATIONAL", LgTypes::Informational},
        {"ZU_LOG_PROFILING", LgTypes::Profiling},
        {"ZU_LOG_TRACING", LgTypes::Tracing},
    };
    const LgSetup defaults = setupOf({});
    for (const auto& row : rows)
    {
        const LgSetup setup = setupOf({{row._name, "%+mine.log"}});
        for (const LgTypes::Level level : Zu::LG_LEVELS)
        {
            const LgLevelSetup expected =
                level == row._level ? record(true, true, true, "mine.log") : defaults[level];
            EXPECT_EQ(setup[level], expected) << row._name << " " << level;
        }
    }
}

TEST(LgSetup, AVariableServesWithoutTheLogDirectory)
{
    const LgSetup setup = setupOf({{"ZU_LOG_PROFILING", "p.log"}}, {});
    EXPECT_EQ(setup[LgTypes::Profiling], record(true, false, false, "p.log"));
}

TEST(LgSetup, KeepsSomeFlagsOfAnEarlierStart)
{
    LgSetup setup;
    Variables variables;
    for (const char* const name :
         {"ZU_LOG_INTERNAL_ERROR", "ZU_LOG_WARNING", "ZU_LOG_PROFILING", "ZU_LOG_TRACING"})
        variables[name] = "%+mine.log";
    read(setup, variables);
    read(setup, {});
    EXPECT_EQ(setup[LgTypes::InternalError], record(true, true, true, "logs/events.log"));
    EXPECT_EQ(setup[LgTypes::Profiling], record(true, true, true, "logs/prof.log"));
    EXPECT_EQ(setup[LgTypes::Tracing], record(true, true, true, "mine.log"));
    EXPECT_EQ(setup[LgTypes::Warning], record(true, false, false, "logs/events.log"));
}

TEST(LgSetup, ForgetsTheFileOfAnEarlierStartWhereTheLogDirectoryCannotBeUsed)
{
    LgSetup setup =
        setupOf({{"ZU_LOG_INTERNAL_ERROR", "%+mine.log"}, {"ZU_LOG_PROFILING", "%+mine.log"}});
    read(setup, {}, {});
    for (const LgTypes::Level level : {LgTypes::InternalError, LgTypes::Profiling})
        EXPECT_EQ(setup[level], record(false, true, true, std::nullopt, true)) << level;
}

TEST(LgSetup, ForgetsThatTheDirectoryWasMissing)
{
    LgSetup setup = setupOf({}, {});
    read(setup, {});
    for (const LgTypes::Level level : Zu::LG_LEVELS) EXPECT_FALSE(setup[level]._isFileMissing);
}

} // namespace
