#include "base/lgLog.h"

#include "base/exSysError.h"
#include "base/hwCounter.h"
#include "base/internalAssert.h"
#include "base/lgMajorGroup.h"
#include "base/lgOutputs.h"
#include "base/lgQueue.h"
#include "base/lgSetup.h"
#include "base/osEnv.h"
#include "base/osFilePath.h"
#include "base/osFsUtils.h"
#include "base/plainTextStream.h"

#include <cstring>
#include <ctime>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>

namespace Zu
{

namespace
{

// What init() creates. It outlives all static objects, since events may be flushed until the very
// end.
struct State
{
    ObjPtr<LgRegistry> _registry;
    ObjPtr<LgInterProcessLock> _interprocessLock;
    // Both names are empty before init() and after destroy().
    LgLogFiles _files;
    LgSetup _setup;
    LgOutputs _outputs;
    std::time_t _started = 0;
};

// Constant-initialised: it may be set before main.
constinit LgLog::OutputFunction outputFunction = nullptr;
constinit LgLog::EndFunction endFunction = nullptr;

State& state()
{
    static State* const theState = new State;
    return *theState;
}

LgQueue* defaultQueue()
{
    static LgQueue* const theQueue = new LgQueue;
    return theQueue;
}

std::string logDirectory()
{
    const char* const directory = OsEnv::getVariable("B7Q_TEST_DIR");
    if (directory && *directory != '\0') return directory;
    return OsFilePath::getTempDir().getChars();
}

// Makes the log directory. The names of the files in it are empty if the system refuses it.
LgLogFiles chooseFiles()
{
    const std::string directory = logDirectory();
    try
    {
        OsFsUtils::createDir(directory.c_str(), true);
    }
    catch (const ExSysErrorWindows&)
    {
        return {};
    }
    const OsFilePath path(directory.c_str());
    return {(path + "events.log").getChars(), (path + "prof.log").getChars()};
}

// Writes the banner in one piece, like every line.
void writeBanner(std::ostream& out)
{
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    state()._started = std::time(nullptr);
    const std::string banner = LgLog::getBanner();
    // Code that uses the stream's format flags may rely on this.
    if (LgLog::isTimeStampsEnabled()) out << std::fixed;
    out << banner << std::flush;
}

void writeLastBanner(std::ostream& out)
{
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    out << "===== Message Logger Stopped =====\n" << std::flush;
}

} // namespace

std::uint64_t LgLog::_start = 0;
std::atomic<bool> LgLog::_loggerActive{false};
std::atomic<bool> LgLog::_blockingTrace{false};
std::atomic<bool> LgLog::_logTimeStamps{true};
std::atomic<LgLog::QueueFunction> LgLog::_queueFunction{&defaultQueue};

void LgLog::init()
{
    ZU_INTERNAL_ASSERT_TEXT(state()._files._profiles.empty(), "file_prof == 0");
    ZU_INTERNAL_ASSERT_TEXT(state()._files._events.empty(), "file_log == 0");
    state()._registry = ObjPtr<LgRegistry>(new LgSimpleRegistry);
    bool hasGroups = false;
    try
    {
        state()._files = chooseFiles();
        state()._setup.read(&OsEnv::getVariable, state()._files);
        readDefaultLevel();
        LgMajorGroup::initialize(OsEnv::getVariable("ZU_LOG_GROUPS"));
        hasGroups = true;
        readSwitches();
        _start = HwCounter::timeStamp();
        state()._outputs.open(state()._setup, outputFunction, &writeBanner);
    }
    catch (...)
    {
        // init() may be called again.
        if (hasGroups) LgMajorGroup::finalize();
        state()._outputs.closeAll();
        for (const LgTypes::Level level : LG_LEVELS) state()._setup[level]._file.reset();
        state()._files = {};
        throw;
    }
}

void LgLog::readDefaultLevel()
{
    const char* const value = OsEnv::getVariable("ZU_LOG_DEFAULT_LEVEL");
    if (!value) return;
    for (const LgTypes::Level level : LG_LEVELS)
    {
        if (std::strcmp(value, LgTypes::levelToString(level)) != 0) continue;
        LgMajorGroup::setDefaultThreshold(level);
        return;
    }
}

void LgLog::readSwitches()
{
    setBlockingTrace(OsEnv::getVariable("ZU_BLOCKING_TRACE"));
    if (const char* const name = OsEnv::getVariable("ZU_INTERNAL_INTERPROCESS_LOG_LOCK"))
        state()._interprocessLock = ObjPtr<LgInterProcessLock>(LgInterProcessLock::create(name));
    if (OsEnv::getVariable("ZU_LOG_DISABLE_TIMESTAMPS")) disableTimeStamps();
}

void LgLog::destroy()
{
    if (endFunction) endFunction();
    state()._files = {};
    std::exception_ptr lockError;
    for (const LgTypes::Level level : LG_LEVELS)
    {
        if (!state()._setup[level]._file) continue;
        std::ostream* const output = state()._outputs.get(level);
        ZU_INTERNAL_ASSERT_TEXT(output, "_level[i]._output");
        try
        {
            writeLastBanner(*output);
        }
        catch (...)
        {
            // All files share one lock, so only the first attempt to take it can report that its
            // owner died.
            if (!lockError) lockError = std::current_exception();
        }
        closeOutput(level);
    }
    LgMajorGroup::finalize();
    if (lockError) std::rethrow_exception(lockError);
}

void LgLog::setOutputFunction(OutputFunction function)
{
    outputFunction = function;
}

void LgLog::setEndFunction(EndFunction function)
{
    endFunction = function;
}

std::string LgLog::getBanner()
{
    PlainTextStream banner;
    banner << "===== Message Logger Startup =====\n";
    if (isTimeStampsEnabled())
    {
        // A period called "Clock Frequency" is frozen, see docs/compatibility.md.
        banner << "===== Started on " << std::ctime(&state()._started) << "\n"
               << "===== Clock Frequency: " << std::fixed << std::setprecision(9)
               << HwCounter::resolution() << "\n";
    }
    return banner.str();
}

std::string LgLog::getDirectory()
{
    return logDirectory();
}

// The level itself keeps the name of its file, which displaySetup() continues to show. The levels
// that share the file lose it here.
void LgLog::closeOutput(LgTypes::Level level)
{
    for (const LgTypes::Level other : LG_LEVELS)
        if (other != level && state()._outputs.areShared(level, other))
            state()._setup[other]._file.reset();
    state()._outputs.close(level);
}

void LgLog::displaySetup()
{
    std::cout << "===== Log Setup =====" << std::endl;
    for (const LgTypes::Level level : LG_LEVELS)
    {
        const LgLevelSetup& setup = state()._setup[level];
        std::cout << LgTypes::levelToString(level) << ": ";
        if (!setup._enabled) std::cout << "Disabled";
        if (setup._enabled && setup._echo) std::cout << "stdout, ";
        if (setup._enabled && setup._file) std::cout << setup._file->c_str() << " ";
        if (setup._enabled && setup._append) std::cout << "[Append]";
        std::cout << std::endl;
    }
    std::cout << "===== End Setup =====" << std::endl;
}

void LgLog::setQueueFunction(QueueFunction function)
{
    _queueFunction.store(function ? function : &defaultQueue, std::memory_order_release);
}

std::uint64_t LgLog::getStart()
{
    return _start;
}

bool LgLog::isLevelEchoed(LgTypes::Level level)
{
    return state()._setup[level]._echo;
}

std::ostream* LgLog::getLevelOutput(LgTypes::Level level)
{
    return state()._outputs.get(level);
}

bool LgLog::isFileMissing(LgTypes::Level level)
{
    return state()._setup[level]._isFileMissing;
}

LgRegistry* LgLog::getRegistry()
{
    return state()._registry.get();
}

ObjPtrRet<LgRegistry> LgLog::setRegistry(ObjPtr<LgRegistry> r)
{
    if (r.isNull()) return ObjPtrRet<LgRegistry>();
    ObjPtr<LgRegistry>& registry = state()._registry;
    if (!registry.isNull())
    {
        const List<LgQueue*> queues = registry->getQueueList();
        for (LgQueue* const queue : queues) r->registerQueue(queue);
        for (LgQueue* const queue : queues) registry->deregisterQueue(queue);
    }
    ObjPtrRet<LgRegistry> former(registry);
    registry = r;
    return former;
}

LgInterProcessLock* LgLog::getInterProcessLock()
{
    return state()._interprocessLock.get();
}

} // namespace Zu
