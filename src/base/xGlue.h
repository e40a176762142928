/// @file
/// Makes one word of two.

#ifndef ZU_BASE_XGLUE_H
#define ZU_BASE_XGLUE_H

/// One word of two, which may be macros.
#define ZU_XGLUE(a, b) ZU_XGLUE_EXPANDED(a, b)

/// The same of two words that are no macros.
#define ZU_XGLUE_EXPANDED(a, b) a##b

#endif
