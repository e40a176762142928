// The files of a process whose end is explored: its map and its log file, both in memory. While a
// scenario runs they are what its threads write to; while what it has left is recovered, they are
// those of a state that it may have left.

#ifndef ZU_TESTS_MODEL_MAPPLATFORM_H
#define ZU_TESTS_MODEL_MAPPLATFORM_H

#include "leftState.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace mapPlatform
{

// The memory that the map is mapped to: LeftState::SIZE bytes.
char* map();

// Whether a recovery looks at this place at all. Of the object of a queue it only looks at the
// positions.
bool isRead(std::size_t at);

// How many blocks are queues; the others have lines that wait for a file that fails. All are unless
// a scenario says so at its beginning.
void setQueues(std::size_t count);

// Has the next write to the log file fail behind so many bytes.
void failNextWrite(std::size_t bytes);

// Before an execution: the map as it was prepared, no log.
void reset();

// That the map was changed there, since it was prepared.
void noteChange(std::size_t at, std::size_t size);

// Keeps the map as it is for reset().
void keep();
const char* kept();

// What is recovered; null for the files of the running process.
void setState(handOver::LeftState* state);

// How many changes the state had each time when the recovery may be killed, since setState().
std::vector<std::size_t> getSteps();

// Whether it read what it should not look at.
bool hasReadOther();

// The stream of all levels; null for none.
void setOutput(std::ostream* output);

// A note for the watcher.
enum class Note : std::uint8_t
{
    // A byte of the log file.
    Written,
    Begun,
    Accepted,
    Lost
};
void note(Note note, char character);

// The text of an event. The compiler does not know how long it is, and so calls what copies it.
const char* textOf(char letter);

} // namespace mapPlatform

#endif
