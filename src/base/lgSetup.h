/// @file
/// The outputs of the levels as configured by the environment. Internal to the library.

#ifndef ZU_BASE_LGSETUP_H
#define ZU_BASE_LGSETUP_H

#include "lgTypes.h"

#include <functional>
#include <optional>
#include <string>

namespace Zu
{

/// All levels, in their order.
inline constexpr LgTypes::Level LG_LEVELS[] = {
    LgTypes::InternalError, LgTypes::FatalError, LgTypes::Error,    LgTypes::Warning,
    LgTypes::Informational, LgTypes::Tracing,    LgTypes::Profiling};

/// Where the text of one level goes.
struct LgLevelSetup
{
    bool _enabled = false;
    bool _echo = false;
    bool _append = false;
    /// The file name as given. An empty name also counts, but no file can be opened by it.
    std::optional<std::string> _file;
    /// Whether the file was meant for a log directory that can't be used.
    bool _isFileMissing = false;

    bool operator==(const LgLevelSetup&) const = default;
};

/// The paths of the files in the log directory; both are empty if the directory can't be used.
struct LgLogFiles
{
    std::string _events;
    std::string _profiles;
};

/// The set-up of all levels. It opens no files.
class LgSetup
{
public:
    /// Reads a variable: returns its value, or null if it is not set.
    using Environment = std::function<const char*(const char*)>;

    /// Reads the value of a level's variable:
    ///
    /// | value | enabled | echo | append | file |
    /// |---|---|---|---|---|
    /// | `%` | yes | yes | no | none |
    /// | `+` | yes | no | yes | none |
    /// | `%+` or `++`, and a name, which may be empty | yes | by the first mark | yes | the name |
    /// | `%name` | yes | yes | no | the name |
    /// | `+name` | yes | no | yes | the name, `%` in front of it included |
    /// | `--`, whatever follows | no | no | no | none |
    /// | anything else | yes | no | no | the value |
    static LgLevelSetup parse(const char* value);

    /// Reads the variables of all levels. Deliberately, levels without a variable keep some
    /// settings of an earlier start: Internal Error and Profiling their echo and append flags,
    /// Tracing its append flag and its file.
    void read(const Environment& environment, const LgLogFiles& files);

    /// @{
    /// The set-up of a level.
    LgLevelSetup& operator[](LgTypes::Level level)
    {
        return _levels[level];
    }

    const LgLevelSetup& operator[](LgTypes::Level level) const
    {
        return _levels[level];
    }
    /// @}

private:
    LgLevelSetup _levels[LgTypes::NUM_LEVELS];
};

} // namespace Zu

#endif
