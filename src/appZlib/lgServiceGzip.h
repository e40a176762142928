/// @file
/// Compresses the rotated files of a log service with zlib. A program includes this once and links
/// libZUappZlib; then the option `compress` of the service can be used.

#ifndef ZU_APPZLIB_LGSERVICEGZIP_H
#define ZU_APPZLIB_LGSERVICEGZIP_H

#include "../base/baseApi.h"

/// @def ZU_APP_ZLIB_API
/// A function of the library that clients may use.
#if defined(ZU_APP_ZLIB_STATIC)
#define ZU_APP_ZLIB_API
#elif defined(ZU_APP_ZLIB_BUILD)
#define ZU_APP_ZLIB_API ZU_MODULE_EXPORT
#else
#define ZU_APP_ZLIB_API ZU_MODULE_IMPORT
#endif

namespace Zu::LgServiceGzip
{

/// Has the services that begin from now on compress with zlib, in the format of gzip and at its
/// default level. Returns true. Any thread may call it.
ZU_APP_ZLIB_API bool use() noexcept;

#ifndef ZU_APP_ZLIB_BUILD
/// Whether that is so; called before main.
inline const bool isUsed = use();
#endif

} // namespace Zu::LgServiceGzip

#endif
