/// @file
/// Marks what libZUapp exports to its clients.

#ifndef ZU_APP_APPAPI_H
#define ZU_APP_APPAPI_H

#include "../base/baseApi.h"

/// @def ZU_APP_API
/// A class or function of the application kit that clients may use.
#if defined(ZU_APP_STATIC)
#define ZU_APP_API
#elif defined(ZU_APP_BUILD)
#define ZU_APP_API ZU_MODULE_EXPORT
#else
#define ZU_APP_API ZU_MODULE_IMPORT
#endif

#endif
