/// @file
/// The texts with which a program explains itself. Internal to the kit.

#ifndef ZU_APP_APUSAGE_H
#define ZU_APP_APUSAGE_H

#include "apSettings.h"

#include "../base/dbgBuildText.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// What the texts are about.
struct ApUsage
{
    /// The program's name, without directories.
    std::string _program;
    /// One or more sentences; may be empty.
    std::string _purpose;
    /// The words that it takes, as "FILE..."; empty for none.
    std::string _words;
    const ApSettings* _settings = nullptr;
    /// The options that every program has.
    std::vector<ApOption> _common;
    /// The file of settings that is read if no other is named; empty for none.
    std::string _settingsFile = {};

    /// The text of `--help`, with a line end.
    std::string help() const;

    /// The script of `--completion`, for bash.
    std::string completion() const;
};

/// The text of `--version`, with a line end: the name and the version, then a line for each fact
/// that the record has.
std::string apVersion(const DbgBuildText& build);

/// The last component of a path, without ".exe"; separators are those of both platforms.
std::string apProgramName(std::string_view path);

} // namespace Zu

#endif
