#include "base/testMgr.h"

#include "base/dbgBuildInfoLog.h"
#include "base/dbgBuildInfoMgr.h"
#include "base/dbgBuildText.h"
#include "base/exInternalError.h"
#include "base/hmGC.h"
#include "base/hmGCEx.h"
#include "base/inContextAliasMgrBase.h"
#include "base/inInitGuard.h"
#include "base/lmLibraries.h"
#include "base/osFilePath.h"
#include "base/plainTextStream.h"
#include "base/testGroup.h"
#include "base/testHandlers.h"
#include "base/testInform.h"
#include "base/testPerformer.h"
#include "base/testTrace.h"
#include "base/typeName.h"

#include <cstring>
#include <string>
#include <typeinfo>
#include <vector>

namespace Zu
{

namespace
{

constexpr int SUCCESS = 0;
constexpr int UNKNOWN = 1;
constexpr int RAISED = 2;
constexpr int LEAK = 3;

// In fact the switches precede the group. The text is frozen, see docs/compatibility.md.
constexpr const char* USAGE = "\nArguments: \n\n"
                              "<testGroup> { <args> } \n"
                              "<testGroup> -perf <fileName>\n"
                              "<testGroup> -dumpLeaks { <args> }\n"
                              "<testGroup> -dumpLibs { <args> }\n"
                              "<testGroup> -detectLeaks { <args> }\n";

// The name is frozen, see docs/compatibility.md.
constexpr DbgBuildText SUITE = {"RV Test Suite",
                                1,
                                0,
                                "Internal",
                                "N/A",
                                "[No Prod. #]",
                                "[No Prod. #]",
                                __DATE__,
                                "WinNT_ostore_release",
                                DbgBuildText::UNKNOWN,
                                DbgBuildText::UNKNOWN};

class TestSuiteBuildInfo : public DbgTextBuildInfo
{
public:
    TestSuiteBuildInfo() : DbgTextBuildInfo(SUITE) {}
};

using Words = std::vector<std::string>;

void registerProgram()
{
    DbgBuildInfoMgr::registerAppInfo(ObjPtr<DbgBuildInfo>(new TestSuiteBuildInfo));
    PlainTextStream text;
    text << "Registered versioned libraries:\n";
    DbgBuildInfoMgr::printBuildInfo(text, false);
    DbgBuildInfoLog::log(LgTypes::Informational, text.str());
}

bool isInstrumented(const std::string& program)
{
    if (program.empty()) return false;
    const OsFilePath name = OsFilePath(program.c_str()).getBaseName();
    return std::strstr(name.getChars(), ".pixie") != nullptr;
}

int showUsage()
{
    testPrint(USAGE);
    TestGroup::printInstances();
    return SUCCESS;
}

int runPerformance(const Words& args)
{
    if (args.size() < 3)
    {
        TestInform::abnormalTermination(USAGE);
        return UNKNOWN;
    }
    TestPerformer& performer = TestPerformer::getInstance();
    performer.execute(OsFilePath(args[2].c_str()));
    PlainTextStream report;
    report << performer;
    testPrint(report.str());
    return SUCCESS;
}

void dumpLibraries()
{
    ZU_TRACE(Main, "Loaded Libraries:");
    LmLibraries::dumpList();
}

// What the words before the group's name request.
struct Choice
{
    explicit Choice(const std::string& word)
        : _leakCheck(word == "-dumpLeaks" || word == "-detectLeaks"),
          _stackDump(word != "-detectLeaks"), _dumpLibs(word == "-dumpLibs"),
          _index(_leakCheck || _dumpLibs ? 2 : 1)
    {
        if (_leakCheck && !HmGC::isMemDebugLoaded())
            ZU_TRACE(Main, "Warning: " << word
                                       << " specified but MemDebug version of smartheap is not "
                                          "loaded");
    }

    bool _leakCheck;
    bool _stackDump;
    bool _dumpLibs;
    // The index of the group's name.
    std::size_t _index;
};

// The words from an index on, followed by a null, as `main` gets them.
class Arguments
{
public:
    Arguments(Words& args, std::size_t begin)
    {
        for (std::size_t i = begin; i < args.size(); ++i) _words.push_back(args[i].data());
        _words.push_back(nullptr);
    }

    int count() const
    {
        return static_cast<int>(_words.size()) - 1;
    }

    char** words()
    {
        return _words.data();
    }

private:
    std::vector<char*> _words;
};

// An exception that the collector raises at its end belongs to the run.
void runWithLeakCheck(bool stackDump, TestGroup& group, Arguments& arguments)
{
    HmGC collector;
    if (!stackDump) collector.setStackDump(false);
    collector.setThrowException(true);
    group.run(arguments.count(), arguments.words());
}

// Whether it ran without a reported leak.
bool run(const Choice& choice, TestGroup& group, Arguments& arguments)
{
    if (!choice._leakCheck)
    {
        group.run(arguments.count(), arguments.words());
        return true;
    }
    try
    {
        runWithLeakCheck(choice._stackDump, group, arguments);
        return true;
    }
    catch (const HmGCEx::ExGarbageDetected&)
    {
        return false;
    }
}

void traceStart(TestGroup& group)
{
    if (!group.getPrintHeaders()) return;
    ZU_TRACE(Main, "");
    ZU_TRACE(Main, "Executing " << group.getName());
    ZU_TRACE(Main, "");
}

void traceEnd(TestGroup& group)
{
    if (!group.getPrintHeaders()) return;
    TestGroup::caseHeader("End");
    ZU_TRACE(Main, "Test group executed successfully.");
    ZU_TRACE(Main, "");
}

int runGroup(Words& args)
{
    const Choice choice(args[1]);
    TestGroup* const group =
        choice._index < args.size() ? TestGroup::getInstance(args[choice._index].c_str()) : nullptr;
    if (!group)
    {
        TestInform::abnormalTermination("Unknown test group name.");
        return UNKNOWN;
    }
    traceStart(*group);
    Arguments arguments(args, choice._index + (group->getGroupNameInArgs() ? 0 : 1));
    group->prepare(arguments.count(), arguments.words());
    if (!run(choice, *group, arguments)) return LEAK;
    group->terminate();
    traceEnd(*group);
    if (choice._dumpLibs) dumpLibraries();
    return SUCCESS;
}

int perform(Words& args)
{
    TestMgr::setIsPixified(!args.empty() && isInstrumented(args[0]));
    if (args.size() <= 1) return showUsage();
    if (args[1] == "-perf") return runPerformance(args);
    if (args.size() == 2 && args[1] == "-dumpLibs")
    {
        dumpLibraries();
        return SUCCESS;
    }
    return runGroup(args);
}

int startAndPerform(int argc, char** argv)
{
    const InInitGuard guard(argc, argv);
    // Packages that have stopped can't be started again, and there is nothing left to report to.
    if (!DbgBuildInfoLog::isStarted())
        testThrow(ExInternalError(__FILE__, __LINE__,
                                  "The packages have stopped: tests run once in a process."),
                  __FILE__, __LINE__);
    const Vector<char*>& given = InContextAliasMgrBase::getUnboundArgs();
    Words args(given.begin(), given.end());
    registerProgram();
    return perform(args);
}

} // namespace

int TestMgr::runTest(int argc, char** const argv)
{
    TestHandlers::install();
    try
    {
        return startAndPerform(argc, argv);
    }
    catch (const ExBase& ex)
    {
        TestInform::exceptionEncountered(ex.getDetailedReason());
    }
    catch (const std::exception& ex)
    {
        const std::string text =
            std::string("[Exception Type = ") + typeName(typeid(ex)) + "]\n" + ex.what() + "\n";
        TestInform::exceptionEncountered(text.c_str());
    }
    catch (...)
    {
        TestInform::exceptionEncountered("Unknown exception.");
    }
    return RAISED;
}

void TestMgr::setIsPixified(bool isPixified)
{
    TestGroup::setIsPixified(isPixified);
}

} // namespace Zu
