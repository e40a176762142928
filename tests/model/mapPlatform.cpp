#include "mapPlatform.h"

#include "app/lgMapFile.h"
#include "app/lgServiceFile.h"
#include "base/lgQueue.h"
#include "base/osOutputFile.h"
#include "modelChecker.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

namespace
{

using handOver::LeftState;
namespace LgMap = Zu::LgMap;

constexpr std::intptr_t LOG = 100;
// More than a scenario writes.
constexpr std::size_t LOG_SIZE = 65536;
constexpr std::int64_t NOW = 1'700'000'000'000'000'000;

alignas(LeftState::BLOCK_SIZE) char theMap[LeftState::SIZE];
std::vector<char> theKept;
std::vector<std::pair<std::size_t, std::size_t>> theChanges;
// Of the process that runs.
std::string theLog;
LeftState* theState = nullptr;
std::vector<std::size_t> theSteps;
bool hasOther = false;
std::size_t theQueues = LeftState::BLOCKS;
// Behind how many bytes the next write fails.
std::optional<std::size_t> theFailure;
std::ostream* theOutput = nullptr;

// Of the queue's object, in the order of their places.
struct Position
{
    std::uint32_t _at;
    std::uint32_t _size;
};

class AnyQueue : public Zu::LgQueue
{
public:
    AnyQueue() : LgQueue(1, 4, 64) {}
};

std::array<Position, 5> findPositions()
{
    const AnyQueue queue;
    const Zu::LgQueue::Places places = queue.getPlaces();
    return {{{places._entriesBegin, 4},
             {places._entriesEnd, 4},
             {places._textBegin, 4},
             {places._textEnd, 4},
             {places._lost, 8}}};
}

std::array<Position, 5> thePositions;

const std::string& logNow()
{
    return theState ? theState->getLog() : theLog;
}

void noteRead(std::uint64_t offset, std::size_t size)
{
    if (offset >= LgMap::BATCHES_AT && offset < LgMap::QUEUES_AT)
        hasOther |= !theState->isCounted((offset - LgMap::BATCHES_AT) / LgMap::BATCH_SPACE);
    for (std::size_t i = 0; i < size && offset >= LgMap::QUEUES_AT; ++i)
        hasOther |= !mapPlatform::isRead(offset + i);
}

} // namespace

namespace mapPlatform
{

char* map()
{
    return theMap;
}

bool isRead(std::size_t at)
{
    if (at < LgMap::BLOCKS_AT) return at < LeftState::TABLE_END;
    const std::size_t block = (at - LgMap::BLOCKS_AT) / LeftState::BLOCK_SIZE;
    const std::size_t inBlock = (at - LgMap::BLOCKS_AT) % LeftState::BLOCK_SIZE;
    if (block >= theQueues || inBlock >= LgMap::PAGE) return true;
    return std::any_of(thePositions.begin(), thePositions.end(),
                       [inBlock](const Position& position) {
                           return inBlock >= position._at &&
                                  inBlock < position._at + position._size;
                       });
}

void keep()
{
    thePositions = findPositions();
    theKept.assign(theMap, theMap + sizeof theMap);
    // So that it needs no memory of a scenario.
    theLog.reserve(LOG_SIZE);
}

const char* kept()
{
    return theKept.data();
}

void setQueues(std::size_t count)
{
    theQueues = count;
}

void failNextWrite(std::size_t bytes)
{
    theFailure = bytes;
}

void reset()
{
    theQueues = LeftState::BLOCKS;
    theFailure.reset();
    for (const auto& [at, size] : theChanges) std::memcpy(theMap + at, theKept.data() + at, size);
    theChanges.clear();
    theLog.clear();
    theOutput = nullptr;
}

void noteChange(std::size_t at, std::size_t size)
{
    theChanges.emplace_back(at, size);
}

void setState(LeftState* state)
{
    theState = state;
    theSteps.clear();
    hasOther = false;
}

std::vector<std::size_t> getSteps()
{
    return theSteps;
}

bool hasReadOther()
{
    return hasOther;
}

void setOutput(std::ostream* output)
{
    theOutput = output;
}

void note(Note note, char character)
{
    model::note(static_cast<std::uint64_t>(note) << 8 | static_cast<unsigned char>(character));
}

const char* textOf(char letter)
{
    static char theTexts[LeftState::EVENTS][3];
    char* const text = theTexts[letter - 'a'];
    text[0] = letter;
    text[1] = '.';
    return text;
}

} // namespace mapPlatform

// The outputs of all levels are the same.
extern "C" std::ostream* __wrap__ZN2Zu5LgLog14getLevelOutputENS_7LgTypes5LevelE(Zu::LgTypes::Level)
{
    return theOutput;
}

extern "C" std::intptr_t __wrap__ZN2Zu16osOpenOutputFileEPKcNS_12OsOutputModeE(const char*,
                                                                               Zu::OsOutputMode)
{
    return LOG;
}

namespace Zu
{

LgMapFile::~LgMapFile() = default;

bool LgMapFile::fail()
{
    return false;
}

bool LgMapFile::create(const std::string& path)
{
    _path = path;
    return true;
}

bool LgMapFile::extend(std::uint64_t size)
{
    return size <= sizeof theMap;
}

bool LgMapFile::reserve(std::uint64_t, std::uint64_t)
{
    return true;
}

void* LgMapFile::map(std::uint64_t offset, std::uint64_t)
{
    return theMap + offset;
}

// As where files have no holes: byte by byte.
void LgMapFile::clear(void* place, std::uint64_t, std::uint64_t size)
{
    std::memset(place, 0, size);
}

void LgMapFile::rename(const std::string&) {}

void LgMapFile::remove() {}

bool LgMapFile::reservesInSteps()
{
    return true;
}

bool LgMapFile::replaceByPrivate(void*, std::uint64_t)
{
    return false;
}

void LgMapFile::unmap(void*, std::uint64_t) {}

LgLeftFile::~LgLeftFile() = default;

LgLeftFile::Outcome LgLeftFile::open(const std::string&)
{
    return Outcome::Opened;
}

std::uint64_t LgLeftFile::getSize() const
{
    return LeftState::SIZE;
}

bool LgLeftFile::read(std::uint64_t offset, void* to, std::size_t size) const
{
    if (offset > LeftState::SIZE || size > LeftState::SIZE - offset) return false;
    noteRead(offset, size);
    std::memcpy(to, theState->getMap() + offset, size);
    return true;
}

bool LgLeftFile::write(std::uint64_t offset, const void* from, std::size_t size)
{
    theState->write(offset, static_cast<const char*>(from), size);
    theSteps.push_back(theState->getLength());
    return true;
}

void LgLeftFile::remove()
{
    theState->remove();
}

std::int64_t lgWallClock()
{
    return NOW;
}

LgProcessFacts lgProcessFacts()
{
    return {7, NOW, "host", "boot"};
}

std::string lgMapDirectory()
{
    return "/";
}

std::string lgMapPrefix()
{
    return "map-";
}

std::vector<std::string> lgNamesIn(const std::string&, const std::string&)
{
    return {};
}

std::int64_t LgServiceFile::getLocalOffset(std::int64_t)
{
    return 0;
}

namespace LgServiceFilePlatform
{

int lastError()
{
    return ENOSYS;
}

int notOpen()
{
    return EBADF;
}

std::optional<Status> statusOf(File)
{
    return Status{LgServiceFile::Identity{1, 1}, logNow().size(), 0, true};
}

std::optional<Status> statusOf(const std::string&)
{
    return statusOf(LOG);
}

Target targetOf(const std::string&, File, const LgServiceFile::Identity&)
{
    return Target::SAME;
}

bool isThere(const std::string&)
{
    return false;
}

// The process may be killed behind each byte.
std::ptrdiff_t write(File, const char* text, std::size_t size)
{
    if (!theState && theFailure)
    {
        if (*theFailure == 0)
        {
            theFailure.reset();
            return -1;
        }
        size = std::min(size, *theFailure);
        theFailure = 0;
    }
    for (std::size_t i = 0; i < size; ++i)
    {
        if (!theState)
        {
            theLog += text[i];
            mapPlatform::note(mapPlatform::Note::Written, text[i]);
            continue;
        }
        theState->append(text[i]);
        theSteps.push_back(theState->getLength());
    }
    return static_cast<std::ptrdiff_t>(size);
}

std::ptrdiff_t readAt(File, std::uint64_t offset, char* buffer, std::size_t size)
{
    const std::string& log = logNow();
    const std::size_t begin = std::min<std::size_t>(offset, log.size());
    const std::size_t count = std::min(size, log.size() - begin);
    std::memcpy(buffer, log.data() + begin, count);
    return static_cast<std::ptrdiff_t>(count);
}

bool rename(const std::string&, const std::string&)
{
    return false;
}

void remove(const std::string&) {}

File openToRead(const std::string&)
{
    return NO_FILE;
}

File createAlone(const std::string&, File)
{
    return NO_FILE;
}

bool isInUse(int)
{
    return false;
}

bool keepsNamesOfOpenFiles()
{
    return false;
}

File duplicate(File)
{
    return NO_FILE;
}

bool sync(File)
{
    return true;
}

void close(File) {}

std::string textOf(int)
{
    return "an error";
}

} // namespace LgServiceFilePlatform

} // namespace Zu
