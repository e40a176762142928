/// @file
/// How rotated log files are compressed.

#ifndef ZU_APP_LGSERVICECOMPRESSOR_H
#define ZU_APP_LGSERVICECOMPRESSOR_H

#include "appApi.h"

#include <cstddef>
#include <memory>
#include <string>

namespace Zu
{

/// Compresses one file. libZUapp has none itself: the optional library libZUappZlib brings one, as
/// soon as a program includes "appZlib/lgServiceGzip.h"; a program may have one of its own. It is
/// used by a log service with the option `compress`.
///
/// Thread-safety: one thread uses an object; it is another one than that which writes the log.
class ZU_APP_API LgServiceCompressor
{
public:
    LgServiceCompressor(const LgServiceCompressor&) = delete;
    LgServiceCompressor& operator=(const LgServiceCompressor&) = delete;
    virtual ~LgServiceCompressor();

    /// Takes the next bytes of the file, and appends to `out` what is ready. With the last bytes,
    /// of which there may be none, `isLast` is true, and everything has to be in `out`. Returns
    /// false if it fails; then the file stays as it is.
    virtual bool add(const char* data, std::size_t size, bool isLast, std::string& out) = 0;

    /// Makes a compressor; returns null if it can't.
    using Factory = std::unique_ptr<LgServiceCompressor> (*)();

    /// Sets what compresses the files of services that begin from now on. The result has to be in
    /// the format of gzip, RFC 1952, since the files are named so. Null, the default, is none.
    static void setFactory(Factory factory) noexcept;

    /// The function that setFactory() has set; null if none.
    static Factory getFactory() noexcept;

protected:
    LgServiceCompressor() = default;
};

} // namespace Zu

#endif
