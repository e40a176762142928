/// @file
/// Performance runs of test groups.

#ifndef ZU_BASE_TESTPERFORMER_H
#define ZU_BASE_TESTPERFORMER_H

#include "baseApi.h"
#include "intervalTimer.h"
#include "osFilePath.h"
#include "profiler.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

namespace Zu
{

class TestGroup;

/// Runs the groups that a file names, each for a number of cycles, and measures each run by the
/// hardware counter and by the time of day; only run() itself is measured. docs/testing.md
/// documents the form of the file.
///
/// Thread-safety: one thread.
class ZU_BASE_API TestPerformer
{
    friend ZU_BASE_API std::ostream& operator<<(std::ostream& os, const TestPerformer& performer);

public:
    /// The one instance, made at first use; it lives to the end of the process.
    static TestPerformer& getInstance();

    TestPerformer(const TestPerformer&) = default;
    TestPerformer& operator=(const TestPerformer&) = default;
    ~TestPerformer();

    /// Loads a file and runs what it names, in its order; a negative number of cycles runs nothing.
    /// An exception that a group raises ends the run. An error in the file raises ExInternalError
    /// before anything is run:
    /// - "Invalid file name : <<name>>." for a file that can't be opened or read, including a
    ///   directory
    /// - "Too many test groups in file." for a line after the 128th group, even an empty one
    /// - "Test group name is too long: <<name>>." for more than 47 characters
    /// - "Invalid test group name: <<name>>." for a group that is not registered
    /// - "Invalid number of cycles: <<text>>." for 0, a text that is not a number, and a missing
    ///   one
    /// - "Too many args to test group." for more than 16
    ///
    /// A text of 128 characters or more, and the ">." after it, is left out of these.
    ///
    /// A line ends in a line feed, with or without a carriage return before it, on every platform.
    /// It has at most 255 characters. Of a longer one, only the first 255 count, and deliberately
    /// nothing after them is read.
    void execute(const OsFilePath& file);

private:
    static constexpr int MAX_RECORDS = 128;
    static constexpr int MAX_ARGS = 16;
    static constexpr int NAME_SIZE = 48;

    struct Record
    {
        char _name[NAME_SIZE];
        TestGroup* _group;
        std::int32_t _cycles;
        std::int32_t _argc;
        // Null after the last one.
        std::array<char*, MAX_ARGS + 1> _args;
        // For one cycle, in seconds.
        double _averageTime;
    };

    TestPerformer();

    void loadFile(const char* name);
    void loadLine(char* line);
    void takeName(Record& record, const char* token);
    void takeCycles(Record& record, const char* token);
    void takeArgument(Record& record, const char* token);

    void execute(Record& record);
    // Chooses between the averages of the two clocks.
    static double averageOf(double timeOfDay, double counter);
    void executeCycle(Record& record, int cycle);

    void start();
    void stop();
    void endCycle();
    void reset();

    std::array<Record, MAX_RECORDS> _records{};
    std::int32_t _count = 0;
    Profiler<HwIntervalTimer> _hwProfiler;
    Profiler<TodIntervalTimer> _todProfiler;
    // The arguments of all files: a group may keep those of an earlier one.
    std::vector<std::shared_ptr<char[]>> _texts;
};

/// Writes the table of average times.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const TestPerformer& performer);

} // namespace Zu

#endif
