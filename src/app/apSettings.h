/// @file
/// What a program can be given: the options and variables that its packages declare. Internal to
/// the kit.

#ifndef ZU_APP_APSETTINGS_H
#define ZU_APP_APSETTINGS_H

#include "apCommandLine.h"

#include <climits>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Zu
{

/// One value of a program, as its variable and the aliases declare it. Without a variable there is
/// only the option.
struct ApSetting
{
    /// What the texts of values are.
    enum class Kind
    {
        Text,
        Integer,
        Switch
    };

    /// Of the variable; may be empty.
    std::string _handle;
    Kind _kind = Kind::Text;
    /// The letter of the option, 0 for none, and its long name, which may be empty.
    char _letter = 0;
    bool _takesValue = false;
    std::string _longName;
    /// The letters of further options that set the variable; each has a setting of its own, without
    /// a handle, or belongs to another variable.
    std::string _moreLetters;
    /// The environment variable; may be empty.
    std::string _variable;
    /// Further ones, which are read in this order if those before are not set.
    std::vector<std::string> _moreVariables;
    /// The compiled-in value and its description.
    std::optional<std::string> _default;
    std::string _defaultText;
    /// What the value is for, in the words of the option or of the environment variable.
    std::string _description;
    /// Of an integer.
    int _least = INT_MIN;
    int _most = INT_MAX;
    bool _isRequired = false;

    /// What a text has to be, such as "a whole number from 0 to 65535"; for messages.
    std::string expected() const;

    /// Empty if the text can be used; otherwise a sentence without a full stop about `place`, which
    /// is what has the text, such as "option '-p'".
    std::string errorOf(const std::string& place, const std::string& text) const;
};

/// All settings of a program, and the checks of what it was given.
class ApSettings
{
public:
    /// Looks up an environment variable: its value, or null.
    using Environment = std::function<const char*(const char*)>;

    /// Whether a file has a value for the variable with this handle.
    using InFile = std::function<bool(const std::string&)>;

    /// The options and variables that exist in the process. Those with a letter come first, in the
    /// order of their letters, then the others in that of their handles.
    static ApSettings ofProcess();

    /// No settings.
    ApSettings() = default;

    /// Those given; for tests.
    explicit ApSettings(std::vector<ApSetting> settings) : _settings(std::move(settings)) {}

    const std::vector<ApSetting>& get() const
    {
        return _settings;
    }

    /// The setting with this letter or handle; null if there is none, or for an empty handle. Valid
    /// while no other is added.
    ApSetting* find(char letter);
    ApSetting* find(const std::string& handle);
    const ApSetting* find(const std::string& handle) const;

    /// The options that the settings have, in their order; those without a letter are left out.
    std::vector<ApOption> options() const;

    /// What is wrong with the values that would be used, each a sentence without a full stop:
    /// an integer that is not whole or out of range, a switch that is neither on nor off, a
    /// required value that is missing. Each option is checked as often as it is given; variables of
    /// the environment that an option or another one replaces are not looked at.
    std::vector<std::string> check(const ApCommandLine& line, const std::vector<ApOption>& options,
                                   const Environment& environment, const InFile& inFile) const;

private:
    std::vector<ApSetting> _settings;
};

} // namespace Zu

#endif
