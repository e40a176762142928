/// @file
/// Marks what libZUbase exports to its clients. The one header that asks which platform it is on.

#ifndef ZU_BASE_BASEAPI_H
#define ZU_BASE_BASEAPI_H

/// @def ZU_MODULE_EXPORT
/// Marks what a shared module of the family exports, while that module is being built.
///
/// @def ZU_MODULE_IMPORT
/// The import form of the same, where the module is used.
///
/// @def ZU_MODULE_VISIBLE
/// Marks a type that modules share by name, on platforms with symbol visibility.
///
/// @def ZU_BASE_API
/// Marks a class, function or variable that clients may use.
///
/// @def ZU_BASE_VISIBLE
/// Marks a class template, or a class that names an instantiation of one, whose run-time type is
/// shared between modules. It makes the type visible on platforms with symbol visibility. Which
/// module exports an instantiation is stated where the instantiation is made.
///
/// @def ZU_BASE_IMPORTS_TEMPLATES
/// 1 for clients of the library, which declare its explicit instantiations `extern`; 0 inside the
/// library, where such a declaration would cancel the export.
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
