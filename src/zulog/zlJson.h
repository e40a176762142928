/// @file
/// Records as JSON.

#ifndef ZU_ZULOG_ZLJSON_H
#define ZU_ZULOG_ZLJSON_H

#include "zlFormat.h"

#include <memory>

namespace Zu
{

/// The format "json" of zlMakeFormat().
std::unique_ptr<ZlFormat> zlMakeJsonFormat(const ZlFormatOptions& options);

} // namespace Zu

#endif
