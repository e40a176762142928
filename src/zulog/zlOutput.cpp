#include "zulog/zlOutput.h"

#include "zulog/zlFile.h"

#include <cerrno>
#include <system_error>

namespace Zu
{

void ZlOutput::write()
{
    const std::size_t size = _text.size();
    if (size == 0) return;
    const bool isWritten =
        std::fwrite(_text.data(), 1, size, _file) == size && std::fflush(_file) == 0;
    _text.clear();
    if (isWritten) return;
    // Windows reports the second one for a pipe.
    if (errno == EPIPE || errno == EINVAL) throw Closed();
    throw ZlError("the output can't be written: " + std::generic_category().message(errno));
}

} // namespace Zu
