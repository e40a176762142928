/// @file
/// The parts of a page that are the same for every log. Their sources are in the folder page; the
/// build makes a C++ source from them.

#ifndef ZU_ZULOG_ZLPAGEPARTS_H
#define ZU_ZULOG_ZLPAGEPARTS_H

#include <string_view>

namespace Zu
{

/// The content of the element "style".
std::string_view zlPageStyle();

/// The elements that the script uses, hidden until it runs.
std::string_view zlPageViewer();

/// The content of the element "script".
std::string_view zlPageScript();

/// The SHA-256 of style and script, in base64, as the page's policy names them.
/// @{
std::string_view zlPageStyleHash();
std::string_view zlPageScriptHash();
/// @}

} // namespace Zu

#endif
