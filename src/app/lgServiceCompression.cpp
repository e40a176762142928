#include "app/lgServiceCompression.h"

#include "app/lgServiceLog.h"
#include "app/lgServicePlatform.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace Zu
{

namespace
{

namespace Platform = LgServiceFilePlatform;

constexpr std::size_t BLOCK = 65536;
// Of files that are found moved in one search: others rotate faster than this compresses.
constexpr int MOST_MOVES = 10;

std::string numbered(const std::string& path, int number)
{
    return path + '.' + std::to_string(number);
}

// The numbers of rotated files, the youngest first. An interrupted rotation has left at most one
// number free.
std::vector<int> numbersOf(const std::string& path)
{
    const auto isTaken = [&path](int number)
    {
        const std::string name = numbered(path, number);
        return Platform::isThere(name) || Platform::isThere(name + ".gz");
    };
    std::vector<int> numbers;
    for (int number = 1; isTaken(number) || isTaken(number + 1); ++number)
        if (Platform::isThere(numbered(path, number))) numbers.push_back(number);
    return numbers;
}

} // namespace

// What is removed on the way is the temporary file: while it is locked it is nobody else's.
struct LgServiceCompression::Files
{
    Files(Platform::File original, std::string temporaryName)
        : _original(original), _temporaryName(std::move(temporaryName)),
          _temporary(Platform::createAlone(_temporaryName, original)),
          _error(_temporary == Platform::NO_FILE ? Platform::lastError() : 0)
    {
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;
    ~Files()
    {
        if (_temporary != Platform::NO_FILE)
        {
            if (!_isRenamed) Platform::remove(_temporaryName);
            Platform::close(_temporary);
        }
        closeOriginal();
    }

    void closeOriginal()
    {
        if (_original != Platform::NO_FILE) Platform::close(_original);
        _original = Platform::NO_FILE;
    }

    Platform::File _original;
    const std::string _temporaryName;
    const Platform::File _temporary;
    const int _error;
    bool _isRenamed = false;
    // Why it failed.
    std::string _reason;

    Outcome fail(std::string reason)
    {
        _reason = std::move(reason);
        return Outcome::Failed;
    }

    Outcome failBySystem()
    {
        return fail(LgServiceFile::errorText(Platform::lastError()));
    }
};

LgServiceCompression::LgServiceCompression(std::mutex& reading,
                                           LgServiceCompressor::Factory factory)
    : LgServiceCompression(reading, factory, WithoutThread())
{
    const LgServicePlatform::SignalBlock block;
    _thread = std::thread([this] { run(); });
}

LgServiceCompression::LgServiceCompression(std::mutex& reading,
                                           LgServiceCompressor::Factory factory, WithoutThread)
    : _reading(reading), _factory(factory)
{
}

LgServiceCompression::~LgServiceCompression()
{
    stop();
    if (_thread.joinable()) _thread.join();
}

void LgServiceCompression::stop()
{
    {
        const std::lock_guard guard(_mutex);
        _stop = true;
    }
    _wake.notify_one();
}

void LgServiceCompression::ask()
{
    {
        const std::lock_guard guard(_mutex);
        _isAsked = true;
    }
    _wake.notify_one();
}

std::string LgServiceCompression::temporaryOf(const std::string& path)
{
    return path + ".compressing";
}

void LgServiceCompression::run()
{
    LgServicePlatform::lowerPriority();
    for (;;)
    {
        {
            std::unique_lock lock(_mutex);
            _wake.wait(lock, [this] { return _isAsked || _stop; });
            _isAsked = false;
        }
        if (_stop) return;
        try
        {
            for (const std::string& path : paths()) compressAll(path);
        }
        catch (const std::bad_alloc&)
        {
            // The files stay as they are until somebody asks again.
        }
    }
}

// Those of the logs of all levels, each once.
std::vector<std::string> LgServiceCompression::paths()
{
    const std::lock_guard guard(_reading);
    std::vector<std::string> paths;
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        std::ostream* const stream = LgLog::getLevelOutput(static_cast<LgTypes::Level>(level));
        const auto* const log = dynamic_cast<LgServiceLog*>(stream);
        if (log && std::find(paths.begin(), paths.end(), log->getPath()) == paths.end())
            paths.push_back(log->getPath());
    }
    return paths;
}

bool LgServiceCompression::compressAll(const std::string& path)
{
    Outcome outcome = Outcome::Compressed;
    for (int moves = 0; moves < MOST_MOVES;)
    {
        outcome = compressNext(path);
        if (outcome == Outcome::Moved)
            ++moves;
        else if (outcome != Outcome::Compressed)
            break;
    }
    if (outcome == Outcome::Skipped) removeLeftover(path);
    return outcome == Outcome::Skipped;
}

// The youngest one that can be compressed; Skipped if there is none.
LgServiceCompression::Outcome LgServiceCompression::compressNext(const std::string& path)
{
    for (const int number : numbersOf(path))
    {
        if (_stop) return Outcome::Stopped;
        const Outcome outcome = compress(path, numbered(path, number));
        if (outcome != Outcome::Skipped) return outcome;
    }
    return Outcome::Skipped;
}

LgServiceCompression::Outcome LgServiceCompression::compress(const std::string& path,
                                                             const std::string& original)
{
    const Platform::File file = Platform::openToRead(original);
    if (file == Platform::NO_FILE)
        return Platform::isThere(original) ? Outcome::Skipped : Outcome::Moved;
    const std::optional<Platform::Status> status = Platform::statusOf(file);
    if (!status || !status->_isPlain || !status->_identity)
    {
        Platform::close(file);
        return Outcome::Skipped;
    }
    Files files(file, temporaryOf(path));
    if (files._error != 0)
        return Platform::isInUse(files._error)
                   ? Outcome::Busy
                   : fail(original, LgServiceFile::errorText(files._error));
    std::uint64_t size = 0;
    Outcome outcome = transfer(files, size);
    if (outcome == Outcome::Compressed) outcome = tryToReplace(path, files, size);
    if (outcome == Outcome::Failed) return fail(original, files._reason);
    if (outcome == Outcome::Compressed) _isReported = false;
    return outcome;
}

LgServiceCompression::Outcome LgServiceCompression::transfer(Files& files, std::uint64_t& size)
{
    const std::unique_ptr<LgServiceCompressor> compressor = _factory();
    if (!compressor) return files.fail("there is no compressor");
    std::vector<char> block(BLOCK);
    std::string compressed;
    for (;;)
    {
        if (_stop) return Outcome::Stopped;
        const std::ptrdiff_t given =
            Platform::readAt(files._original, size, block.data(), block.size());
        if (given < 0) return files.failBySystem();
        compressed.clear();
        const auto count = static_cast<std::size_t>(given);
        if (!compressor->add(block.data(), count, count == 0, compressed))
            return files.fail("the compressor fails");
        if (!writeAll(files, compressed)) return files.failBySystem();
        if (count == 0) return Outcome::Compressed;
        size += count;
    }
}

bool LgServiceCompression::writeAll(const Files& files, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();)
    {
        const std::ptrdiff_t taken =
            Platform::write(files._temporary, text.data() + done, text.size() - done);
        if (taken < 0) return false;
        done += static_cast<std::size_t>(taken);
    }
    return true;
}

LgServiceCompression::Outcome LgServiceCompression::tryToReplace(const std::string& path,
                                                                 Files& files, std::uint64_t size)
{
    try
    {
        return replace(path, files, size);
    }
    catch (const std::exception& exception)
    {
        // Of the lock between processes.
        return files.fail(exception.what());
    }
}

// While nobody rotates, here or in another process with the same lock.
LgServiceCompression::Outcome LgServiceCompression::replace(const std::string& path, Files& files,
                                                            std::uint64_t size)
{
    const std::lock_guard reading(_reading);
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    const std::optional<Platform::Status> read = Platform::statusOf(files._original);
    if (!read || !read->_identity || read->_size != size) return Outcome::Moved;
    // Otherwise it stays open: no other file can have its identity meanwhile.
    if (Platform::keepsNamesOfOpenFiles()) files.closeOriginal();
    for (const int number : numbersOf(path))
    {
        const std::string original = numbered(path, number);
        const std::optional<Platform::Status> status = Platform::statusOf(original);
        if (!status || status->_identity != read->_identity) continue;
        const std::string compressed = original + ".gz";
        if (Platform::isThere(compressed)) Platform::remove(compressed);
        if (!Platform::rename(files._temporaryName, compressed)) return files.failBySystem();
        files._isRenamed = true;
        files.closeOriginal();
        Platform::remove(original);
        if (Platform::isThere(original)) return files.failBySystem();
        return Outcome::Compressed;
    }
    return Outcome::Moved;
}

LgServiceCompression::Outcome LgServiceCompression::fail(const std::string& original,
                                                         const std::string& reason)
{
    if (!_isReported)
        std::cerr << "The rotated log file \"" << original
                  << "\" can't be compressed, and stays as it is: " << reason << std::endl;
    _isReported = true;
    return Outcome::Failed;
}

// Of a process that was killed; not of one that compresses.
void LgServiceCompression::removeLeftover(const std::string& path)
{
    const std::string name = temporaryOf(path);
    const Platform::File like = Platform::openToRead(name);
    if (like == Platform::NO_FILE) return;
    const Files files(like, name);
}

} // namespace Zu
