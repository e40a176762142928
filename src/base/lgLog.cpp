#include "base/lgLog.h"

#include "base/duplicateString.h"
#include "base/exSysError.h"
#include "base/hwCounter.h"
#include "base/internalAssert.h"
#include "base/lgMajorGroup.h"
#include "base/lgQueue.h"
#include "base/osEnv.h"
#include "base/osFilePath.h"
#include "base/osFsUtils.h"
#include "base/osOutputFile.h"
#include "base/plainTextStream.h"

#include <cstring>
#include <ctime>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <locale>
#include <string>

namespace Zu
{

namespace
{

struct LevelVariable
{
    const char* _name;
    LgTypes::Level _level;
};

// In the order in which they are read.
constexpr LevelVariable LEVEL_VARIABLES[] = {
    {"ZU_LOG_INTERNAL_ERROR", LgTypes::InternalError},
    {"ZU_LOG_FATAL_ERROR", LgTypes::FatalError},
    {"ZU_LOG_RECOVERABLE_ERROR", LgTypes::Error},
    {"ZU_LOG_WARNING", LgTypes::Warning},
    {"ZU_LOG_INFORMATIONAL", LgTypes::Informational},
    {"ZU_LOG_PROFILING", LgTypes::Profiling},
    {"ZU_LOG_TRACING", LgTypes::Tracing},
};

// What init() makes and destroy() leaves alone. It outlives all static objects, since events may be
// flushed until the very end.
struct Kept
{
    ObjPtr<LgRegistry> _registry;
    ObjPtr<LgInterProcessLock> _interprocessLock;
    // The files' names: what the environment and the freed arrays held may be gone while a level
    // still names its file.
    std::string _files[LgTypes::NUM_LEVELS];
    bool _isFileMissing[LgTypes::NUM_LEVELS] = {};
};

Kept& kept()
{
    static Kept* const theKept = new Kept;
    return *theKept;
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

bool isUsable(const char* directory)
{
    try
    {
        OsFsUtils::createDir(directory, true);
        return true;
    }
    catch (const ExSysErrorWindows&)
    {
        return false;
    }
}

// In one piece, as every line.
void writeBanner(std::ostream& out)
{
    PlainTextStream banner;
    banner << "===== Message Logger Startup =====\n";
    if (LgLog::isTimeStampsEnabled())
    {
        const std::time_t now = std::time(nullptr);
        banner << "===== Started on " << std::ctime(&now) << "\n"
               << "===== Clock Frequency: " << std::fixed << std::setprecision(9)
               << HwCounter::resolution() << "\n";
        // As readers of the stream's format may count on.
        out << std::fixed;
    }
    out << banner.str() << std::flush;
}

void writeLastBanner(std::ofstream& out)
{
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    out << "===== Message Logger Stopped =====\n" << std::flush;
    out.close();
}

} // namespace

LgLog::LevelInfo LgLog::_level[LgTypes::NUM_LEVELS];
char* LgLog::file_prof = nullptr;
char* LgLog::file_log = nullptr;
std::uint64_t LgLog::_start = 0;
std::atomic<bool> LgLog::_loggerActive{false};
std::atomic<bool> LgLog::_blockingTrace{false};
std::atomic<bool> LgLog::_logTimeStamps{true};
std::atomic<LgLog::QueueFunction> LgLog::_queueFunction{&defaultQueue};

void LgLog::init()
{
    ZU_INTERNAL_ASSERT(file_prof == 0);
    ZU_INTERNAL_ASSERT(file_log == 0);
    kept()._registry = ObjPtr<LgRegistry>(new LgSimpleRegistry);
    bool hasGroups = false;
    try
    {
        readLevels(chooseFiles());
        readDefaultLevel();
        LgMajorGroup::initialize(OsEnv::getVariable("ZU_LOG_GROUPS"));
        hasGroups = true;
        readSwitches();
        _start = HwCounter::timeStamp();
        openOutputs();
    }
    catch (...)
    {
        // It may be tried again.
        if (hasGroups) LgMajorGroup::finalize();
        abandonOutputs();
        freeFileNames();
        throw;
    }
}

// Makes the log directory and the names of the files in it; false, and no names, if the system
// refuses the directory.
bool LgLog::chooseFiles()
{
    const std::string directory = logDirectory();
    if (!isUsable(directory.c_str())) return false;
    const OsFilePath path(directory.c_str());
    file_prof = duplicateString((path + "prof.log").getChars()).release();
    file_log = duplicateString((path + "events.log").getChars()).release();
    return true;
}

void LgLog::readLevels(bool directoryUsable)
{
    for (const auto& [name, level] : LEVEL_VARIABLES)
    {
        LevelInfo& info = _level[level];
        if (const char* const value = OsEnv::getVariable(name))
        {
            info = parseEnvVar(value);
        }
        else if (level == LgTypes::InternalError || level == LgTypes::Profiling)
        {
            // The other flags deliberately keep their values from an earlier run.
            info._enabled = directoryUsable;
            info._file = level == LgTypes::Profiling ? file_prof : file_log;
        }
        else if (level == LgTypes::Tracing)
        {
            info._enabled = true;
            info._echo = true;
        }
        else
        {
            info = parseEnvVar(nullptr);
        }
        const bool usesDirectory = !OsEnv::getVariable(name) && level != LgTypes::Tracing;
        kept()._isFileMissing[level] = usesDirectory && !directoryUsable;
        if (!info._file) continue;
        kept()._files[level] = std::string(info._file);
        info._file = kept()._files[level].c_str();
    }
}

// "%" asks for an echo, "+" in first or second place for appending, "--" switches the level off;
// what follows the marks is the file's name.
LgLog::LevelInfo LgLog::parseEnvVar(const char* value)
{
    LevelInfo info{true, false, false, nullptr, nullptr};
    if (!value)
    {
        info._file = file_log;
    }
    else if (std::strncmp(value, "--", 2) == 0)
    {
        info._enabled = false;
    }
    else if (*value != '%' && *value != '+')
    {
        info._file = value;
    }
    else
    {
        info._echo = *value == '%';
        info._append = value[0] == '+' || value[1] == '+';
        const char* const rest = value + (value[1] == '+' ? 2 : 1);
        // A lone "%" or "+" names no file; behind two marks an empty name is one, which no file
        // has.
        if (value[1] != '\0') info._file = rest;
    }
    return info;
}

void LgLog::readDefaultLevel()
{
    const char* const value = OsEnv::getVariable("ZU_LOG_DEFAULT_LEVEL");
    if (!value) return;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        if (std::strcmp(value, LgTypes::levelToString(level)) != 0) continue;
        LgMajorGroup::setDefaultThreshold(level);
        return;
    }
}

void LgLog::readSwitches()
{
    setBlockingTrace(OsEnv::getVariable("ZU_BLOCKING_TRACE"));
    if (const char* const name = OsEnv::getVariable("ZU_INTERNAL_INTERPROCESS_LOG_LOCK"))
        kept()._interprocessLock = ObjPtr<LgInterProcessLock>(LgInterProcessLock::create(name));
    if (OsEnv::getVariable("ZU_LOG_DISABLE_TIMESTAMPS")) disableTimeStamps();
}

void LgLog::openOutputs()
{
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        LevelInfo& info = _level[i];
        if (!info._file) continue;
        info._output = openedBefore(i);
        if (info._output) continue;
        info._output = new std::ofstream;
        info._output->imbue(std::locale::classic());
        osOpenOutput(*info._output, info._file, info._append);
        const LgInterProcessLockGuard guard(getInterProcessLock());
        writeBanner(*info._output);
    }
}

std::ofstream* LgLog::openedBefore(int level)
{
    for (int i = 0; i < level; ++i)
    {
        const bool same = _level[i]._file && std::strcmp(_level[i]._file, _level[level]._file) == 0;
        if (same) return _level[i]._output;
    }
    return nullptr;
}

void LgLog::destroy()
{
    freeFileNames();
    std::exception_ptr lockError;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        if (!_level[i]._file) continue;
        ZU_INTERNAL_ASSERT_TEXT(_level[i]._output, "_level[i]._output");
        try
        {
            writeLastBanner(*_level[i]._output);
        }
        catch (...)
        {
            // One lock of all of them: only the first to take it can be told that its owner died.
            if (!lockError) lockError = std::current_exception();
        }
        closeOutput(i);
    }
    LgMajorGroup::finalize();
    if (lockError) std::rethrow_exception(lockError);
}

void LgLog::freeFileNames()
{
    delete[] file_prof;
    file_prof = nullptr;
    delete[] file_log;
    file_log = nullptr;
}

void LgLog::closeOutput(int level)
{
    std::ofstream* const output = _level[level]._output;
    for (int later = level + 1; later < LgTypes::NUM_LEVELS; ++later)
    {
        if (_level[later]._output != output) continue;
        _level[later]._output = nullptr;
        _level[later]._file = nullptr;
    }
    delete output;
    _level[level]._output = nullptr;
}

// What a start that failed has opened.
void LgLog::abandonOutputs()
{
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        if (_level[i]._output) closeOutput(i);
        _level[i]._file = nullptr;
    }
}

void LgLog::displaySetup()
{
    std::cout << "===== Log Setup =====" << std::endl;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const LevelInfo& info = _level[i];
        std::cout << LgTypes::levelToString(static_cast<LgTypes::Level>(i)) << ": ";
        if (!info._enabled) std::cout << "Disabled";
        if (info._enabled && info._echo) std::cout << "stdout, ";
        if (info._enabled && info._file) std::cout << info._file << " ";
        if (info._enabled && info._append) std::cout << "[Append]";
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
    return _level[level]._echo;
}

std::ostream* LgLog::getLevelOutput(LgTypes::Level level)
{
    return _level[level]._output;
}

bool LgLog::isFileMissing(LgTypes::Level level)
{
    return kept()._isFileMissing[level];
}

LgRegistry* LgLog::getRegistry()
{
    return kept()._registry.get();
}

ObjPtrRet<LgRegistry> LgLog::setRegistry(ObjPtr<LgRegistry> r)
{
    if (r.isNull()) return ObjPtrRet<LgRegistry>();
    ObjPtr<LgRegistry>& registry = kept()._registry;
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
    return kept()._interprocessLock.get();
}

} // namespace Zu
