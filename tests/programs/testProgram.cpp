// A program of test groups, for the tests of the test framework. Its groups print how they are
// called; the words behind a group's name select what it does.

#include "base/dbgBuildInfoMgr.h"
#include "base/exInternalError.h"
#include "base/hmGCEx.h"
#include "base/inContextAlias.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/inVariable.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "base/lgRegistry.h"
#include "base/osEnv.h"
#include "base/osFilePath.h"
#include "base/testDir.h"
#include "base/testGroup.h"
#include "base/testInform.h"
#include "base/testMgr.h"
#include "base/trace.h"
#include "base/traceManager.h"

#include <chrono>
#include <cstdlib>
#include <deque>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>

struct clientTag
{
};

namespace
{

using Zu::TestGroup;

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

bool isSet(const char* variable)
{
    return Zu::OsEnv::getVariable(variable) != nullptr;
}

// The logger's queue, while the program makes the logger active.
std::unique_ptr<Zu::LgQueue> theQueue;

void activateLogger()
{
    theQueue = std::make_unique<Zu::LgQueue>();
    Zu::LgLog::getRegistry()->registerQueue(theQueue.get());
    Zu::LgLog::setQueueFunction([] { return theQueue.get(); });
    Zu::LgLog::setLoggerActivation(true);
}

void deactivateLogger()
{
    Zu::LgLog::setLoggerActivation(false);
    Zu::LgLog::setQueueFunction(nullptr);
    Zu::LgReader().flushAll();
    Zu::LgLog::getRegistry()->deregisterQueue(theQueue.get());
    theQueue.reset();
}

} // namespace

// A package above all of the library's; it reports its start and stop on demand.
template <> Zu::InInit<clientTag>::InInit() : InPackageInit("client")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
    addDependency(InInit<ZuInit::testing>::getType());
}

template <> void Zu::InInit<clientTag>::performInitialize()
{
    if (isSet("TEST_PROGRAM_TELLS")) say("packages start");
    if (isSet("TEST_PROGRAM_LOGS")) activateLogger();
}

template <> void Zu::InInit<clientTag>::performFinalize()
{
    if (isSet("TEST_PROGRAM_TELLS")) say("packages stop");
}

namespace
{

Zu::InInit<clientTag> thePackage;

Zu::InArgAlias sizeOption("z:", "size, from an option");
Zu::InDefAlias sizeDefault("10", "usual size");
Zu::InVariable<int> size("test::size", thePackage, sizeOption, sizeDefault);

// Prints the words with which an operation was called.
void tellCall(const std::string& operation, int argc, char** const argv)
{
    std::string text = operation + " " + std::to_string(argc);
    for (int i = 0; i < argc; ++i) text += std::string(" '") + argv[i] + "'";
    say(text + (argv[argc] ? " no null" : " null"));
}

// Prints each call with its words.
class Arguments : public TestGroup
{
public:
    explicit Arguments(const char* name) : TestGroup(name) {}

    void prepare(int argc, char** const argv) override
    {
        tellCall("prepare", argc, argv);
    }

    void run(int argc, char** const argv) override
    {
        tellCall("run", argc, argv);
    }

    void terminate() override
    {
        say("terminate");
    }
};

Arguments arguments("arguments");

class Named : public Arguments
{
public:
    Named() : Arguments("named")
    {
        setGroupNameInArgs(true);
    }
} theNamed;

class Quiet : public Arguments
{
public:
    Quiet() : Arguments("quiet")
    {
        setPrintHeaders(false);
    }
} theQuiet;

// Has only the required operation.
class Bare : public TestGroup
{
public:
    explicit Bare(const char* name) : TestGroup(name) {}

    void run(int, char** const) override {}
};

Bare theBare("bare");

// The longest name that a performance file may contain, and one that is a character longer.
const std::string NAME_OF_47(47, 'n');
const std::string NAME_OF_48(48, 'n');
Bare theBareOf47(NAME_OF_47.c_str());
Bare theBareOf48(NAME_OF_48.c_str());

class Described : public Bare
{
public:
    Described(const char* name, const char* usage, const char* description) : Bare(name)
    {
        setUsage(usage);
        setDescription(description);
    }
};

Described theDescribed("described", "{ <words> }", "Does nothing.\nAnd that in two lines.");
Described theUntitled(nullptr, "-x", nullptr);
Described theOtherUntitled(nullptr, nullptr, "Has no name.");
// Is not registered.
Described theCopy(theDescribed);

// Raises something in one of its operations: failing <operation> <what>.
class Failing : public TestGroup
{
public:
    Failing() : TestGroup("failing") {}

    void prepare(int argc, char** const argv) override
    {
        if (argc == 2)
        {
            _operation = argv[0];
            _what = argv[1];
        }
        enter("prepare");
    }

    void run(int, char** const) override
    {
        enter("run");
    }

    void terminate() override
    {
        enter("terminate");
    }

private:
    void enter(const std::string& operation) const
    {
        say(operation);
        if (operation == _operation) raise();
    }

    void raise() const
    {
        if (_what == "family") throw Zu::ExInternalError("dir/thrown.cpp", 7, "why 100%s");
        if (_what == "standard") throw std::out_of_range("why 100%s");
        if (_what == "number") throw 7;
        if (_what == "leak") throw Zu::HmGCEx::ExGarbageDetected("dir/thrown.cpp", 7);
    }

    std::string _operation;
    std::string _what;
} theFailing;

// Ends the process in the way that its word selects.
class Abnormal : public TestGroup
{
public:
    Abnormal() : TestGroup("abnormal") {}

    void run(int, char** const argv) override
    {
        const std::string way = argv[0];
        if (way == "terminate") std::terminate();
        if (way == "abort") std::abort();
        if (way == "noexcept") raiseWhereNothingMay();
        if (way == "thread") std::thread([] { throw 7; }).join();
    }

    void terminate() override
    {
        say("terminate");
    }

private:
    static void raiseWhereNothingMay() noexcept
    {
        throwAny();
    }

    static void throwAny()
    {
        throw std::runtime_error("why");
    }
} theAbnormal;

// Counts its calls, and shows the numbers as the result of a cycle.
class Counting : public TestGroup
{
public:
    Counting() : TestGroup("counting") {}

    void prepare(int argc, char** const argv) override
    {
        tellCall("prepare " + std::to_string(++_prepared), argc, argv);
    }

    void run(int argc, char** const argv) override
    {
        tellCall("run " + std::to_string(++_run), argc, argv);
    }

    void terminate() override
    {
        say("terminate " + std::to_string(++_terminated));
    }

    void dump(std::ostream& os) override
    {
        os << "dump of " << _prepared << ", " << _run << ", " << _terminated;
    }

private:
    int _prepared = 0;
    int _run = 0;
    int _terminated = 0;
} theCounting;

// Takes at least twenty milliseconds, and does nothing else.
class Spinning : public TestGroup
{
public:
    Spinning() : TestGroup("spinning") {}

    void run(int, char** const) override
    {
        const auto start = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(20)) continue;
    }
} theSpinning;

void tellApplication()
{
    const Zu::DbgBuildInfo& info = Zu::DbgBuildInfoMgr::getAppInfo();
    say(info.getApiName());
    say(std::to_string(info.getMajorVersion()));
    say(std::to_string(info.getMinorVersion()));
    say(info.getVersionLabel());
    for (const bool verbose : {false, true})
    {
        say(info.getLibraryName(verbose));
        say(info.getBuildStamp(verbose));
        say(info.getBuildDate(verbose));
        say(info.getBuildConfiguration(verbose));
        say(info.getBuiltBy(verbose));
        say(info.getBuildNotes(verbose));
    }
}

std::deque<std::string> words;

std::string nextWord()
{
    const std::string word = words.front();
    words.pop_front();
    return word;
}

void report(void (*operation)(const char*))
{
    const std::string word = nextWord();
    operation(word.c_str());
}

const std::map<std::string, std::function<void()>> commands = {
    {"abnormal", [] { report(Zu::TestInform::abnormalTermination); }},
    {"application", tellApplication},
    {"banner", [] { Zu::DbgBuildInfoMgr::printBuildInfo(std::cout, false); }},
    {"default", [] { say(Zu::TestDir::getDefaultPath().getChars()); }},
    {"exception", [] { report(Zu::TestInform::exceptionEncountered); }},
    {"flush", deactivateLogger},
    {"header", [] { report(TestGroup::caseHeader); }},
    {"levels", [] { Zu::Trace::printLevels(std::cout); }},
    {"log", [] { report(TestGroup::log); }},
    {"notPerformed", [] { report(Zu::TestInform::testNotPerformed); }},
    {"options", [] { report(Zu::Trace::setOptions); }},
    {"pixified", [] { say(TestGroup::isPixified() ? "pixified" : "not pixified"); }},
    {"size", [] { say(std::to_string(size.getValue())); }},
    {"tempDir", [] { say(Zu::OsFilePath::getTempDir().getChars()); }},
    {"variable", [] { report(Zu::OsEnv::putVariable); }},
};

// Carries out commands.
class Commands : public TestGroup
{
public:
    Commands() : TestGroup("commands")
    {
        setPrintHeaders(false);
    }

    void run(int argc, char** const argv) override
    {
        words.assign(argv, argv + argc);
        while (!words.empty()) commands.at(nextWord())();
    }
} theCommands;

} // namespace

int main(int argc, char** argv)
{
    const int result = Zu::TestMgr::runTest(argc, argv);
    if (!isSet("TEST_PROGRAM_TWICE")) return result;
    std::cout << "first " << result << '\n';
    return Zu::TestMgr::runTest(argc, argv);
}
