#include "base/testPerformer.h"

#include "base/duplicateString.h"
#include "base/exInternalError.h"
#include "base/plainTextStream.h"
#include "base/testGroup.h"
#include "base/testTrace.h"
#include "base/textToInt.h"
#include "base/textTokens.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <ostream>
#include <string>

namespace Zu
{

ZU_TRACE_LEVEL(TestPerformer);

namespace
{

// The maximum length of a line.
constexpr std::streamsize MAX_LENGTH = 255;

// Blanks alone separate the words of a line.
constexpr char BLANK = ' ';

// A token of this length or more is not shown.
constexpr std::size_t TOKEN_LIMIT = 128;

[[noreturn]] void raise(const std::string& text, int line)
{
    testThrow(ExInternalError(__FILE__, line, text.c_str()), __FILE__, line);
}

// Reports what is wrong, followed by the wrong token.
[[noreturn]] void raise(const char* text, const char* token, int line)
{
    const bool isShown = std::strlen(token) < TOKEN_LIMIT;
    raise(isShown ? std::string(text) + token + ">." : std::string(text), line);
}

// Reads a line, which ends in a line feed, or in a carriage return and a line feed. Only the
// beginning of a line that is too long is read, and the stream has failed from there on.
std::string nextLine(std::istream& stream)
{
    // Room for a carriage return, and for the terminator.
    char line[MAX_LENGTH + 2] = "";
    stream.getline(line, sizeof line);
    std::streamsize length = stream.gcount();
    // A good stream has consumed a line feed, too.
    if (stream.good() && --length > 0 && line[length - 1] == '\r') line[--length] = '\0';
    if (length > MAX_LENGTH) stream.setstate(std::ios_base::failbit);
    line[MAX_LENGTH] = '\0';
    return line;
}

template <class Args> std::string wordsOf(const Args& args, int argc)
{
    std::string text;
    for (int i = 0; i < argc; ++i) text += std::string(args[static_cast<std::size_t>(i)]) + " ";
    return text;
}

} // namespace

TestPerformer::TestPerformer() = default;

TestPerformer::~TestPerformer() = default;

TestPerformer& TestPerformer::getInstance()
{
    static TestPerformer* const thePerformer = new TestPerformer;
    return *thePerformer;
}

void TestPerformer::loadFile(const char* name)
{
    ZU_TRACE_SCOPE(TestPerformer, "TestPerformer::loadFile()");
    // Binary, so that a text is the same on every platform.
    std::ifstream stream(name, std::ios_base::in | std::ios_base::binary);
    // Some platforms open a directory like a file, and only fail to read it.
    stream.peek();
    if (stream.bad() || !stream.is_open()) raise("Invalid file name : <", name, __LINE__);
    _count = 0;
    std::string line = nextLine(stream);
    // The end of the file may follow the last line directly, even one that is too long: what could
    // be read of it counts, and then the stream has failed.
    while (stream.good() || !line.empty())
    {
        if (_count == MAX_RECORDS) raise("Too many test groups in file.", __LINE__);
        loadLine(line.data());
        line = stream.eof() ? std::string() : nextLine(stream);
    }
    if (stream.bad()) raise("Invalid file name : <", name, __LINE__);
}

void TestPerformer::loadLine(char* line)
{
    Record& record = _records[static_cast<std::size_t>(_count)];
    record._argc = 0;
    record._args[0] = nullptr;
    const char* const name = nextToken(line, BLANK);
    if (!name) return;
    takeName(record, name);
    const char* const cycles = nextToken(line, BLANK);
    takeCycles(record, cycles ? cycles : "");
    while (const char* const argument = nextToken(line, BLANK)) takeArgument(record, argument);
}

void TestPerformer::takeName(Record& record, const char* token)
{
    if (std::strlen(token) + 1 > NAME_SIZE)
        raise("Test group name is too long: <", token, __LINE__);
    std::strcpy(record._name, token);
    record._group = TestGroup::getInstance(token);
    if (!record._group) raise("Invalid test group name: <", token, __LINE__);
    ++_count;
}

void TestPerformer::takeCycles(Record& record, const char* token)
{
    record._cycles = textToInt(token);
    if (record._cycles == 0) raise("Invalid number of cycles: <", token, __LINE__);
}

void TestPerformer::takeArgument(Record& record, const char* token)
{
    if (record._argc == MAX_ARGS) raise("Too many args to test group.", __LINE__);
    ArrayPtr<char> copy = duplicateString(token);
    _texts.emplace_back(copy.release());
    record._args[static_cast<std::size_t>(record._argc++)] = _texts.back().get();
    record._args[static_cast<std::size_t>(record._argc)] = nullptr;
}

void TestPerformer::execute(const OsFilePath& file)
{
    loadFile(file.getChars());
    reset();
    for (std::int32_t i = 0; i < _count; ++i) execute(_records[static_cast<std::size_t>(i)]);
}

void TestPerformer::execute(Record& record)
{
    for (int cycle = 0; cycle < record._cycles; ++cycle) executeCycle(record, cycle);
    record._averageTime = averageOf(_todProfiler.averageTime(), _hwProfiler.averageTime());
    reset();
}

double TestPerformer::averageOf(double timeOfDay, double counter)
{
    // In seconds. Above this average the hardware counter is not trusted.
    constexpr double LONG_TIME = 30.0;
    return timeOfDay > LONG_TIME ? timeOfDay : counter;
}

void TestPerformer::executeCycle(Record& record, int cycle)
{
    TestGroup& group = *record._group;
    group.prepare(record._argc, record._args.data());
    testPrint(std::string("Executing ") + record._name + " cycle " + std::to_string(cycle) + " " +
              wordsOf(record._args, record._argc));
    start();
    group.run(record._argc, record._args.data());
    stop();
    endCycle();
    PlainTextStream report;
    report << "End of cycle.  Call terminate.\n_todProfiler\n" << _todProfiler;
    report << "\n_hwProfiler\n" << _hwProfiler;
    testPrint(report.str());
    group.terminate();
    PlainTextStream result;
    group.dump(result);
    testPrint(result.str());
}

void TestPerformer::start()
{
    _hwProfiler.start();
    _todProfiler.start();
}

void TestPerformer::stop()
{
    _hwProfiler.stop();
    _todProfiler.stop();
}

void TestPerformer::endCycle()
{
    _hwProfiler.endCycle();
    _todProfiler.endCycle();
}

void TestPerformer::reset()
{
    _hwProfiler.reset();
    _todProfiler.reset();
}

std::ostream& operator<<(std::ostream& os, const TestPerformer& performer)
{
    os << "\n\nGroup Name              nbCycles   average time    options\n"
          "----------              --------   ------------    -------\n\n\n";
    for (std::int32_t i = 0; i < performer._count; ++i)
    {
        const TestPerformer::Record& record = performer._records[static_cast<std::size_t>(i)];
        // The largest double has 309 digits before its decimal point.
        char average[320];
        *std::to_chars(average, average + sizeof average - 1, record._averageTime,
                       std::chars_format::fixed, 6)
             .ptr = '\0';
        char row[512];
        std::snprintf(row, sizeof row, "%-24s %7d %14s    ", record._name,
                      static_cast<int>(record._cycles), average);
        os << row << wordsOf(record._args, record._argc) << "\n";
    }
    return os << "\n";
}

} // namespace Zu
