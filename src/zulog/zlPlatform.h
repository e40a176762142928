/// @file
/// What zulog needs of the system beside files.

#ifndef ZU_ZULOG_ZLPLATFORM_H
#define ZU_ZULOG_ZLPLATFORM_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace Zu
{

namespace ZlPlatform
{

/// The words of the command line behind the program's name, in UTF-8.
std::vector<std::string> getWords(int argc, char** argv);

/// Prepares the process: output is not translated, a closed pipe is an error and no signal, and as
/// many files can be open as the system permits.
void prepare();

/// How many files this process can have open at once.
std::size_t getFileLimit();

/// Whether the file is a terminal that people look at.
bool isTerminal(std::FILE* file);

/// The pager where the environment names none; empty if the platform has none.
std::string getUsualPager();

/// Whether the shell finds a program of this name, which has no characters special to it.
bool hasProgram(const std::string& name);

/// Starts a command of the shell that reads what is written to the file; null if that fails.
std::FILE* openPager(const std::string& command);

/// Waits until it has ended. False if the shell has not found the command, as far as it says so.
bool closePager(std::FILE* pager);

/// Makes or empties a file, whose name is in UTF-8; with `isNew`, it must not be there. Null, with
/// the reason, if that fails.
std::FILE* openToWrite(const std::string& name, bool isNew, std::string& reason);

/// UTC in nanoseconds since 1970.
std::int64_t getNow();

} // namespace ZlPlatform

} // namespace Zu

#endif
