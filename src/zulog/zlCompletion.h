/// @file
/// The completion of zulog's command line in shells.

#ifndef ZU_ZULOG_ZLCOMPLETION_H
#define ZU_ZULOG_ZLCOMPLETION_H

#include <string>

namespace CLI
{
class App;
} // namespace CLI

namespace Zu
{

/// A script for bash that completes commands, their options, and values of options: those of a set,
/// and names of files. Which these are, it takes from the definition of the command line: a set is
/// what the option is checked for, and the type FILE or DIRECTORY stands for names of files, as
/// does the name of a positional FILE or MAP. A positional PROCESS is completed by `zulog ps`.
std::string zlBashCompletion(const CLI::App& app);

} // namespace Zu

#endif
