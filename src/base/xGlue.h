/// @file
/// Joins two words into one.

#ifndef ZU_BASE_XGLUE_H
#define ZU_BASE_XGLUE_H

/// Joins two words, which may be macros.
#define ZU_XGLUE(a, b) ZU_XGLUE_EXPANDED(a, b)

/// Joins two words that are not macros.
#define ZU_XGLUE_EXPANDED(a, b) a##b

#endif
