// Runs a test program to its end and returns its results.

#ifndef ZU_TESTS_CHILDPROCESS_H
#define ZU_TESTS_CHILDPROCESS_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace support
{

struct ProgramResult
{
    // The exit value; meaningless when the program was aborted.
    int exitCode = -1;
    // Whether the program was ended by abort() or a similar fatal signal.
    bool aborted = false;
    // On Linux the signal that ended it; 0 if none did.
    int signal = 0;
    // What it wrote, with line endings reduced to line feeds.
    std::string out;
    std::string err;
};

// Changes to the environment; std::nullopt removes the variable.
using Environment = std::map<std::string, std::optional<std::string>>;

// Runs the program of this name from the directory of test programs. Standard input is empty. Its
// log files go to a private directory, unless the environment names one.
ProgramResult runProgram(const std::string& name, const std::vector<std::string>& arguments = {},
                         const Environment& environment = {});

// The paths of the test program and of the module of this name.
std::string programPath(const std::string& name);
std::string modulePath(const std::string& name);

// The lines of a text, without their ends.
std::vector<std::string> linesOf(const std::string& text);

// Runs a program by its path; the platform's part of runProgram(). The output streams go to two
// files.
void runToFiles(const std::string& path, const std::vector<std::string>& arguments,
                const Environment& environment, const std::string& outFile,
                const std::string& errFile, ProgramResult& result);

} // namespace support

#endif
