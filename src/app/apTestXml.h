/// @file
/// Texts as XML. Internal to the kit.

#ifndef ZU_APP_APTESTXML_H
#define ZU_APP_APTESTXML_H

#include <string>
#include <string_view>

namespace Zu
{

/// Appends any bytes as text of an XML 1.0 document in UTF-8: in an element or, between double
/// quotes, in an attribute. Line ends and tabs stay what they are to a reader of the document, in
/// either place. What XML can't contain becomes "\x" and two hexadecimal digits, as in "\x1b": the
/// other control characters below U+0020, the bytes of U+FFFE and U+FFFF, and each byte that is not
/// part of valid UTF-8.
void apAppendXml(std::string& out, std::string_view text);

} // namespace Zu

#endif
