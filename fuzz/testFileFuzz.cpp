// The file of a performance run.

#include "base/exInternalError.h"
#include "base/osFilePath.h"
#include "base/testGroup.h"
#include "base/testPerformer.h"

#include "fuzzTarget.h"
#include "hardwareCounter.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

const std::string LONG_NAME(47, 'L');

// The calls of the groups, in order.
Texts journal;

// A file may request a huge number of cycles. An exception of a group ends them.
constexpr std::size_t MOST_RUNS = 40;
std::size_t runs = 0;

struct EnoughRuns
{
};

class Group : public Zu::TestGroup
{
public:
    explicit Group(const std::string& name) : TestGroup(name.c_str()), _name(name) {}

    void prepare(int argc, char** const argv) override
    {
        note("prepare", argc, argv);
    }

    void run(int argc, char** const argv) override
    {
        note("run", argc, argv);
        if (++runs == MOST_RUNS) throw EnoughRuns();
    }

private:
    void note(const std::string& operation, int argc, char** const argv)
    {
        std::string text = operation + " " + _name;
        for (int i = 0; i < argc; ++i) text += " <" + std::string(argv[i]) + ">";
        FUZZ_REQUIRE(!argv[argc]);
        journal.push_back(text);
    }

    std::string _name;
};

bool isGroup(const std::string& name)
{
    static const Group theGroups[] = {Group("A"), Group("Lookup"), Group(LONG_NAME)};
    for (const Group& group : theGroups)
        if (group.getName() == name) return true;
    return false;
}

struct Record
{
    std::string _name;
    std::int32_t _cycles;
    Texts _args;
};

struct Expected
{
    std::vector<Record> _records;
    std::optional<std::string> _error;
};

std::string shown(const std::string& beginning, const std::string& token)
{
    return token.size() < 128 ? beginning + token + ">." : beginning;
}

// The error in a line that is not empty.
std::optional<std::string> readLine(const Texts& tokens, std::vector<Record>& records)
{
    const std::string& name = tokens[0];
    if (name.size() > 47) return shown("Test group name is too long: <", name);
    if (!isGroup(name)) return shown("Invalid test group name: <", name);
    const std::string cycleText = tokens.size() > 1 ? tokens[1] : "";
    const long long cycles = std::strtoll(cycleText.c_str(), nullptr, 10);
    if (cycles == 0) return shown("Invalid number of cycles: <", cycleText);
    Record record{name, 0, {}};
    record._cycles = cycles > INT32_MAX   ? INT32_MAX
                     : cycles < INT32_MIN ? INT32_MIN
                                          : static_cast<std::int32_t>(cycles);
    if (tokens.size() > 18) return "Too many args to test group.";
    if (tokens.size() > 2) record._args.assign(tokens.begin() + 2, tokens.end());
    records.push_back(record);
    return std::nullopt;
}

// The effective lines: without a carriage return before the line feed; of a line that is too long
// the beginning, and nothing after it.
Texts linesOf(const std::vector<std::uint8_t>& bytes)
{
    Texts lines = fuzz::split(std::string(bytes.begin(), bytes.end()), '\n');
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        if (i + 1 < lines.size() && lines[i].ends_with('\r')) lines[i].pop_back();
        if (lines[i].size() <= 255) continue;
        lines[i].resize(255);
        lines.resize(i + 1);
        // A line that is empty up to its first NUL does not count.
        if (lines[i].c_str()[0] == '\0') lines.pop_back();
        return lines;
    }
    if (lines.back().c_str()[0] == '\0') lines.pop_back();
    return lines;
}

Expected expectedOf(const std::vector<std::uint8_t>& bytes)
{
    Expected expected;
    for (const std::string& line : linesOf(bytes))
    {
        if (expected._records.size() == 128)
        {
            expected._error = "Too many test groups in file.";
            return expected;
        }
        Texts tokens;
        for (const std::string& piece : fuzz::split(line.c_str(), ' '))
            if (!piece.empty()) tokens.push_back(piece);
        if (tokens.empty()) continue;
        expected._error = readLine(tokens, expected._records);
        if (expected._error) return expected;
    }
    return expected;
}

Texts journalOf(const std::vector<Record>& records)
{
    Texts expected;
    std::size_t count = 0;
    for (const Record& record : records)
    {
        std::string rest = " " + record._name;
        for (const std::string& arg : record._args) rest += " <" + arg + ">";
        for (std::int32_t cycle = 0; cycle < record._cycles; ++cycle)
        {
            expected.push_back("prepare" + rest);
            expected.push_back("run" + rest);
            if (++count == MOST_RUNS) return expected;
        }
    }
    return expected;
}

// The report has a row for each record, below a title of six lines and above one empty line.
void checkReport(const Zu::TestPerformer& performer, const std::vector<Record>& records)
{
    std::ostringstream report;
    report << performer;
    const Texts lines = fuzz::split(report.str(), '\n');
    FUZZ_REQUIRE(lines.size() == records.size() + 8);
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const std::string& line = lines[i + 6];
        const std::string cycles = std::to_string(records[i]._cycles) + " ";
        std::string args = "    ";
        for (const std::string& arg : records[i]._args) args += arg + " ";
        FUZZ_REQUIRE(line.compare(0, records[i]._name.size(), records[i]._name) == 0);
        FUZZ_REQUIRE(line.find(cycles, records[i]._name.size()) != std::string::npos);
        FUZZ_REQUIRE(line.size() >= args.size() &&
                     line.compare(line.size() - args.size(), args.size(), args) == 0);
    }
}

void run(fuzz::Input input)
{
    fuzz::startHardwareCounter();
    static const support::TempDir theDir;
    static const std::string theFile = theDir.file("groups");
    isGroup("");
    const std::vector<std::uint8_t> bytes = input.takeRest();
    std::ofstream(theFile, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));

    const Expected expected = expectedOf(bytes);
    journal.clear();
    runs = 0;
    std::optional<std::string> error;
    const support::StreamCapture capture(std::cout);
    // A performer keeps the arguments of all files, so each file has its own.
    Zu::TestPerformer performer(Zu::TestPerformer::getInstance());
    try
    {
        performer.execute(Zu::OsFilePath(theFile.c_str()));
    }
    catch (const Zu::ExInternalError& exception)
    {
        error = exception.getReason();
    }
    catch (const EnoughRuns&)
    {
        FUZZ_REQUIRE(runs == MOST_RUNS);
    }
    FUZZ_REQUIRE(error == expected._error);
    FUZZ_REQUIRE(journal == (error ? Texts() : journalOf(expected._records)));
    if (!error) checkReport(performer, expected._records);
}

} // namespace

FUZZ_TARGET(testFile, run);
