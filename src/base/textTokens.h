/// @file
/// Texts taken apart at delimiters. Internal to the library.

#ifndef ZU_BASE_TEXTTOKENS_H
#define ZU_BASE_TEXTTOKENS_H

#include <cstring>
#include <string_view>

namespace Zu
{

/// Orders C strings by their bytes.
struct LessByBytes
{
    bool operator()(const char* a, const char* b) const
    {
        return std::strcmp(a, b) < 0;
    }
};

/// Ends the text at the first of the `delimiters` by overwriting it, moves `rest` behind it, and
/// returns it. Without one `rest` is at the terminator, which is returned.
char cutAt(char*& rest, const char* delimiters);

/// The next token: what stands in front of the next `delimiter`, which is overwritten. Delimiters
/// before the token are skipped, so no token is empty. Null if there is none.
char* nextToken(char*& rest, char delimiter);

/// Removes the `delimiter`s at the front of `rest`.
void skip(std::string_view& rest, char delimiter);

/// Removes the next field and all delimiters behind it from the front of `rest`, and returns the
/// field. It is empty where `rest` is empty or begins with a `delimiter`.
std::string_view takeField(std::string_view& rest, char delimiter);

} // namespace Zu

#endif
