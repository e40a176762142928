/// @file
/// Files of settings in TOML. A program that includes this links ZU::appToml.

#ifndef ZU_APPTOML_APTOML_H
#define ZU_APPTOML_APTOML_H

#include "../app/apFileFormat.h"

/// @def ZU_APP_TOML_API
/// A class of the library that clients may use.
#if defined(ZU_APP_TOML_STATIC)
#define ZU_APP_TOML_API
#elif defined(ZU_APP_TOML_BUILD)
#define ZU_APP_TOML_API ZU_MODULE_EXPORT
#else
#define ZU_APP_TOML_API ZU_MODULE_IMPORT
#endif

namespace Zu
{

/// TOML 1.0. A table is a part of the names of what is in it:
///
///     verbose = true          # the variable "verbose"
///     [server]
///     port = 8080             # the variable "server::port"
///     name = "alpha"          # the variable "server::name"
///
/// Integers must fit into 32 bits. Floating-point numbers, dates, and arrays are refused, since no
/// variable takes them.
///
/// Thread-safety: any thread; objects have no state.
class ZU_APP_TOML_API ApToml : public ApFileFormat
{
public:
    ~ApToml() override;
    std::vector<ApFileValue> read(const std::string& content) const override;
};

} // namespace Zu

#endif
