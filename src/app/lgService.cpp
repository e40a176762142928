#include "app/lgService.h"

#include "app/lgMapFile.h"
#include "app/lgServiceCompressor.h"
#include "app/lgServiceControl.h"
#include "app/lgServiceEx.h"
#include "app/lgServiceFatal.h"
#include "app/lgServiceLimits.h"
#include "app/lgServiceLog.h"
#include "app/lgServicePlatform.h"
#include "app/lgServiceReader.h"
#include "app/lgServiceRecovery.h"
#include "app/lgServiceThreads.h"
#include "app/lgSuffix.h"
#include "base/exBase.h"
#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/osFilePath.h"
#include "base/osFsUtils.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <iostream>
#include <string>
#include <utility>

namespace Zu
{

namespace
{

// The number of forks, plus one, of the process that has a service.
std::atomic<int> there{0};

// The service of this process.
LgService* living = nullptr;

// What a child can't destroy; kept here so that it is not reported as a leak.
[[maybe_unused]] LgServiceReader* leftToTheParent = nullptr;

// With a separator at its end; empty stays empty.
std::string directoryName(std::string name)
{
    if (!name.empty() && name.back() != '/' && name.back() != '\\') name += '/';
    return name;
}

bool isSeparator(char character)
{
    return character == '/' || character == *OsFilePath::getSeparator();
}

// Without separators at its end, so that a directory has one name; a root keeps its own.
std::string plainDirectory(std::string name)
{
    while (name.size() > 1 && isSeparator(name.back()) && name[name.size() - 2] != ':')
        name.pop_back();
    return name;
}

// From a root on, so that the files stay where they are when the process goes elsewhere.
std::string fixedDirectory(const std::string& name)
{
    if (OsFilePath::isAbsolute(name.c_str()) || isSeparator(name.front()))
        return plainDirectory(name);
    const OsFilePath current = OsFilePath(".").getDirectoryName();
    return plainDirectory((current + OsFilePath(name.c_str())).getChars());
}

// Makes the directory of the log files. If the system refuses it, the logger's own stays.
void makeDirectory(LgServiceOptions& options)
{
    if (options._directory.empty()) return;
    try
    {
        const std::string directory = fixedDirectory(options._directory);
        OsFsUtils::createDir(directory.c_str(), true);
        options._directory = directory;
    }
    catch (const ExBase& exception)
    {
        std::cerr << "The log directory \"" << options._directory
                  << "\" can't be used, and the log files are in \"" << LgLog::getDirectory()
                  << "\": " << exception.getReason() << std::endl;
        options._directory.clear();
    }
}

// Without a compressor, rotated files stay as they are.
void findCompressor(LgServiceOptions& options)
{
    if (!options._compress || LgServiceCompressor::getFactory()) return;
    std::cerr << "compress: \"true\" can't be used, and rotated files stay as they are: expected a "
                 "program that includes \"appZlib/lgServiceGzip.h\" or has a compressor"
              << std::endl;
    options._compress = false;
}

std::string logDirectory(const LgServiceOptions& options)
{
    return options._directory.empty() ? LgLog::getDirectory() : options._directory;
}

// The settings of the queues.
LgServiceMap::Settings mapSettings(const LgServiceOptions& options)
{
    LgServiceMap::Settings settings;
    settings._mapDirectory = directoryName(options._mappingDirectory);
    settings._logDirectory = plainDirectory(logDirectory(options));
    settings._entries = options._entries;
    settings._characters = options._characters;
    settings._limit = options._memoryLimit;
    return settings;
}

LgLineForm formOf(LgServiceOptions::LineForm form)
{
    if (form == LgServiceOptions::LineForm::Local) return LgLineForm::Local;
    return form == LgServiceOptions::LineForm::Utc ? LgLineForm::Utc : LgLineForm::Ticks;
}

// The name with the process id before its last dot, or at its end.
std::string withProcess(std::string name)
{
    const std::size_t place = std::min(name.rfind('.'), name.size());
    const std::string process = std::to_string(lgProcessFacts()._process);
    return name.insert(place, process).insert(place, 1, '.');
}

std::string pathIn(const std::string& directory, const std::string& name)
{
    return (OsFilePath(directory.c_str()) + name.c_str()).getChars();
}

// Where the log goes that the logger gave this path: by the options, unless a variable of the
// environment named it.
std::string pathFor(const std::string& given, const LgServiceOptions& options)
{
    const bool isEvents = given == pathIn(LgLog::getDirectory(), "events.log");
    if (!isEvents && given != pathIn(LgLog::getDirectory(), "prof.log")) return given;
    const std::string& name = isEvents ? options._eventsName : options._profilesName;
    return pathIn(logDirectory(options), options._processInNames ? withProcess(name) : name);
}

// The log of a level; null if it has none, or one of another kind.
LgServiceLog* logOf(LgTypes::Level level)
{
    return dynamic_cast<LgServiceLog*>(LgLog::getLevelOutput(level));
}

void setLogs(const LgServiceOptions& options)
{
    LgServiceLog::Settings settings;
    settings._rotation._size = options._rotateSize;
    settings._rotation._minuteOfDay = options._rotateMinute;
    settings._rotation._kept = options._keptFiles;
    settings._pendingLimit = options._pendingLimit;
    settings._isStored = options._sync;
    settings._isDatedAgain = options._lineForm == LgServiceOptions::LineForm::Ticks;
    LgServiceLog::setSettings(settings);
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
        if (LgServiceLog* const log = logOf(static_cast<LgTypes::Level>(i)))
            log->setPath(pathFor(log->getGivenPath(), options));
}

// Writes what processes have left: in a thread that no signal of a file can end.
std::uint64_t recover(const LgServiceMap::Settings& settings, const LgServiceOptions& options)
{
    const LgServiceMap& map = LgServiceThreads::instance().map();
    const std::string own = map.isOpen() ? map.getPath() : std::string();
    const LgLineForm form =
        LgLog::isTimeStampsEnabled() ? formOf(options._lineForm) : LgLineForm::Plain;
    const auto recoverAll = [&]
    {
        return LgServiceRecovery::recoverAll(settings._mapDirectory, settings._logDirectory, own,
                                             form, options._rawText, options._keptMappings,
                                             options._keptMappingDays);
    };
    const LgServicePlatform::SignalBlock block;
    return std::async(std::launch::async, recoverAll).get();
}

// Where the lines of a level go. For the thread that writes, or while none does.
std::string outputsOf(LgTypes::Level level)
{
    std::string text = LgLog::isLevelEchoed(level) ? "stdout" : "";
    if (!LgLog::getLevelOutput(level)) return text.empty() ? "none" : text;
    if (!text.empty()) text += ", ";
    const LgServiceLog* const log = logOf(level);
    return text + (log ? log->getPath() : "a stream of the program");
}

// What other processes see of the service. The reader outlives it.
LgServiceControl::Settings controlSettings(const LgServiceMap::Settings& settings,
                                           const LgServiceReader& reader, std::uint64_t lostBefore,
                                           std::uint64_t recovered)
{
    LgServiceControl::Settings control;
    control._fileDirectory =
        settings._mapDirectory.empty() ? lgMapDirectory() : settings._mapDirectory;
    control._logDirectory = settings._logDirectory;
    control._health = [&reader, lostBefore, recovered]
    {
        LgServiceHealth health;
        reader.addHealth(health);
        health._lost = LgServiceThreads::instance().getLostCount() - lostBefore;
        health._recovered = recovered;
        lgAddLimits(health);
        return health;
    };
    control._outputOf = &outputsOf;
    return control;
}

} // namespace

LgService::LgService(LgServiceOptions options, bool) : _options(std::move(options))
{
    _options.check(std::cerr);
    if (!LgLog::getRegistry()) throw LgServiceEx::ExLoggerNotStarted(__FILE__, __LINE__);
    LgServiceThreads& threads = LgServiceThreads::instance();
    if (there.exchange(threads.getForks() + 1) == threads.getForks() + 1)
        throw LgServiceEx::ExAlreadyRunning(__FILE__, __LINE__);
    try
    {
        makeDirectory(_options);
        findCompressor(_options);
        _lostBefore = threads.getLostCount();
        const LgServiceMap::Settings settings = mapSettings(_options);
        const LgLineForm form = formOf(_options._lineForm);
        threads.setEndLimit(_options._endLimit);
        threads.setWaiting({_options._waitLevels, _options._flushLevel, _options._waitLimit});
        setLogs(_options);
        // First: it frees the room that this process may need.
        _recovered = recover(settings, _options);
        threads.start(settings);
        LgLog::setQueueFunction(&LgServiceThreads::queueOfThread);
        const bool isWaiting = _options._waitLevels != 0;
        LgQueue::setRoomFunction(isWaiting ? &LgServiceThreads::waitForRoom : nullptr);
        LgStream::setRoomFunction(isWaiting ? &LgServiceThreads::waitForTextRoom : nullptr);
        _reader = std::make_unique<LgServiceReader>(
            threads, form, _options._rawText,
            _options._compress ? LgServiceCompressor::getFactory() : nullptr);
        if (_options._control)
            _reader->beginControl(std::make_unique<LgServiceControl>(
                controlSettings(settings, *_reader, _lostBefore, _recovered)));
    }
    catch (...)
    {
        threads.stop();
        there = 0;
        throw;
    }
    living = this;
    LgLog::setEndFunction(&endWithLogger);
    if (_options._reopenOnHangup) LgServicePlatform::onHangup(&LgServiceReader::reopen);
    if (_options._drainOnFatalSignals) LgServiceFatal::begin(LgServiceThreads::instance());
    LgSuffix::showPlaces(_options._sourceLocation);
    LgLog::setLoggerActivation(true);
}

LgService::~LgService()
{
    end();
}

// The packages that logged have ended before; now the files will be closed.
void LgService::endWithLogger()
{
    if (there != LgServiceThreads::instance().getForks() + 1) return;
    std::cerr << "The log service ends with the logger. It has to end before the packages do."
              << std::endl;
    living->end();
}

void LgService::end()
{
    if (!_reader) return;
    LgServiceThreads& threads = LgServiceThreads::instance();
    if (!_reader->isOwn())
    {
        // The child of a fork: the thread is not here, and nothing may wait for it.
        leftToTheParent = _reader.release();
        return;
    }
    LgServicePlatform::onHangup(nullptr);
    LgServiceFatal::end();
    lgReportAllLimits([] { LgServiceThreads::instance().drain(); });
    LgLog::setLoggerActivation(false);
    LgSuffix::showPlaces(false);
    _reader.reset();
    threads.stop();
    living = nullptr;
    there = 0;
}

LgServiceHealth LgService::health() const
{
    LgServiceHealth health;
    if (!_reader || !_reader->isOwn()) return health;
    _reader->addHealth(health);
    health._lost = getLostCount();
    health._recovered = _recovered;
    lgAddLimits(health);
    return health;
}

void LgService::reopen() const
{
    LgServiceReader::reopen();
}

void LgService::displaySetup() const
{
    std::cout << "===== Log Service Setup =====\n";
    _options.display(std::cout);
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        std::cout << LgTypes::levelToString(level) << ": " << outputsOf(level) << '\n';
    }
    std::cout << "===== End Setup =====" << std::endl;
}

bool LgService::flush(std::chrono::milliseconds timeout) const
{
    if (_reader && _reader->isOnThisThread()) return false;
    // Processors may read the counter a little before what stands in front of it is done.
    constexpr std::uint64_t MARGIN = 10'000;
    const std::uint64_t time = HwCounter::timeStamp() + MARGIN;
    const bool isStored = _options._sync && _reader && _reader->isOwn();
    const std::uint64_t failures = isStored ? _reader->sync().getFailures() : 0;
    const LgServiceSync::Clock::time_point end = LgServiceThreads::endOf(timeout);
    if (!LgServiceThreads::instance().waitUntilWritten(time, timeout)) return false;
    return !isStored || _reader->sync().store(failures, end);
}

std::uint64_t LgService::getLostCount() const
{
    return LgServiceThreads::instance().getLostCount() - _lostBefore;
}

} // namespace Zu
