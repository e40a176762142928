#include "base/lgMajorGroup.h"

#include "base/exInternalError.h"
#include "base/lgMinorGroup.h"
#include "base/lmLibraries.h"

#include "support/logTest.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>
#include <thread>

namespace
{

using Zu::LgMajorGroup;
namespace LgTypes = Zu::LgTypes;

// The groups of the process are made and ended around each test.
class LgMajorGroupTest : public testing::Test
{
protected:
    ~LgMajorGroupTest() override
    {
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
        if (_initialized) LgMajorGroup::finalize();
    }

    void initialize(const char* text = nullptr)
    {
        LgMajorGroup::initialize(text);
        _initialized = true;
    }

    static std::uint32_t levelsOf(const char* name)
    {
        return LgMajorGroup::getInstanceForName(name).getLogLevels();
    }

    static std::string printed()
    {
        std::ostringstream out;
        LgMajorGroup::printAll(out);
        return out.str();
    }

    template <class Act> static std::string assertionOf(Act act)
    {
        try
        {
            act();
        }
        catch (const Zu::ExInternalError& exception)
        {
            return exception.getReason();
        }
        return "nothing raised";
    }

    bool _initialized = false;
};

TEST_F(LgMajorGroupTest, MasksOfThresholds)
{
    const std::uint32_t masks[] = {0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x02};
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        EXPECT_EQ(LgMajorGroup::getLevelMask(static_cast<LgTypes::Level>(level)), masks[level]);
}

TEST_F(LgMajorGroupTest, AGroupThatNobodyConfiguresLogsWarningsAndAbove)
{
    EXPECT_EQ(LgMajorGroup::getDefaultThreshold(), LgTypes::Warning);
    EXPECT_EQ(LgMajorGroup().getLogLevels(), 0xF0U);
}

TEST_F(LgMajorGroupTest, TheDefaultThresholdIsAtLeastFatalErrorAndIsForNewGroups)
{
    const LgMajorGroup before;
    LgMajorGroup::setDefaultThreshold(LgTypes::InternalError);
    EXPECT_EQ(LgMajorGroup::getDefaultThreshold(), LgTypes::FatalError);
    EXPECT_EQ(LgMajorGroup().getLogLevels(), 0xC0U);
    LgMajorGroup::setDefaultThreshold(LgTypes::Profiling);
    EXPECT_EQ(LgMajorGroup::getDefaultThreshold(), LgTypes::Profiling);
    EXPECT_EQ(LgMajorGroup().getLogLevels(), 0x02U);
    EXPECT_EQ(before.getLogLevels(), 0xF0U);
    EXPECT_EQ(assertionOf([] { LgMajorGroup::setDefaultThreshold(LgTypes::NUM_LEVELS); }),
              "Assertion 'l < NUM_LEVELS' failed.");
}

TEST_F(LgMajorGroupTest, SettingAThreshold)
{
    const struct
    {
        bool _hadProfiling;
        LgTypes::Level _level;
        bool _clearProfiling;
        std::uint32_t _mask;
    } cases[] = {
        {false, LgTypes::InternalError, false, 0xC0}, {true, LgTypes::InternalError, false, 0xC2},
        {true, LgTypes::InternalError, true, 0xC0},   {true, LgTypes::FatalError, true, 0xC0},
        {false, LgTypes::Error, true, 0xE0},          {true, LgTypes::Error, false, 0xE2},
        {true, LgTypes::Warning, false, 0xF2},        {false, LgTypes::Informational, false, 0xF8},
        {true, LgTypes::Tracing, true, 0xFC},         {true, LgTypes::Tracing, false, 0xFE},
        {false, LgTypes::Profiling, true, 0xF2},      {true, LgTypes::Profiling, true, 0xF2},
        {false, LgTypes::Profiling, false, 0xF2},
    };
    for (const auto& row : cases)
    {
        LgMajorGroup group;
        if (row._hadProfiling) group.setLogThreshold(LgTypes::Profiling, false);
        group.setLogThreshold(row._level, row._clearProfiling);
        EXPECT_EQ(group.getLogLevels(), row._mask) << row._level << row._clearProfiling;
    }
    EXPECT_EQ(
        assertionOf([] { LgMajorGroup().setLogThreshold(static_cast<LgTypes::Level>(9), true); }),
        "Assertion 'l < NUM_LEVELS' failed.");
}

TEST_F(LgMajorGroupTest, ACopyHasTheMaskOfItsSource)
{
    LgMajorGroup source;
    source.setLogThreshold(LgTypes::Tracing, true);
    const LgMajorGroup copy(source);
    LgMajorGroup assigned;
    assigned = source;
    EXPECT_EQ(copy.getLogLevels(), 0xFCU);
    EXPECT_EQ(assigned.getLogLevels(), 0xFCU);
}

TEST_F(LgMajorGroupTest, NamingAGroupMakesItOnce)
{
    initialize();
    char name[] = "UI";
    LgMajorGroup& group = LgMajorGroup::getInstanceForName(name);
    name[0] = 'X';
    EXPECT_EQ(&LgMajorGroup::getInstanceForName("UI"), &group);
    EXPECT_NE(&LgMajorGroup::getInstanceForName("ui"), &group);
    EXPECT_EQ(group.getLogLevels(), 0xF0U);
}

TEST_F(LgMajorGroupTest, IsUsedWhenTheProgramAskedForIt)
{
    EXPECT_FALSE(LgMajorGroup::isUsed("UI"));
    initialize("UI=Error,Database=Error");
    EXPECT_FALSE(LgMajorGroup::isUsed("UI"));
    LgMajorGroup::getInstanceForName("UI");
    LgMajorGroup::getInstanceForName("Other");
    EXPECT_TRUE(LgMajorGroup::isUsed("UI"));
    EXPECT_TRUE(LgMajorGroup::isUsed("Other"));
    EXPECT_FALSE(LgMajorGroup::isUsed("Database"));
    EXPECT_FALSE(LgMajorGroup::isUsed("unknown"));
    EXPECT_FALSE(LgMajorGroup::isUsed(nullptr));
    LgMajorGroup::parse("UI=Tracing");
    EXPECT_TRUE(LgMajorGroup::isUsed("UI"));
    LgMajorGroup::finalize();
    EXPECT_FALSE(LgMajorGroup::isUsed("UI"));
    initialize("UI=Error");
    EXPECT_FALSE(LgMajorGroup::isUsed("UI"));
}

TEST_F(LgMajorGroupTest, ParsesWhatTheEnvironmentSays)
{
    const struct
    {
        const char* _text;
        const char* _name;
        std::uint32_t _mask;
    } cases[] = {
        {"Group=Warning", "Group", 0xF0},
        {"A=Error,Group=Informational,B=Error", "Group", 0xF8},
        {"Group=Fatal Error", "Group", 0xC0},
        {"Group=Internal Error", "Group", 0xC0},
        {"Group=Profiling", "Group", 0xF2},
        {"Group=Profiling,Group=Warning", "Group", 0xF2},
        {"Group=Profiling,Group=Internal Error", "Group", 0xC2},
        {"Group=Tracing,Group=Error", "Group", 0xE0},
        {"a name=Tracing", "a name", 0xFC},
        {"==Group==Tracing", "Group", 0xF0},
        {"Group=,,Tracing", "Group", 0xFC},
        {",Group=Tracing", ",Group", 0xFC},
    };
    for (const auto& row : cases)
    {
        testing::internal::CaptureStdout();
        LgMajorGroup::initialize(row._text);
        EXPECT_EQ(levelsOf(row._name), row._mask) << row._text;
        LgMajorGroup::finalize();
        testing::internal::GetCapturedStdout();
    }
}

TEST_F(LgMajorGroupTest, AnUnknownLevelIsToldAndMakesNoGroup)
{
    testing::internal::CaptureStdout();
    initialize("Group=Bogus,Other=Tracing");
    std::string output = testing::internal::GetCapturedStdout();
    std::erase(output, '\r');
    EXPECT_EQ(output, "Invalid level string specified: Bogus\n");
    EXPECT_EQ(printed(), "Major Groups:\n"
                         "                   Other Tracing\n");
}

TEST_F(LgMajorGroupTest, AnEmptyTextMakesNoGroup)
{
    initialize("");
    EXPECT_EQ(printed(), "Major Groups:\n");
}

TEST_F(LgMajorGroupTest, APairWithoutALevelBreaksARule)
{
    initialize();
    for (const char* const text : {"Group", "Group=", "A=Error,Group", "Group=,"})
        EXPECT_EQ(assertionOf([=] { LgMajorGroup::parse(text); }), "Assertion 's' failed.") << text;
}

TEST_F(LgMajorGroupTest, VisitsGroupsInByteOrder)
{
    initialize("UI=Error,Database=Tracing");
    std::string visited;
    const auto visit = [&visited](const char* name, LgMajorGroup& group)
    {
        visited.append(name).append(" ").append(std::to_string(group.getLogLevels())).append("\n");
        group.setLogThreshold(LgTypes::Warning, false);
    };
    LgMajorGroup::visitAll(visit);
    EXPECT_EQ(visited, "Database 252\nUI 224\n");
    EXPECT_EQ(levelsOf("UI"), 0xF0U);
    LgMajorGroup::finalize();
    _initialized = false;
    LgMajorGroup::visitAll([](const char*, LgMajorGroup&) { FAIL(); });
}

TEST_F(LgMajorGroupTest, GroupsMayBeMadeWhileOthersAreVisited)
{
    initialize();
    constexpr int COUNT = 500;
    std::thread maker(
        []
        {
            for (int i = 0; i < COUNT; ++i) levelsOf(("Group" + std::to_string(i)).c_str());
        });
    int visited = 0;
    while (visited < COUNT)
    {
        visited = 0;
        LgMajorGroup::visitAll([&visited](const char*, const LgMajorGroup&) { ++visited; });
    }
    maker.join();
    EXPECT_EQ(visited, COUNT);
}

TEST_F(LgMajorGroupTest, PrintsGroupsInByteOrder)
{
    LgMajorGroup::setDefaultThreshold(LgTypes::InternalError);
    initialize("b=Error,B=Profiling,a=Tracing");
    LgMajorGroup::setDefaultThreshold(LgTypes::Profiling);
    LgMajorGroup::getInstanceForName("c");
    LgMajorGroup::getInstanceForName("a name of more than twenty-four characters");
    // The word for the threshold is always the same, except for a group without one.
    EXPECT_EQ(printed(), "Major Groups:\n"
                         "                       B Tracing, Profiling\n"
                         "                       a Tracing\n"
                         "a name of more than twenty-four characters , Profiling\n"
                         "                       b Tracing\n"
                         "                       c , Profiling\n");
}

TEST_F(LgMajorGroupTest, PrintsTheSameOnAnyStreamAndPutsItsFormatBack)
{
    initialize("UI=Error");
    std::ostringstream os;
    os << std::left << std::hex << std::setw(40) << std::setfill('*');
    const auto flags = os.flags();
    LgMajorGroup::printAll(os);
    // The fill character is the stream's, deliberately.
    EXPECT_EQ(os.str(), "Major Groups:\n**********************UI Tracing\n");
    EXPECT_EQ(os.flags(), flags);
    EXPECT_EQ(os.width(), 40);
    EXPECT_EQ(os.fill(), '*');
}

// Nothing reads them: they only serve to inspect the library.
TEST_F(LgMajorGroupTest, TheUsageOfBothVariablesStandsInTheLibrary)
{
    std::string bytes;
    for (const Zu::LmLibrary& library : Zu::LmLibraries::getList())
    {
        const std::string path = library._path.get();
        if (path.find("libZUbase") != std::string::npos) bytes += support::bytesOf(path);
    }
    ASSERT_FALSE(bytes.empty());
    // Put together here, so that no other copy is found.
    const std::string command = "setenv ";
    const std::string texts[] = {
        command + "ZU_LOG_DEFAULT_LEVEL Tracing",
        command + "ZU_LOG_GROUPS Database=Warning,UI=Informational,Radiosity=Profiling"};
    for (const std::string& text : texts)
        EXPECT_NE(bytes.find('\0' + text + '\0'), std::string::npos) << text;
}

TEST_F(LgMajorGroupTest, AMinorGroupMayOutliveItsMajorGroup)
{
    initialize("UI=Tracing,Database=Profiling");
    const Zu::LgMinorGroup minor(LgMajorGroup::getInstanceForName("UI"), "Window");
    const Zu::LgMinorGroup other(LgMajorGroup::getInstanceForName("Database"), "Query");
    LgMajorGroup::finalize();
    // It keeps its levels.
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Tracing));
    // After the next start it has those of a new group, or those that the start sets.
    LgMajorGroup::setDefaultThreshold(LgTypes::Error);
    initialize("UI=Informational");
    EXPECT_EQ(printed(), "Major Groups:\n                      UI Tracing\n");
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Informational));
    EXPECT_FALSE(minor.isLevelEnabled(LgTypes::Tracing));
    EXPECT_TRUE(other.isLevelEnabled(LgTypes::Error));
    EXPECT_FALSE(other.isLevelEnabled(LgTypes::Warning));
    EXPECT_FALSE(other.isLevelEnabled(LgTypes::Profiling));
    // It is the group of its name.
    LgMajorGroup::getInstanceForName("Database").setLogThreshold(LgTypes::Tracing, true);
    EXPECT_TRUE(other.isLevelEnabled(LgTypes::Tracing));
    EXPECT_EQ(levelsOf("Database"), 0xFCU);
}

TEST_F(LgMajorGroupTest, GroupsExistFromInitializeToFinalizeOnly)
{
    EXPECT_EQ(assertionOf([] { LgMajorGroup::getInstanceForName("UI"); }),
              "Assertion 'names' failed.");
    EXPECT_EQ(assertionOf([] { LgMajorGroup::parse("UI=Error"); }), "Assertion 'names' failed.");
    EXPECT_EQ(assertionOf([] { LgMajorGroup::finalize(); }), "Assertion 'names' failed.");
    initialize("UI=Error");
    EXPECT_EQ(assertionOf([] { LgMajorGroup::initialize(nullptr); }), "Assertion '!names' failed.");
    LgMajorGroup::finalize();
    LgMajorGroup::initialize(nullptr);
    EXPECT_EQ(levelsOf("UI"), 0xF0U);
}

} // namespace
