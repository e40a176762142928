/// @file
/// Marks what libZUbase offers to its clients: the one place that asks which platform it is on.

#ifndef ZU_BASE_BASEAPI_H
#define ZU_BASE_BASEAPI_H

/// @def ZU_MODULE_EXPORT
/// What a shared module of the family offers to others, while it is built.
///
/// @def ZU_MODULE_IMPORT
/// The same where it is used.
///
/// @def ZU_MODULE_VISIBLE
/// A type that modules share by name, where the platform has visibilities.
///
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
#if defined(_WIN32)
#define ZU_MODULE_EXPORT __declspec(dllexport)
#define ZU_MODULE_IMPORT __declspec(dllimport)
#define ZU_MODULE_VISIBLE
#else
#define ZU_MODULE_EXPORT __attribute__((visibility("default")))
#define ZU_MODULE_IMPORT __attribute__((visibility("default")))
#define ZU_MODULE_VISIBLE __attribute__((visibility("default")))
#endif

#if defined(ZU_BASE_STATIC)
#define ZU_BASE_API
#define ZU_BASE_VISIBLE
#elif defined(ZU_BASE_BUILD)
#define ZU_BASE_API ZU_MODULE_EXPORT
#define ZU_BASE_VISIBLE ZU_MODULE_VISIBLE
#else
#define ZU_BASE_API ZU_MODULE_IMPORT
#define ZU_BASE_VISIBLE ZU_MODULE_VISIBLE
#endif

#if defined(ZU_BASE_BUILD)
#define ZU_BASE_IMPORTS_TEMPLATES 0
#else
#define ZU_BASE_IMPORTS_TEMPLATES 1
#endif

#endif
