/// @file
/// Records as JSON.

#ifndef ZU_ZULOG_ZLJSON_H
#define ZU_ZULOG_ZLJSON_H

#include "zlFormat.h"

#include <memory>
#include <string>
#include <string_view>

namespace Zu
{

/// The format "json" of zlMakeFormat().
std::unique_ptr<ZlFormat> zlMakeJsonFormat(const ZlFormatOptions& options);

/// Appends JSON in UTF-8, with the characters escaped that a terminal might take for a command, or
/// that change the direction of writing; it stands for the same values. `json` has no line feeds.
void zlAppendJson(std::string& out, std::string_view json);

} // namespace Zu

#endif
