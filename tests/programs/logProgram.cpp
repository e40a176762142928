// The logger in a whole process. The words of the command line are commands that are carried out in
// order; a test compares what they print.

#include "base/exBase.h"
#include "base/exSysError.h"
#include "base/hwCounter.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/lgEvent.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgMajorGroup.h"
#include "base/lgReader.h"
#include "base/osCpuInfo.h"
#include "base/osEnv.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

ZU_DEFINE_LOG_GROUP(Sample);

struct logClientTag
{
};

template <> Zu::InInit<logClientTag>::InInit() : InPackageInit("logClient")
{
    registerPackage();
    addDependency(InInit<ZuInit::logger>::getType());
}

template <> void Zu::InInit<logClientTag>::performInitialize()
{
    ZU_START_LOG_GROUP("Client", Sample);
    ZU_LOG_WARNING(Sample, "starts");
}

template <> void Zu::InInit<logClientTag>::performFinalize()
{
    ZU_LOG_WARNING(Sample, "stops");
    ZU_STOP_LOG_GROUP(Sample);
}

namespace
{

using Zu::LgInterProcessLock;
using Zu::LgLog;
using Zu::LgQueue;
namespace LgTypes = Zu::LgTypes;

Zu::InInit<logClientTag> thePackage;

std::deque<std::string> words;

// The one queue of the program, which ends with the process.
LgQueue* theQueue = nullptr;

std::string nextWord()
{
    const std::string word = words.front();
    words.pop_front();
    return word;
}

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

// Runs work and prints the exception that it raises, if any.
void saying(const std::string& what, const std::function<void()>& work)
{
    try
    {
        work();
    }
    catch (const Zu::ExSysErrorWindows&)
    {
        say(what + ": system error");
    }
    catch (const Zu::ExBase& exception)
    {
        say(what + ": " + exception.getReason());
    }
    catch (const std::exception& exception)
    {
        say(what + ": std " + exception.what());
    }
}

void runWords();

void start()
{
    saying("start",
           []
           {
               const char* const names[] = {"logProgram", nullptr};
               int count = 1;
               const char* const* argv = names;
               const Zu::InInitGuard guard(count, argv);
               runWords();
           });
}

void init()
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    saying("init", LgLog::init);
}

void showState()
{
    std::string echoed;
    std::string outputs;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        echoed += LgLog::isLevelEchoed(static_cast<LgTypes::Level>(level)) ? 'e' : '-';
        outputs += LgLog::getLevelOutput(static_cast<LgTypes::Level>(level)) ? 'o' : '-';
    }
    say(std::string("active ") + (LgLog::isLoggerActive() ? "yes" : "no"));
    say(std::string("blocking ") + (LgLog::getBlockingTrace() ? "yes" : "no"));
    say(std::string("time stamps ") + (LgLog::isTimeStampsEnabled() ? "yes" : "no"));
    say(std::string("start ") + (LgLog::getStart() == 0 ? "zero" : "set"));
    say(std::string("registry ") + (LgLog::getRegistry() ? "set" : "null"));
    say(std::string("lock ") + (LgLog::getInterProcessLock() ? "set" : "null"));
    say("echoed " + echoed + ", outputs " + outputs);
}

// Throws when the reader removes an entry, or queries the state of the lock there.
class Troubled : public LgQueue::Observer
{
public:
    explicit Troubled(std::string trouble) : _trouble(std::move(trouble)) {}

    void entryAdded(LgQueue&) override {}

    void entryRemoved(LgQueue&) override
    {
        LgInterProcessLock* const lock = LgLog::getInterProcessLock();
        if (_trouble == "throw") throw std::runtime_error("of the observer");
        lock->unlock();
        say("held");
        if (_trouble == "look") lock->lock();
    }

    void waitForSpace(const LgQueue&, int) override {}

private:
    std::string _trouble;
};

void makeQueue()
{
    theQueue = new LgQueue(0xabc);
    LgLog::getRegistry()->registerQueue(theQueue);
    LgLog::setQueueFunction([] { return theQueue; });
}

void observeQueue()
{
    theQueue->changeObserver(Zu::ObjPtr<LgQueue::Observer>(new Troubled(nextWord())));
}

void logText()
{
    const LgTypes::Level level = LgTypes::stringToLevel(nextWord().c_str());
    const std::string text = nextWord();
    ZU_LOG(Sample, level, text);
}

void put(LgTypes::Level level, const std::string& text)
{
    if (!theQueue->reserveEntry(level)) return say("lost");
    theQueue->getStream() << text << Zu::ends;
    theQueue->addEntry();
}

void putText()
{
    const LgTypes::Level level = LgTypes::stringToLevel(nextWord().c_str());
    put(level, nextWord());
}

void flushEarliest()
{
    saying("flush", [] { say(Zu::LgReader().flushEarliest() ? "flushed" : "nothing to flush"); });
}

void flushAll()
{
    saying("flush all", [] { Zu::LgReader().flushAll(); });
}

// Lines of one repeated letter each, so that fragments of torn lines are easy to recognise.
void logMany()
{
    const std::string letter = nextWord();
    const int count = std::stoi(nextWord());
    for (int i = 0; i < count; ++i)
    {
        put(LgTypes::Warning, std::string(3000, letter[0]));
        flushAll();
    }
}

void showPending()
{
    say(Zu::LgReader().eventsPending() ? "pending" : "not pending");
}

// The lock's holder ends without releasing it. The object remains, and so does the lock.
void abandonLock()
{
    const std::string name = nextWord();
    std::thread([&] { LgInterProcessLock::create(name.c_str())->lock(); }).join();
}

// Nobody but its holder can release a lock.
void showHolding()
{
    try
    {
        LgLog::getInterProcessLock()->unlock();
        say("was held");
    }
    catch (const Zu::ExSysErrorWindows&)
    {
        say("not held");
    }
}

// Returns only when another thread can get the lock.
void lockInAnotherThread()
{
    std::thread(
        []
        {
            LgLog::getInterProcessLock()->lock();
            LgLog::getInterProcessLock()->unlock();
        })
        .join();
    say("free for others");
}

// Processes signal each other by files.
void makeSign()
{
    std::ofstream{nextWord()};
}

void awaitSign()
{
    const std::string name = nextWord();
    while (!std::filesystem::exists(name)) std::this_thread::yield();
}

const std::map<std::string, void (*)()> commands = {
    {"abandon", abandonLock},
    {"activate", [] { LgLog::setLoggerActivation(true); }},
    {"await", awaitSign},
    {"cd", [] { std::filesystem::current_path(nextWord()); }},
    {"deactivate", [] { LgLog::setLoggerActivation(false); }},
    {"destroy", [] { saying("destroy", LgLog::destroy); }},
    {"display", LgLog::displaySetup},
    {"flush", flushEarliest},
    {"flushAll", flushAll},
    {"groups", [] { Zu::LgMajorGroup::printAll(std::cout); }},
    {"holding", showHolding},
    {"init", init},
    {"lockElsewhere", lockInAnotherThread},
    {"log", logText},
    {"logMany", logMany},
    {"observe", observeQueue},
    {"pending", showPending},
    {"put", putText},
    {"queue", makeQueue},
    {"set", [] { Zu::OsEnv::putVariable(nextWord().c_str()); }},
    {"sign", makeSign},
    {"start", start},
    {"state", showState},
    {"unwritten", [] { say(std::to_string(Zu::LgReader::getUnwrittenCount())); }},
};

void runWords()
{
    while (!words.empty()) commands.at(nextWord())();
}

} // namespace

int main(int argc, char** argv)
{
    words.assign(argv + 1, argv + argc);
    runWords();
    say("end of main");
    return 0;
}
