/// @file
/// What zulog needs of the system beside files.

#ifndef ZU_ZULOG_ZLPLATFORM_H
#define ZU_ZULOG_ZLPLATFORM_H

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

/// Whether the file is a terminal that people look at.
bool isTerminal(std::FILE* file);

/// Starts a pager that reads what is written to the file; null if there is none. $PAGER names it;
/// otherwise it is less on Linux, and there is none on Windows.
std::FILE* openPager();

/// Waits until it has ended.
void closePager(std::FILE* pager);

/// Makes or empties a file, whose name is in UTF-8. Raises ZlError.
std::FILE* openToWrite(const std::string& name);

/// UTC in nanoseconds since 1970.
std::int64_t getNow();

} // namespace ZlPlatform

} // namespace Zu

#endif
