#include "base/osDescriptor.h"

#include <unistd.h>

namespace Zu
{

OsDescriptor::~OsDescriptor()
{
    if (_number >= 0) close(_number);
}

} // namespace Zu
