#include "app/apSettingsFile.h"

#include "app/apNearest.h"
#include "app/apOwnFile.h"
#include "app/apText.h"

namespace Zu
{

namespace
{

// The library's own variables can be set, too, but nobody means them by mistake.
std::vector<std::string> handlesOf(const ApSettings& settings)
{
    std::vector<std::string> handles;
    for (const ApSetting& setting : settings.get())
        if (!setting._handle.empty() && setting._handle.rfind("Zu::", 0) != 0)
            handles.push_back(setting._handle);
    return handles;
}

std::string unknownName(const std::string& name, const ApSettings& settings)
{
    const std::vector<std::string> handles = handlesOf(settings);
    const std::string meant = apDidYouMean(name, handles);
    if (!meant.empty()) return "there is no setting '" + name + "'" + meant;
    return "there is no setting '" + name + "'" +
           (handles.empty() ? "" : "; the settings are " + apJoined(handles));
}

bool isOfKind(const ApFileValue& value, const ApSetting& setting)
{
    switch (setting._kind)
    {
    case ApSetting::Kind::Integer:
        return value._kind == ApFileValue::Kind::Integer;
    case ApSetting::Kind::Switch:
        return value._kind == ApFileValue::Kind::Switch;
    default:
        return value._kind == ApFileValue::Kind::Text;
    }
}

} // namespace

std::vector<std::string> ApSettingsFile::load(const std::string& path, const ApFileFormat& format,
                                              const ApSettings& settings)
{
    std::string content;
    const std::string error = apReadOwnFile(path, content);
    if (!error.empty()) return {path + ": can't be read: " + error};
    return take(path, content, format, settings);
}

std::vector<std::string> ApSettingsFile::take(const std::string& path, const std::string& content,
                                              const ApFileFormat& format,
                                              const ApSettings& settings)
{
    _description = path;
    const auto place = [&](int line) { return path + ":" + std::to_string(line) + ": "; };
    std::vector<std::string> errors;
    try
    {
        for (const ApFileValue& value : format.read(content))
        {
            const ApSetting* const setting = settings.find(value._name);
            std::string error;
            if (!setting)
                error = unknownName(value._name, settings);
            else if (_values.contains(value._name))
                error = "'" + value._name + "' has a value already";
            else if (value._text.find('\0') != std::string::npos)
                error = "the text of '" + value._name + "' has a null character";
            else if (!isOfKind(value, *setting))
                error = "'" + value._name + "' needs " + setting->expected() + ", not '" +
                        value._text + "'";
            else
                error = setting->errorOf("'" + value._name + "'", value._text);
            if (error.empty())
                _values[value._name] = value._text;
            else
                errors.push_back(place(value._line) + error);
        }
    }
    catch (const ApFileError& error)
    {
        errors.push_back(place(error.getLine()) + error.what());
    }
    return errors;
}

const char* ApSettingsFile::find(const InVariableBase& variable)
{
    const auto found = _values.find(variable.getHandle());
    return found != _values.end() ? found->second.c_str() : nullptr;
}

const char* ApSettingsFile::getDescription() const
{
    return _description.c_str();
}

} // namespace Zu
