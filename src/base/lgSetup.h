/// @file
/// What the environment says about the outputs of the levels. Internal to the library.

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
    /// The file as it was named. An empty name is one, too, which no file has.
    std::optional<std::string> _file;
    /// Whether the file was to stand in a log directory that can't be used.
    bool _isFileMissing = false;

    bool operator==(const LgLevelSetup&) const = default;
};

/// The paths of the files in the log directory; both are empty if the directory can't be used.
struct LgLogFiles
{
    std::string _events;
    std::string _profiles;
};

/// The records of all levels. They open nothing.
class LgSetup
{
public:
    /// How a variable is read: its value, or null if it is not set.
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

    /// Reads the variables of all levels. Internal Error and Profiling without a variable keep
    /// their echo and append flags from an earlier start, Tracing its append flag and its file:
    /// deliberately.
    void read(const Environment& environment, const LgLogFiles& files);

    /// @{
    /// The record of a level.
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
