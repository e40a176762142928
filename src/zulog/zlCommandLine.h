/// @file
/// The command line of zulog.

#ifndef ZU_ZULOG_ZLCOMMANDLINE_H
#define ZU_ZULOG_ZLCOMMANDLINE_H

#include "zlControl.h"
#include "zlRecover.h"
#include "zlShip.h"
#include "zlShow.h"
#include "zlStats.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// What the words of the command line ask for.
struct ZlCommand
{
    enum class Name
    {
        /// The text in `_text` is all that is to be printed, and `_exit` the exit value.
        Print,
        Show,
        Follow,
        Stats,
        Html,
        RecoverList,
        RecoverShow,
        RecoverWrite,
        RecoverRemove,
        Processes,
        Level,
        /// Never returned: it becomes Print.
        Completion,
        Ship
    };

    Name _name = Name::Print;
    ZlShowOptions _show;
    bool _isPaged = false;
    /// Of what is there already, follow shows so many records.
    std::size_t _lines = 10;
    ZlStatsOptions _stats;
    bool _isStatsJson = false;
    /// Where the page goes, or empty for standard output; and its title.
    std::string _pageFile;
    std::string _pageTitle;
    ZlRecoverOptions _recover;
    ZlControlOptions _control;
    /// Without what `_show` has.
    ZlShipOptions _ship;
    std::string _text;
    int _exit = 0;
    /// What is to be reported before the command runs.
    std::vector<std::string> _notes;
};

/// What the command line depends on beside its words.
struct ZlSurroundings
{
    bool _isOutputTerminal = false;
    /// Whether the environment has NO_COLOR with a value.
    bool _isColourRefused = false;
    /// UTC in nanoseconds since 1970.
    std::int64_t _now = 0;
};

/// Reads the words behind the program's name. What can't be used is a command of the name Print
/// with the exit value 2, whose text goes to standard error.
ZlCommand zlReadCommandLine(std::vector<std::string> words, const ZlSurroundings& surroundings);

} // namespace Zu

#endif
