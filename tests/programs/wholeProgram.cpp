// A process like an application of the library: its own packages between and after those of the
// library, an event on its way through the logger, and singletons at the end of the process. The
// variable WHOLE_STORY selects the scenario; the program prints what happens.

#include "base/dbgBuildInfoMgr.h"
#include "base/dtRefTime.h"
#include "base/exInternalError.h"
#include "base/hmHeapMgr.h"
#include "base/hwCounter.h"
#include "base/inContextAlias.h"
#include "base/inContextAliasMgrBase.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/inInitMgr.h"
#include "base/inSingleton.h"
#include "base/inSingleton.imp"
#include "base/inSingletonEx.h"
#include "base/inVariable.h"
#include "base/lgEvent.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgMajorGroup.h"
#include "base/lgReader.h"
#include "base/lgRegistry.h"
#include "base/osCpuInfo.h"
#include "base/osMemoryArch.h"
#include "base/osSharedLib.h"
#include "base/periodicTimer.h"
#include "base/sleeper.h"
#include "base/testPerformer.h"
#include "base/trace.h"
#include "base/traceManager.h"

#include "support/platform.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <typeinfo>
#include <utility>
#include <vector>

ZU_DEFINE_LOG_GROUP(Road);

namespace
{

using Zu::HwCounter;
using Zu::LgLog;
using Zu::LgQueue;
namespace LgTypes = Zu::LgTypes;

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

// At the very end of the process, uses everything that lives until then.
class LastWord
{
public:
    LastWord() = default;
    LastWord(const LastWord&) = delete;
    LastWord& operator=(const LastWord&) = delete;
    ~LastWord()
    {
        if (_act) _act("static destructor");
    }

    void (*_act)(const char* when) = nullptr;
};

// The first static object of the program, and so the last one to be destroyed.
LastWord theLastWord;

// What a package of the program owns while it is up.
class Ledger
{
public:
    Ledger()
    {
        ++_living;
    }
    Ledger(const Ledger&) = delete;
    Ledger& operator=(const Ledger&) = delete;
    ~Ledger()
    {
        --_living;
    }

    static inline int _living = 0;
};

struct wholeTag
{
};

class Probe;

// Is notified when a package of the program starts or stops.
std::function<void(Probe& probe, const char* what)> theWatcher;

Zu::InDefAlias wordDefault("compiled", "word that is compiled in");
Zu::InEnvAlias wordEnv("WHOLE_WORD", "word from the environment");
Zu::InArgAlias wordOption("w:", "word from an option");

using Types = std::vector<const std::type_info*>;

// A package with a variable for each source of values.
class Probe : public Zu::InPackageInit
{
public:
    void performInitialize() override
    {
        if (theWatcher) theWatcher(*this, "up");
    }
    void performFinalize() override
    {
        if (theWatcher) theWatcher(*this, "down");
    }
    void setInitialized(bool) override {}

    ~Probe() override
    {
        --_living;
    }

    // The values of its variables, with a dash for none.
    std::string values() const
    {
        return valueOf(_byDefault) + " " + valueOf(_byEnvironment) + " " + valueOf(_byOption) +
               " " + valueOf(_forced);
    }

    bool hasValue() const
    {
        return _byDefault.isValid();
    }

    std::string forcedHandle() const
    {
        return _forced.getHandle();
    }

    // All of them; they live until the process ends.
    static std::vector<Probe*>& all()
    {
        static auto* const probes = new std::vector<Probe*>;
        return *probes;
    }

    static inline int _living = 0;

protected:
    Probe(const char* name, const Types& dependencies)
        : InPackageInit(name), _byDefault(handle(name, "default").c_str(), *this, wordDefault),
          _byEnvironment(handle(name, "environment").c_str(), *this, wordEnv),
          _byOption(handle(name, "option").c_str(), *this, wordOption),
          _forced(handle(name, "forced").c_str(), *this, Zu::InVariableBase::_dummy),
          _types(dependencies)
    {
        all().push_back(this);
        ++_living;
    }

    // For the constructor of the package itself, whose type is known then.
    void declare()
    {
        registerPackage();
        for (const std::type_info* type : _types) addDependency(type);
    }

private:
    using InPackageInit::addDependency;
    using Variable = Zu::InVariable<const char*>;

    static std::string handle(const char* package, const char* leaf)
    {
        return std::string("whole::") + package + "::" + leaf;
    }

    static std::string valueOf(const Variable& variable)
    {
        return variable.isValid() ? variable.getValue() : "-";
    }

    Variable _byDefault;
    Variable _byEnvironment;
    Variable _byOption;
    Variable _forced;
    Types _types;
};

// Packages are identified by their types, so each number makes one.
template <int Number> class NumberedProbe : public Probe
{
public:
    explicit NumberedProbe(const char* name, const Types& dependencies = {})
        : Probe(name, dependencies)
    {
        declare();
    }
};

template <class Tag> const std::type_info* typeOf()
{
    return Zu::InInit<Tag>::getType();
}

// Each of these starts right after the library's package that it is named after: it depends on as
// many packages, and its name is the next one.
NumberedProbe<0> theEarliest("Earliest");
NumberedProbe<1> afterInitialize("initialize~");
NumberedProbe<2> afterHeapMgr("heapMgr~", {typeOf<ZuInit::initialize>()});
NumberedProbe<3> afterInitArg("initArg~", {typeOf<ZuInit::initialize>()});
NumberedProbe<4> afterOsal("osal~", {typeOf<ZuInit::initialize>()});
NumberedProbe<5> afterInitVars("initVars~",
                               {typeOf<ZuInit::initialize>(), typeOf<ZuInit::initArg>()});
NumberedProbe<6> afterProfiling("profiling~",
                                {typeOf<ZuInit::initialize>(), typeOf<ZuInit::osal>()});
NumberedProbe<7> afterLogger("logger~", {typeOf<ZuInit::initialize>(), typeOf<ZuInit::osal>(),
                                         typeOf<ZuInit::profiling>()});
NumberedProbe<8> afterDebugging("debugging~",
                                {typeOf<ZuInit::initArg>(), typeOf<ZuInit::logger>()});
NumberedProbe<9> afterBaseMath("baseMath~", {typeOf<ZuInit::debugging>()});
NumberedProbe<10> afterRandom("random~", {typeOf<ZuInit::debugging>()});
NumberedProbe<11> afterDiscreteTime("discreteTime~",
                                    {typeOf<ZuInit::baseMath>(), typeOf<ZuInit::debugging>()});
NumberedProbe<12> afterTesting("testing~",
                               {typeOf<ZuInit::baseMath>(), typeOf<ZuInit::debugging>()});
NumberedProbe<13> afterBase("base~", {typeOf<ZuInit::initialize>(), typeOf<ZuInit::heapMgr>(),
                                      typeOf<ZuInit::initArg>(), typeOf<ZuInit::osal>(),
                                      typeOf<ZuInit::initVars>(), typeOf<ZuInit::profiling>(),
                                      typeOf<ZuInit::logger>(), typeOf<ZuInit::debugging>(),
                                      typeOf<ZuInit::baseMath>(), typeOf<ZuInit::random>(),
                                      typeOf<ZuInit::discreteTime>(), typeOf<ZuInit::testing>()});

// A regular client. Its name is the first of all, and yet it starts after the library.
class Client : public Probe
{
public:
    Client() : Probe("Client", {typeOf<ZuInit::base>()})
    {
        declare();
    }

    void performInitialize() override
    {
        ZU_START_LOG_GROUP("Roads", Road);
        Zu::InSingleton<Ledger>::create(new Ledger);
        Probe::performInitialize();
    }

    void performFinalize() override
    {
        Probe::performFinalize();
        Zu::InSingleton<Ledger>::destroy();
        ZU_STOP_LOG_GROUP(Road);
    }
};

Client theClient;

int theArgc;
char** theArgv;

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

template <class T> bool isAlive()
{
    try
    {
        T::getInstance();
        return true;
    }
    catch (const Zu::InSingletonEx::ExNotInitialized&)
    {
        return false;
    }
}

bool areGroupsThere()
{
    try
    {
        Zu::LgMajorGroup::getInstanceForName("Roads");
        return true;
    }
    catch (const Zu::ExInternalError&)
    {
        return false;
    }
}

bool isProcessorKnown()
{
    Zu::OsCpuInfo::Type type = Zu::OsCpuInfo::UNKNOWN;
    Zu::OsCpuInfo::getDetailedType(&type, nullptr, nullptr, nullptr);
    // Where the type is unknown, the frequency must not be queried.
    return type != Zu::OsCpuInfo::UNKNOWN && Zu::OsCpuInfo::hasSSE() &&
           Zu::OsCpuInfo::getHwCounterFrequency() > 0;
}

bool isVariableSet(const char* handle)
{
    const Zu::InVariableBase* const variable = Zu::InVariableBase::queryViaHandle(handle);
    return variable && variable->isValid();
}

bool isRecordThere()
{
    std::ostringstream report;
    Zu::DbgBuildInfoMgr::printBuildInfo(report, false);
    return report.str().find("libZUbase") != std::string::npos;
}

// What the packages have prepared, as far as it can be observed.
std::string readiness()
{
    const std::pair<const char*, bool> facts[] = {
        {"heap", isAlive<Zu::HmHeapMgr>()},
        {"processor", isProcessorKnown()},
        {"sleeper", isAlive<Zu::Sleeper>()},
        {"outputs", LgLog::getLevelOutput(LgTypes::Warning) != nullptr},
        {"groups", areGroupsThere()},
        {"switches", isVariableSet("Zu::Corvane::debugging::buildInfoNoValidate") &&
                         isVariableSet("Zu::Corvane::debugging::buildInfoCheckStamps")},
        {"record", isRecordThere()},
        {"ledger", isAlive<Zu::InSingleton<Ledger>>()},
    };
    std::string text;
    for (const auto& [name, holds] : facts)
        if (holds) text += std::string(" ") + name;
    return text.empty() ? " nothing" : text;
}

void showCommandLine()
{
    std::string words;
    for (const char* word : Zu::InContextAliasMgrBase::getUnboundArgs())
        words += std::string(" '") + std::filesystem::path(word).stem().string() + "'";
    say("words:" + words + ", unused override " +
        (Zu::InVariableBase::isOverridden("whole::unused") ? "waits" : "gone"));
}

void showPackages()
{
    std::ostringstream dump;
    Zu::InInitMgr::getInstance().dump(dump);
    std::string first;
    std::getline(std::istringstream(dump.str()) >> std::ws, first);
    say(first);
}

void showStage(Probe& probe, const char* what)
{
    const auto count = std::count_if(Probe::all().begin(), Probe::all().end(),
                                     [](const Probe* any) { return any->hasValue(); });
    say(std::string(probe.getName()) + " " + what + ": values " + probe.values() + " (" +
        std::to_string(count) + "), ready:" + readiness());
    // The resolution may only be queried after the engine was made.
    if (&probe == &afterProfiling) say(HwCounter::resolution() > 0 ? "engine" : "no engine");
    if (&probe == &theEarliest || &probe == &afterHeapMgr || &probe == &afterInitArg ||
        &probe == &theClient)
        showCommandLine();
}

void startAndStop()
{
    say("static objects, ready:" + readiness());
    showPackages();
    for (const Probe* probe : Probe::all())
        Zu::InVariableBase::overrideViaHandle(probe->forcedHandle().c_str(), "forced", "by main");
    Zu::InVariableBase::overrideViaHandle("whole::unused", "1", "for nobody");
    theWatcher = showStage;
    {
        const Zu::InInitGuard guard(theArgc, theArgv);
        say("main, ready:" + readiness());
        showPackages();
    }
    say("end, ready:" + readiness() + ", values " + theClient.values());
    showCommandLine();
    say("packages living " + std::to_string(Probe::_living) + " of " +
        std::to_string(Probe::all().size()));
}

void loadModule()
{
    theWatcher = [](Probe& probe, const char* what)
    {
        if (&probe == &theClient) say(std::string("whole ") + what);
    };
    const Zu::InInitGuard guard(theArgc, theArgv);
    {
        const Zu::InReinitGuard outer;
        {
            const Zu::InReinitGuard middle;
            {
                const Zu::InReinitGuard inner;
                Zu::OsSharedLib::open(Zu::OsFilePath(variable("WHOLE_MODULE").c_str()));
                say("loaded");
            }
            say("inner guard ended");
        }
        say("middle guard ended");
    }
    say("outer guard ended");
}

thread_local LgQueue* theQueue = nullptr;

// The queues live until the program ends.
LgQueue& makeQueue(std::uint32_t threadId)
{
    theQueue = new LgQueue(threadId);
    static auto* const queues = new std::vector<LgQueue*>;
    queues->push_back(theQueue);
    LgLog::getRegistry()->registerQueue(theQueue);
    LgLog::setQueueFunction([] { return theQueue; });
    return *theQueue;
}

std::string fileOf(const char* name)
{
    std::ifstream stream(variable(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// How many events are in the file of a level, given by its variable.
std::string eventsIn(const char* name)
{
    const std::string text = fileOf(name);
    int count = 0;
    for (std::size_t at = text.find("Road "); at != std::string::npos;
         at = text.find("Road ", at + 1))
        ++count;
    return std::to_string(count);
}

int theFormatted = 0;

const char* formatted(const char* text)
{
    ++theFormatted;
    return text;
}

void showRoad(const LgQueue& queue, const std::string& where)
{
    say(where + ": formatted " + std::to_string(theFormatted) + ", waiting " +
        (queue.isEmpty() ? "no" : "yes") + ", in the file " + eventsIn("WHOLE_FILE"));
}

// Prints whether lines are written under the lock: only its holder can release it.
class LockWatch : public LgQueue::Observer
{
public:
    void entryAdded(LgQueue&) override
    {
        say("published");
    }
    void entryRemoved(LgQueue&) override
    {
        Zu::LgInterProcessLock* const lock = LgLog::getInterProcessLock();
        lock->unlock();
        say("written under the lock, in the file " + eventsIn("WHOLE_FILE"));
        lock->lock();
    }
    void waitForSpace(const LgQueue&, int) override {}
};

void showEntry(const LgQueue& queue, std::uint64_t from, std::uint64_t to)
{
    const LgQueue::Entry& entry = queue.readEntry();
    const bool isWithin = from <= entry.getTimeStamp() && entry.getTimeStamp() <= to;
    say("entry of level " + std::to_string(entry.getLevel()) + (isWithin ? " in" : " out of") +
        " time, with " + std::to_string(queue.getStream().getNextSize()) + " characters");
}

// The path of one event, step by step.
void takeTheRoad()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    LgQueue& queue = makeQueue(0xabc);
    for (const bool isActive : {false, true})
    {
        LgLog::setLoggerActivation(isActive);
        ZU_LOG_INFORMATIONAL(Road, formatted("of a level that is off"));
        showRoad(queue, "level off");
    }

    LgLog::setLoggerActivation(false);
    ZU_LOG_WARNING(Road, formatted("straight ") << 1);
    ZU_LOG_PROFILING(Road, "profiled");
    showRoad(queue, "inactive");

    LgLog::setLoggerActivation(true);
    queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new LockWatch));
    const std::uint64_t from = HwCounter::timeStamp();
    ZU_LOG_WARNING(Road, formatted("queued ") << 2);
    const std::uint64_t to = HwCounter::timeStamp();
    showRoad(queue, "active");
    showEntry(queue, from, to);
    ZU_LOG_PROFILING(Road, "profiled");

    std::thread(
        [&queue]
        {
            Zu::LgReader reader;
            while (reader.flushEarliest()) showRoad(queue, "flushed");
        })
        .join();
    LgLog::getInterProcessLock()->lock();
    LgLog::getInterProcessLock()->unlock();
    say("the lock is free");
}

// What a log statement does, by hand.
void walkByHand()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    LgQueue& queue = makeQueue(0xabc);
    LgLog::setLoggerActivation(true);
    const auto* const road = LgGroups::MinorLevelRoad;
    say(std::string("enabled ") + (road->isLevelEnabled(LgTypes::Informational) ? "yes" : "no") +
        " " + (road->isLevelEnabled(LgTypes::Warning) ? "yes" : "no"));

    Zu::LgReader reader;
    const auto showWaiting = [&](const char* what)
    { say(std::string(what) + (reader.eventsPending() ? ": event" : ": no event")); };
    const std::uint64_t from = HwCounter::timeStamp();
    say(LgLog::getQueue().reserveEntry(LgTypes::Warning) ? "reserved" : "lost");
    const std::uint64_t to = HwCounter::timeStamp();
    showWaiting("reserved");
    queue.getStream() << road->getName() << ' ' << "by hand";
    showWaiting("inserted");
    queue.getStream() << Zu::ends;
    showWaiting("ended");
    say(reader.flushEarliest() ? "flushed" : "nothing to flush");
    // The time until the publication must not count for the event.
    while (HwCounter::timeStamp() <= to) continue;
    queue.addEntry();
    showWaiting("published");
    showEntry(queue, from, to);

    // The rest of the queue, and two more.
    int reserved = 1;
    while (LgLog::getQueue().reserveEntry(LgTypes::Warning))
    {
        queue.getStream() << "fills" << Zu::ends;
        queue.addEntry();
        ++reserved;
    }
    LgLog::getQueue().reserveEntry(LgTypes::Warning);
    say("room for " + std::to_string(reserved) + ", lost " + std::to_string(queue.getLostCount()));
    reader.flushAll();
}

// Two threads produce in turns, each into its queue; a third one reads.
void produceInTwoThreads()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    LgLog::setLoggerActivation(true);
    const std::string turns = "abbabaab";
    std::vector<std::string> spans(turns.size());
    std::atomic<std::size_t> turn = 0;
    // The queue that is registered first has the later event at its head.
    std::atomic<int> entered = 0;
    const auto produce = [&](char letter)
    {
        const int place = letter == 'b' ? 0 : 1;
        while (entered != place) std::this_thread::yield();
        makeQueue(letter == 'a' ? 0xa : 0xb);
        ++entered;
        while (entered != 2) std::this_thread::yield();
        for (std::size_t i = 0; i < turns.size(); ++i)
        {
            if (turns[i] != letter) continue;
            while (turn != i) std::this_thread::yield();
            const std::uint64_t from = HwCounter::timeStamp();
            while (HwCounter::timeStamp() == from) continue;
            if (i % 3 == 0)
                ZU_LOG_ERROR(Road, letter << " at " << static_cast<int>(i));
            else
                ZU_LOG_WARNING(Road, letter << " at " << static_cast<int>(i));
            const std::uint64_t to = HwCounter::timeStamp();
            spans[i] = std::to_string(from - LgLog::getStart()) + " " +
                       std::to_string(to - LgLog::getStart());
            ++turn;
        }
    };
    std::thread a(produce, 'a');
    std::thread b(produce, 'b');
    a.join();
    b.join();
    for (const std::string& span : spans) say("span " + span);
    std::thread(
        []
        {
            Zu::LgReader reader;
            while (reader.flushEarliest())
                say("warnings " + eventsIn("WHOLE_FILE") + ", errors " +
                    eventsIn("WHOLE_ERROR_FILE"));
        })
        .join();
}

// While another process holds the lock the reader waits, but the producers do not.
void produceUnderAForeignLock()
{
    const Zu::InInitGuard guard(theArgc, theArgv);
    LgQueue& queue = makeQueue(0xabc);
    LgLog::setLoggerActivation(true);
    const std::unique_ptr<Zu::LgInterProcessLock> lock(
        Zu::LgInterProcessLock::create(variable("ZU_INTERNAL_INTERPROCESS_LOG_LOCK").c_str()));
    lock->lock();
    ZU_LOG_WARNING(Road, "before the reader");
    std::thread reader([] { Zu::LgReader().flushAll(); });
    for (int i = 0; i < 2000; ++i) ZU_LOG_WARNING(Road, i);
    say("lost " + std::to_string(queue.getLostCount()) + ", in the file " + eventsIn("WHOLE_FILE"));
    lock->unlock();
    reader.join();
    Zu::LgReader().flushAll();
    say("released, in the file " + eventsIn("WHOLE_FILE"));
}

void leaveEvents(bool isFlushed)
{
    theWatcher = [isFlushed](Probe& probe, const char* what)
    {
        if (&probe != &theClient || what != std::string("down")) return;
        ZU_LOG_WARNING(Road, "the client stops");
        if (isFlushed) Zu::LgReader().flushAll();
    };
    LgQueue* queue = nullptr;
    {
        const Zu::InInitGuard guard(theArgc, theArgv);
        queue = &makeQueue(0xabc);
        LgLog::setLoggerActivation(true);
        ZU_LOG_WARNING(Road, "main");
    }
    say(queue->isEmpty() ? "nothing waits" : "events wait");
}

void countThreads()
{
    // With the first one, a sanitizer may start a thread of its own.
    std::thread([] {}).join();
    const std::size_t atFirst = support::threadCount();
    const auto compare = [&](const char* what)
    {
        const std::size_t now = support::threadCount();
        say(std::string(what) + ": " +
            (now == atFirst ? "no more"
             : now == atFirst + 1
                 ? "one more"
                 : "from " + std::to_string(atFirst) + " to " + std::to_string(now)));
    };
    const Zu::InInitGuard guard(theArgc, theArgv);
    compare("started");
    makeQueue(0xabc);
    LgLog::setLoggerActivation(true);
    ZU_LOG_WARNING(Road, "text");
    Zu::LgReader().flushAll();
    compare("logged");
    Zu::Sleeper::getInstance().sleep(0.002);
    compare("slept");
    {
        const std::unique_ptr<Zu::PeriodicTimer> timer(Zu::PeriodicTimer::create(0.01));
        timer->start();
        timer->wait();
        compare("waited for a beat");
        timer->stop();
    }
    compare("stopped the beat");
    // Shows that the count notices a thread.
    std::thread([&] { compare("with a thread of the program"); }).join();
}

// Objects that live until the process ends, with their first addresses.
struct Lasting
{
    const Zu::TraceLevel* _level;
    const Zu::TraceManager* _manager;
    const Zu::DtRefTimeFactory* _factory;
    const Zu::OsMemoryArch* _memory;
    const Zu::TestPerformer* _performer;
    int _pageSize;
    double _resolution;
    std::uint64_t _ticks;
    Zu::DtTimeIndex _count;
};

Lasting findLasting()
{
    return {Zu::Trace::registerLevel("Lasting", nullptr),
            &Zu::TraceManager::getInstance(),
            &Zu::DtRefTimeFactory::getInstance(),
            &Zu::OsMemoryArch::getInstance(),
            &Zu::TestPerformer::getInstance(),
            Zu::OsMemoryArch::getInstance().getPageSize(),
            HwCounter::resolution(),
            HwCounter::timeStamp(),
            Zu::DtRefTimeFactory::getInstance().create().getCount()};
}

Lasting theLasting;

void useLasting(const char* when)
{
    const Lasting now = findLasting();
    std::ostringstream table;
    table << *now._performer;
    const std::pair<const char*, bool> facts[] = {
        {"options", now._level == theLasting._level && Zu::Trace::isEnabled(*now._level)},
        {"manager", now._manager == theLasting._manager},
        {"clock", now._factory == theLasting._factory && now._count >= theLasting._count},
        {"memory", now._memory == theLasting._memory && now._pageSize == theLasting._pageSize},
        {"performer", now._performer == theLasting._performer && !table.str().empty()},
        {"counter", now._resolution == theLasting._resolution && now._ticks >= theLasting._ticks},
        {"sleeper", isAlive<Zu::Sleeper>()},
        {"heap", isAlive<Zu::HmHeapMgr>()},
        {"ledger", isAlive<Zu::InSingleton<Ledger>>() && Ledger::_living == 1},
    };
    std::string text;
    for (const auto& [name, holds] : facts)
        if (holds) text += std::string(" ") + name;
    Zu::TraceManager::getInstance().print(
        (std::string(when) + ":" + text + "; ledgers " + std::to_string(Ledger::_living)).c_str());
}

void useToTheEnd()
{
    theLastWord._act = useLasting;
    std::atexit([] { useLasting("exit handler"); });
    {
        const Zu::InInitGuard guard(theArgc, theArgv);
        Zu::Trace::setOptions("show=Lasting");
        theLasting = findLasting();
        useLasting("main");
    }
    useLasting("after shut-down");
}

} // namespace

template class Zu::InSingleton<Ledger>;

int main(int argc, char** argv)
{
    theArgc = argc;
    theArgv = argv;
    const std::map<std::string, std::function<void()>> stories = {
        {"startAndStop", startAndStop},
        {"loadModule", loadModule},
        {"takeTheRoad", takeTheRoad},
        {"walkByHand", walkByHand},
        {"produceInTwoThreads", produceInTwoThreads},
        {"produceUnderAForeignLock", produceUnderAForeignLock},
        {"leaveEvents", [] { leaveEvents(false); }},
        {"flushEvents", [] { leaveEvents(true); }},
        {"countThreads", countThreads},
        {"useToTheEnd", useToTheEnd},
    };
    stories.at(variable("WHOLE_STORY"))();
    say("end of main");
    return 0;
}
