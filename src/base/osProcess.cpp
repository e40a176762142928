#include "base/osProcess.h"

namespace Zu
{

OsProcessImp::~OsProcessImp() = default;

OsProcess::OsProcess() = default;

OsProcess::~OsProcess() = default;

void OsProcess::start(const char* const* argv)
{
    _imp = performStart(argv);
}

void OsProcess::wait()
{
    if (!_imp.isNull()) _imp->wait();
}

} // namespace Zu
