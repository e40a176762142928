/// @file
/// Marks what libZUbase offers to its clients: the one place that asks which platform it is on.

#ifndef ZU_BASE_BASEAPI_H
#define ZU_BASE_BASEAPI_H

/// @def ZU_BASE_API
/// A class, function or variable that clients may use.
///
/// @def ZU_BASE_VISIBLE
/// A class template, or a class that names an instantiation of one, whose run-time type is shared
/// between modules. Where the platform has visibilities, it is visible; which module exports an
/// instantiation is said where that is made.
///
/// @def ZU_BASE_IMPORTS_TEMPLATES
/// Is 1 for clients of the library, which declare its explicit instantiations `extern`, and 0
/// inside the library, where such a declaration would take the export away.
#if defined(ZU_BASE_STATIC)
#define ZU_BASE_API
#define ZU_BASE_VISIBLE
#elif defined(_WIN32)
#if defined(ZU_BASE_BUILD)
#define ZU_BASE_API __declspec(dllexport)
#else
#define ZU_BASE_API __declspec(dllimport)
#endif
#define ZU_BASE_VISIBLE
#else
#define ZU_BASE_API __attribute__((visibility("default")))
#define ZU_BASE_VISIBLE __attribute__((visibility("default")))
#endif

#if defined(ZU_BASE_BUILD)
#define ZU_BASE_IMPORTS_TEMPLATES 0
#else
#define ZU_BASE_IMPORTS_TEMPLATES 1
#endif

#endif
