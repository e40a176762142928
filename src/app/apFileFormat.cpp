#include "app/apFileFormat.h"

namespace Zu
{

ApFileError::ApFileError(int line, const std::string& reason)
    : std::runtime_error(reason), _line(line)
{
}

ApFileError::~ApFileError() = default;

ApFileFormat::~ApFileFormat() = default;

} // namespace Zu
