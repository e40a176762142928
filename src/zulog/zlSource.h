/// @file
/// The bytes of a log file, compressed or not.

#ifndef ZU_ZULOG_ZLSOURCE_H
#define ZU_ZULOG_ZLSOURCE_H

#include "zlOpenFiles.h"

#include <cstddef>
#include <memory>
#include <string>

namespace Zu
{

/// Where the bytes of a log come from. Not thread-safe.
class ZlSource
{
public:
    virtual ~ZlSource() = default;

    /// Reads on. 0 at the present end. Raises ZlError; what was read before counts.
    virtual std::size_t read(char* place, std::size_t size) = 0;
};

/// Opens a file; "-" is standard input. Whether it is compressed by gzip is seen from its first two
/// bytes, not from its name. A compressed file may have several members; one that ends early, or is
/// damaged, raises ZlError when everything in front of that was read.
/// With a pool, the file may be closed while it is not read.
std::unique_ptr<ZlSource> zlOpenSource(const std::string& name,
                                       std::shared_ptr<ZlOpenFiles> pool = nullptr);

} // namespace Zu

#endif
