/// @file
/// What a format of files of settings is for a program.

#ifndef ZU_APP_APFILEFORMAT_H
#define ZU_APP_APFILEFORMAT_H

#include "appApi.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace Zu
{

/// One value of a file of settings.
struct ApFileValue
{
    /// What the value is in the file.
    enum class Kind
    {
        Text,
        Integer,
        Switch
    };

    /// The handle of the variable that it is for: "server::port". Tables and keys are joined so.
    std::string _name;
    /// What it is in the file.
    Kind _kind = Kind::Text;
    /// The value as a variable takes it: a switch is "true" or "false".
    std::string _text;
    /// The line in which it stands, from 1 on.
    int _line = 0;
};

/// A file of settings can't be read: `what()` says why, getLine() where, from 1 on.
class ZU_APP_API ApFileError : public std::runtime_error
{
public:
    /// The line counts from 1 on; the reason is a sentence without a full stop.
    ApFileError(int line, const std::string& reason);
    ~ApFileError() override;

    /// The line, from 1 on.
    int getLine() const
    {
        return _line;
    }

private:
    int _line;
};

/// A format of files of settings; ApToml, in an optional library, is one.
class ZU_APP_API ApFileFormat
{
public:
    ApFileFormat() = default;
    ApFileFormat(const ApFileFormat&) = delete;
    ApFileFormat& operator=(const ApFileFormat&) = delete;
    virtual ~ApFileFormat();

    /// The values of a file with this content, in its order. Raises ApFileError for content that is
    /// not of the format, and for values that no variable takes.
    virtual std::vector<ApFileValue> read(const std::string& content) const = 0;
};

} // namespace Zu

#endif
