// What a process that is killed leaves: the file with its queues, and its log file; besides, which
// of its statements had returned.

#ifndef ZU_TESTS_MODEL_LEFTSTATE_H
#define ZU_TESTS_MODEL_LEFTSTATE_H

#include "app/lgMapLayout.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace handOver
{

// What is known of an event, whose text is a letter and a full stop.
enum class Statement : std::uint8_t
{
    None,
    Begun,
    // It has returned: the event is accepted.
    Accepted,
    // It has returned: the event is lost.
    Lost
};

// Each change can be taken back, and made again.
class LeftState
{
public:
    static constexpr std::size_t EVENTS = 26;
    // Room for so much: queues have one block each.
    static constexpr std::size_t BLOCKS = 8;
    static constexpr std::size_t QUEUES = 4;
    static constexpr std::size_t BLOCK_SIZE = 0x10000;
    static constexpr std::size_t SIZE = Zu::LgMap::BLOCKS_AT + BLOCKS * BLOCK_SIZE;
    // Of the table of queues, which is longer.
    static constexpr std::size_t TABLE_END =
        Zu::LgMap::QUEUES_AT + QUEUES * sizeof(Zu::LgMap::Queue);

    struct Change
    {
        enum Kind : std::uint8_t
        {
            Byte,
            Append,
            Note,
            Remove
        };
        Kind _kind;
        std::uint8_t _old;
        std::uint8_t _new;
        // The place in the map, or the number of the event.
        std::uint32_t _at;
        // Of the log file, before.
        std::uint64_t _hash;
    };

    // The map as it is before the process logs anything.
    explicit LeftState(const char* map);

    void write(std::size_t at, const char* bytes, std::size_t size);
    void append(char character);
    void note(std::size_t event, Statement statement);
    void remove();

    const char* getMap() const
    {
        return _map.data();
    }

    const std::string& getLog() const
    {
        return _log;
    }

    Statement getStatement(std::size_t event) const
    {
        return _statements[event];
    }

    bool isRemoved() const
    {
        return _isRemoved;
    }

    // The number of changes so far.
    std::size_t getLength() const
    {
        return _changes.size();
    }

    std::vector<Change> getChangesFrom(std::size_t length) const
    {
        return {_changes.begin() + static_cast<std::ptrdiff_t>(length), _changes.end()};
    }

    void undoTo(std::size_t length);
    void redo(const Change& change);

    // Whether a batch is the one that counts, and is one.
    bool isCounted(std::size_t batch) const;

    // The same for states that are the same for who reads them: a batch that does not count is not
    // read.
    std::uint64_t getKey() const;

private:
    void set(std::size_t at, char value);

    std::vector<char> _map;
    std::string _log;
    std::array<Statement, EVENTS> _statements{};
    bool _isRemoved = false;
    std::vector<Change> _changes;
    // Of the two batches, and of all else in the map; of the statements.
    std::array<std::uint64_t, 3> _sums{};
    std::uint64_t _statementsSum = 0;
    std::uint64_t _logHash = 0;
};

} // namespace handOver

#endif
