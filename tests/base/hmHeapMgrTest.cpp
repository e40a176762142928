#include "base/hmHeapMgr.h"

#include "base/inSingletonEx.h"

#include "support/childProcess.h"
#include "support/platform.h"
#include "support/traceTest.h"
#include "support/variableGuard.h"
#include "support/vtableSlot.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::Environment;
using Zu::HmHeapMgr;

static_assert(std::has_virtual_destructor_v<HmHeapMgr>);
static_assert(!std::is_default_constructible_v<HmHeapMgr>);
static_assert(std::is_copy_constructible_v<HmHeapMgr>);
static_assert(std::is_copy_assignable_v<HmHeapMgr>);
static_assert(HmHeapMgr::Some == 0);
static_assert(HmHeapMgr::Full == 1);
static_assert(HmHeapMgr::Debug == 2);

constexpr const char* LEVEL = "ZU_HEAP_SAFETY_LEVEL";
constexpr const char* LENGTH = "ZU_HEAP_DEFER_QUEUE_LEN";
constexpr const char* THRESHOLD = "ZU_HEAP_DEFER_SIZE_THRESHOLD";
constexpr const char* FREQUENCY = "ZU_HEAP_CHECK_FREQUENCY";

const std::string BANNER = "*************** Default (compiler's) heap manager ***************\n"
                           "*****************************************************************\n";

// The switches with their variables, in the order of the settings.
struct Switch
{
    const char* _variable;
    bool (HmHeapMgr::*_get)() const;
};

const Switch SWITCHES[] = {
    {"ZU_HEAP_OUTPUT_PROMPT", &HmHeapMgr::isOutput2Prompt},
    {"ZU_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR", &HmHeapMgr::isContinueOnError},
    {"ZU_HEAP_USE_DEFAULT_ERROR_HANDLER", &HmHeapMgr::isUseDefaultErrorHandler},
    {"ZU_HEAP_DUMP_INFO", &HmHeapMgr::isDumpHeapInfo},
    {"ZU_HEAP_CHECK_MEMORY", &HmHeapMgr::isCheckAllMemory},
    {"ZU_HEAP_DUMP_LEAKS", &HmHeapMgr::isDumpLeaks},
    {"ZU_HEAP_DO_DEFER_FREEING", &HmHeapMgr::isDoDeferFreeing},
};

struct Count
{
    const char* _variable;
    std::uint32_t (HmHeapMgr::*_get)() const;
    std::uint32_t _default;
};

const Count COUNTS[] = {
    {LENGTH, &HmHeapMgr::getDeferQueueLen, 1000},
    {THRESHOLD, &HmHeapMgr::getDeferSizeThreshold, 4096},
    {FREQUENCY, &HmHeapMgr::getCheckFrequency, 1000},
};

// A manager for another heap.
class Manager : public HmHeapMgr
{
public:
    Manager() = default;
};

// All settings, one after the other.
std::vector<std::uint32_t> settingsOf(const HmHeapMgr& manager)
{
    std::vector<std::uint32_t> settings{manager.getSafetyLevel()};
    for (const Switch& row : SWITCHES) settings.push_back((manager.*row._get)());
    for (const Count& row : COUNTS) settings.push_back((manager.*row._get)());
    return settings;
}

const std::vector<std::uint32_t> DEFAULTS = {1, 0, 0, 0, 0, 0, 0, 0, 1000, 4096, 1000};

// No variable of the heap is set, before and after each test.
class HmHeapMgrTest : public testing::Test
{
protected:
    HmHeapMgrTest()
    {
        guard(LEVEL);
        for (const Switch& row : SWITCHES) guard(row._variable);
        for (const Count& row : COUNTS) guard(row._variable);
    }

    // The empty value removes the variable.
    void set(const std::string& variable, const std::string& value)
    {
        _guards.at(variable)->set(value);
    }

private:
    void guard(const char* variable)
    {
        _guards[variable] = std::make_unique<support::VariableGuard>(variable);
        _guards[variable]->set("");
    }

    std::map<std::string, std::unique_ptr<support::VariableGuard>> _guards;
};

TEST_F(HmHeapMgrTest, WithoutAnyVariableTheSettingsAreTheDefaults)
{
    EXPECT_EQ(settingsOf(Manager()), DEFAULTS);
}

TEST_F(HmHeapMgrTest, TheSafetyLevelIsOneOfThreeWordsAndElseStaysFull)
{
    const struct
    {
        const char* _text;
        HmHeapMgr::SafetyLevel _level;
    } rows[] = {
        {"some", HmHeapMgr::Some},  {"full", HmHeapMgr::Full},      {"debug", HmHeapMgr::Debug},
        {"Full", HmHeapMgr::Full},  {"Some", HmHeapMgr::Full},      {"SOME", HmHeapMgr::Full},
        {"DEBUG", HmHeapMgr::Full}, {"som", HmHeapMgr::Full},       {"some ", HmHeapMgr::Full},
        {" some", HmHeapMgr::Full}, {"debugging", HmHeapMgr::Full}, {"0", HmHeapMgr::Full},
        {"2", HmHeapMgr::Full},
    };
    for (const auto& row : rows)
    {
        set(LEVEL, row._text);
        std::vector<std::uint32_t> expected = DEFAULTS;
        expected[0] = row._level;
        std::vector<std::uint32_t> settings;
        const std::string printed =
            support::coutOf([&settings] { settings = settingsOf(Manager()); });
        EXPECT_EQ(settings, expected) << row._text;
        EXPECT_EQ(printed, "") << row._text;
    }
}

TEST_F(HmHeapMgrTest, ASwitchIsOnWhenItsTextBeginsWithANumberFromOneOn)
{
    const struct
    {
        const char* _text;
        bool _on;
    } rows[] = {
        {"1", true},   {"2", true},    {"2147483647", true}, {"+1", true},  {" 1", true},
        {"01", true},  {"1yes", true}, {"1.9", true},        {"0", false},  {"-1", false},
        {"00", false}, {"0.9", false}, {"yes", false},       {"on", false}, {"true", false},
        {"x1", false}, {"- 1", false},
    };
    for (std::size_t i = 0; i < std::size(SWITCHES); ++i)
    {
        for (const auto& row : rows)
        {
            set(SWITCHES[i]._variable, row._text);
            // No other setting follows it.
            std::vector<std::uint32_t> expected = DEFAULTS;
            expected[1 + i] = row._on;
            EXPECT_EQ(settingsOf(Manager()), expected) << SWITCHES[i]._variable << " " << row._text;
        }
        set(SWITCHES[i]._variable, "");
    }
}

TEST_F(HmHeapMgrTest, ACountIsTheNumberThatItsTextBeginsWith)
{
    const struct
    {
        const char* _text;
        std::uint32_t _count;
    } rows[] = {
        {"0", 0},    {"1", 1},    {"500", 500},  {"2147483647", 2147483647},
        {"+7", 7},   {" \t7", 7}, {"12abc", 12}, {"3.9", 3},
        {"010", 10}, {"0x10", 0}, {"abc", 0},    {"-1", 4294967295},
    };
    for (std::size_t i = 0; i < std::size(COUNTS); ++i)
    {
        for (const auto& row : rows)
        {
            set(COUNTS[i]._variable, row._text);
            std::vector<std::uint32_t> expected = DEFAULTS;
            expected[1 + std::size(SWITCHES) + i] = row._count;
            EXPECT_EQ(settingsOf(Manager()), expected) << COUNTS[i]._variable << " " << row._text;
        }
        set(COUNTS[i]._variable, "");
    }
}

TEST_F(HmHeapMgrTest, TheEnvironmentIsReadByTheConstructorAlone)
{
    const Manager manager;
    set(LEVEL, "some");
    set(FREQUENCY, "5");
    for (const Switch& row : SWITCHES) set(row._variable, "1");
    EXPECT_EQ(settingsOf(manager), DEFAULTS);
    EXPECT_EQ(settingsOf(Manager()),
              (std::vector<std::uint32_t>{0, 1, 1, 1, 1, 1, 1, 1, 1000, 4096, 5}));
}

// Calls a setter with two values in turn; gives its results and the settings afterwards.
template <class Value, class Set>
void expectSetter(const char* what, std::size_t place, Value first, Value second, Set set)
{
    SCOPED_TRACE(what);
    Manager manager;
    std::vector<std::uint32_t> expected = DEFAULTS;
    const auto former = static_cast<std::uint32_t>(set(manager, first));
    EXPECT_EQ(former, DEFAULTS[place]);
    expected[place] = static_cast<std::uint32_t>(first);
    EXPECT_EQ(settingsOf(manager), expected);
    EXPECT_EQ(set(manager, second), first);
    expected[place] = static_cast<std::uint32_t>(second);
    EXPECT_EQ(settingsOf(manager), expected);
    EXPECT_EQ(set(manager, second), second);
}

TEST_F(HmHeapMgrTest, ASetterStoresTheValueAndReturnsTheOneItReplaces)
{
    expectSetter("level", 0, HmHeapMgr::Debug, HmHeapMgr::Some,
                 [](HmHeapMgr& manager, auto value) { return manager.setSafetyLevel(value); });
    expectSetter("continue", 2, true, false,
                 [](HmHeapMgr& manager, bool value) { return manager.setContinueOnError(value); });
    expectSetter("handler", 3, true, false,
                 [](HmHeapMgr& manager, bool value)
                 { return manager.setUseDefaultHandler(value); });
    expectSetter("info", 4, true, false,
                 [](HmHeapMgr& manager, bool value) { return manager.setDumpHeapInfo(value); });
    expectSetter("memory", 5, true, false,
                 [](HmHeapMgr& manager, bool value) { return manager.setCheckAllMemory(value); });
    expectSetter("leaks", 6, true, false,
                 [](HmHeapMgr& manager, bool value) { return manager.setDumpLeaks(value); });
    expectSetter("defer", 7, true, false,
                 [](HmHeapMgr& manager, bool value) { return manager.setDoDeferFreeing(value); });
    expectSetter("length", 8, 0U, 4294967295U,
                 [](HmHeapMgr& manager, std::uint32_t value)
                 { return manager.setDeferQueueLen(value); });
    expectSetter("threshold", 9, 0U, 4294967295U,
                 [](HmHeapMgr& manager, std::uint32_t value)
                 { return manager.setDeferSizeThreshold(value); });
    expectSetter("frequency", 10, 0U, 4294967295U,
                 [](HmHeapMgr& manager, std::uint32_t value)
                 { return manager.setCheckFrequency(value); });
}

TEST_F(HmHeapMgrTest, ACopyTakesAllSettings)
{
    set(LEVEL, "debug");
    for (const Switch& row : SWITCHES) set(row._variable, "1");
    set(LENGTH, "11");
    set(THRESHOLD, "12");
    set(FREQUENCY, "13");
    const std::vector<std::uint32_t> changed = {2, 1, 1, 1, 1, 1, 1, 1, 11, 12, 13};
    const Manager source;
    set(LEVEL, "");
    for (const Switch& row : SWITCHES) set(row._variable, "");
    for (const Count& row : COUNTS) set(row._variable, "");

    Manager copy(source);
    EXPECT_EQ(settingsOf(copy), changed);
    copy.setCheckFrequency(14);
    EXPECT_EQ(source.getCheckFrequency(), 13U);

    Manager assigned;
    EXPECT_EQ(settingsOf(assigned), DEFAULTS);
    assigned = source;
    EXPECT_EQ(settingsOf(assigned), changed);
}

TEST_F(HmHeapMgrTest, ReportsThatThereIsNothingToReport)
{
    const Manager manager;
    int object = 0;
    std::ostringstream dump;
    std::ostringstream pointer;
    std::ostringstream statistics;
    const std::string printed = support::coutOf(
        [&]
        {
            manager.dump(dump);
            manager.dumpPtrInfo(&object, pointer);
            manager.dumpPtrInfo(nullptr, pointer);
            manager.dumpMallocStats(statistics);
        });
    EXPECT_EQ(dump.str(), BANNER);
    const std::string noPointer = "Ptr info not available with compiler's heap\n";
    EXPECT_EQ(pointer.str(), noPointer + noPointer);
    EXPECT_EQ(statistics.str(), "Malloc stats not available with compiler's heap\n");
    EXPECT_EQ(printed, "");
}

TEST_F(HmHeapMgrTest, TheReportsDoNotDependOnTheSettings)
{
    for (const Switch& row : SWITCHES) set(row._variable, "1");
    std::ostringstream dump;
    Manager().dump(dump);
    EXPECT_EQ(dump.str(), BANNER);
}

TEST_F(HmHeapMgrTest, EveryPointerIsValidAndEveryCheckPointTheFirst)
{
    Manager manager;
    int object = 0;
    for (const auto type : {HmHeapMgr::PtrAny, HmHeapMgr::PtrObject, HmHeapMgr::PtrArray})
    {
        EXPECT_TRUE(manager.isValid(&object, sizeof object, type));
        EXPECT_TRUE(manager.isValid(&object, 1000000, type));
        EXPECT_TRUE(manager.isValid(nullptr, 0, type));
    }
    for (const std::uint32_t point : {0U, 1U, 5U, 4294967295U})
        EXPECT_EQ(manager.setCheckPoint(point), 0U);
}

TEST_F(HmHeapMgrTest, TheOtherOperationsDoNothing)
{
    Manager manager;
    const int before = 17;
    int object = before;
    const std::string printed = support::coutOf(
        [&]
        {
            manager.breakpoint();
            manager.checkHeap();
            manager.freeDeferred();
            manager.initMultiThread();
            for (const auto protect :
                 {HmHeapMgr::ProtectNone, HmHeapMgr::ProtectWrite, HmHeapMgr::ProtectAll})
                manager.protectPtr(&object, protect);
            manager.reportLeakage(0, 1);
        });
    EXPECT_EQ(printed, "");
    EXPECT_EQ(settingsOf(manager), DEFAULTS);
    // The memory is as open as before.
    ++object;
    EXPECT_EQ(object, before + 1);
}

// Counts the calls that reach it.
class Replacing : public HmHeapMgr
{
public:
    Replacing() = default;

    void breakpoint() override
    {
        ++_calls;
    }
    void checkHeap() const override
    {
        ++_calls;
    }
    bool isValid(void*, std::uint32_t, PtrType) override
    {
        ++_calls;
        return false;
    }
    void freeDeferred() const override
    {
        ++_calls;
    }
    std::uint32_t setCheckPoint(std::uint32_t checkPoint) override
    {
        ++_calls;
        return checkPoint + 1;
    }
    void initMultiThread() override
    {
        ++_calls;
    }
    void protectPtr(void*, PtrProtect) override
    {
        ++_calls;
    }
    void reportLeakage(std::uint32_t, std::uint32_t) const override
    {
        ++_calls;
    }
    bool setDumpLeaks(bool dumpLeaks) override
    {
        ++_calls;
        return HmHeapMgr::setDumpLeaks(!dumpLeaks);
    }

    mutable int _calls = 0;
};

TEST_F(HmHeapMgrTest, AManagerForAnotherHeapReplacesTheOperations)
{
    Replacing replacing;
    HmHeapMgr& manager = replacing;
    manager.breakpoint();
    manager.checkHeap();
    EXPECT_FALSE(manager.isValid(nullptr, 0, HmHeapMgr::PtrAny));
    manager.freeDeferred();
    EXPECT_EQ(manager.setCheckPoint(4), 5U);
    manager.initMultiThread();
    manager.protectPtr(nullptr, HmHeapMgr::ProtectAll);
    manager.reportLeakage(0, 1);
    EXPECT_FALSE(manager.setDumpLeaks(false));
    EXPECT_TRUE(manager.isDumpLeaks());
    EXPECT_EQ(replacing._calls, 9);
}

TEST_F(HmHeapMgrTest, BeforeStartUpThereIsNoInstance)
{
    try
    {
        HmHeapMgr::getInstance();
        FAIL();
    }
    catch (const Zu::InSingletonEx::ExNotInitialized& exception)
    {
        EXPECT_STREQ(exception.what(), "Zu::InSingleton<Zu::HmHeapMgr> is not initialized.");
    }
}

// What the program prints between its start and its end, with only these variables of the heap.
std::string outputOf(const char* word, const Environment& changes)
{
    Environment environment{{LEVEL, std::nullopt}};
    for (const Switch& row : SWITCHES) environment[row._variable] = std::nullopt;
    for (const Count& row : COUNTS) environment[row._variable] = std::nullopt;
    for (const auto& [name, value] : changes) environment[name] = value;
    const support::ProgramResult result = support::runProgram("heapProgram", {word}, environment);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

const std::string NONE = ": Zu::InSingleton<Zu::HmHeapMgr> is not initialized.\n";

TEST(HmHeapMgr, ThereIsOneInstanceFromStartUpToShutDown)
{
    EXPECT_EQ(outputOf("instance", {}), "before" + NONE + "started\ninside: one\nafter" + NONE);
}

std::string settingsText(const std::vector<std::uint32_t>& settings)
{
    const char* const names[] = {"level", "prompt", "continue", "handler",   "info",     "memory",
                                 "leaks", "defer",  "length",   "threshold", "frequency"};
    std::string text;
    for (std::size_t i = 0; i < std::size(names); ++i)
        text += names[i] + (" " + std::to_string(settings[i])) + "\n";
    return text;
}

TEST(HmHeapMgr, TheInstanceHasTheSettingsOfTheEnvironment)
{
    struct Row
    {
        const char* _what;
        Environment _environment;
        std::vector<std::uint32_t> _settings;
    };
    std::vector<Row> rows = {
        {"nothing", {}, DEFAULTS},
        {"all",
         {{LEVEL, "some"},
          {"ZU_HEAP_OUTPUT_PROMPT", "1"},
          {"ZU_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR", "1"},
          {"ZU_HEAP_USE_DEFAULT_ERROR_HANDLER", "1"},
          {"ZU_HEAP_CHECK_MEMORY", "1"},
          {"ZU_HEAP_DUMP_LEAKS", "1"},
          {"ZU_HEAP_DO_DEFER_FREEING", "1"},
          {LENGTH, "1"},
          {THRESHOLD, "2"},
          {FREQUENCY, "3"}},
         {0, 1, 1, 1, 0, 1, 1, 1, 1, 2, 3}},
        {"deferred freeing switched off", {{"ZU_HEAP_DO_DEFER_FREEING", "0"}}, DEFAULTS},
        {"no numbers",
         {{LEVEL, "Debug"}, {"ZU_HEAP_DO_DEFER_FREEING", "yes"}, {LENGTH, "many"}},
         {1, 0, 0, 0, 0, 0, 0, 0, 0, 4096, 1000}},
    };
    // On Windows an empty variable counts as unset.
    if (!support::onWindows)
        rows.push_back({"empty texts",
                        {{LEVEL, ""},
                         {"ZU_HEAP_DO_DEFER_FREEING", ""},
                         {LENGTH, ""},
                         {THRESHOLD, ""},
                         {FREQUENCY, ""}},
                        {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}});
    for (const Row& row : rows)
        EXPECT_EQ(outputOf("settings", row._environment),
                  "before" + NONE + "started\n" + settingsText(row._settings) + "after" + NONE)
            << row._what;
}

TEST(HmHeapMgr, TheHeapIsDumpedAtStartUpWhenTheEnvironmentAsksForIt)
{
    const struct
    {
        const char* _text;
        bool _dumps;
    } rows[] = {{"1", true}, {"2", true}, {"0", false}, {"yes", false}};
    for (const auto& row : rows)
        EXPECT_EQ(outputOf("nothing", {{"ZU_HEAP_DUMP_INFO", row._text}}),
                  "before" + NONE + (row._dumps ? BANNER : "") + "started\nafter" + NONE)
            << row._text;
}

// Six operations that do nothing are among them.
TEST(HmHeapMgr, VirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::isValid), 4);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setCheckPoint), 6);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::dump), 9);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::dumpPtrInfo), 10);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::dumpMallocStats), 11);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setSafetyLevel), 12);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setContinueOnError), 13);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setUseDefaultHandler), 14);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setDumpHeapInfo), 15);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setCheckAllMemory), 16);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setDumpLeaks), 17);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setDoDeferFreeing), 19);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setDeferQueueLen), 20);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setDeferSizeThreshold), 21);
    EXPECT_EQ(support::slotOf(&Zu::HmHeapMgr::setCheckFrequency), 22);
}

} // namespace
