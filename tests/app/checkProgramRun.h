// Runs of checkProgram, for the tests of checks and of their runner.

#ifndef ZU_TESTS_CHECKPROGRAMRUN_H
#define ZU_TESTS_CHECKPROGRAMRUN_H

#include "support/childProcess.h"

#include <regex>
#include <string>
#include <vector>

namespace support
{

// The environment decides nothing unless the test says so.
inline ProgramResult runChecks(const std::vector<std::string>& words, Environment environment = {})
{
    for (const char* const name :
         {"CHECK_PROGRAM", "ZU_LOG_GROUPS", "ZU_RUN_TEST_MSGS", "ZU_TRACE_OPTIONS"})
        environment.emplace(name, std::nullopt);
    return runProgram("checkProgram", words, environment);
}

// The text with "<line>" for numbers of lines and "<time>" for seconds, and without the folders of
// the source, whose names depend on how it was compiled.
inline std::string withoutNumbers(const std::string& text)
{
    const std::string named =
        std::regex_replace(text, std::regex("[^ \"\n>]*checkProgram\\.cpp:[1-9][0-9]*: "),
                           "checkProgram.cpp:<line>: ");
    return std::regex_replace(named, std::regex("[0-9]+\\.[0-9]{3,6}( s\n|\")"), "<time>$1");
}

// What is put in front of a check's text.
inline std::string failedIn(const std::string& group)
{
    return "Check failed: " + group + ": checkProgram.cpp:<line>: ";
}

inline const std::string OUTSIDE = "Check outside of a group: checkProgram.cpp:<line>: ";

} // namespace support

#endif
