/// @file
/// The values that a program takes from a file. Internal to the kit.

#ifndef ZU_APP_APSETTINGSFILE_H
#define ZU_APP_APSETTINGSFILE_H

#include "../base/inVariableBase.h"
#include "apFileFormat.h"
#include "apSettings.h"

#include <map>
#include <string>
#include <vector>

namespace Zu
{

/// The values of one file, by the handles of their variables; a source for these.
class ApSettingsFile : public InValueSource
{
public:
    /// Takes the values of a file. Returns what can't be used, each a text that begins with file
    /// and line: names that are no variables', values of another kind or out of range. Those that
    /// can be used are taken nevertheless.
    std::vector<std::string> load(const std::string& path, const ApFileFormat& format,
                                  const ApSettings& settings);

    /// The same for content that was read already.
    std::vector<std::string> take(const std::string& path, const std::string& content,
                                  const ApFileFormat& format, const ApSettings& settings);

    /// Whether there is a value for the variable with this handle.
    bool has(const std::string& handle) const
    {
        return _values.contains(handle);
    }

    const char* find(const InVariableBase& variable) override;
    const char* getDescription() const override;

private:
    std::string _description;
    std::map<std::string, std::string> _values;
};

} // namespace Zu

#endif
