/// @file
/// The tags that name the library's own packages.

#ifndef ZU_BASE_ZUINIT_H
#define ZU_BASE_ZUINIT_H

#include "baseApi.h"

/// The empty classes that identify packages: `Zu::InInit<ZuInit::logger>` is the package "logger".
/// A client puts its tags here or into a namespace of its own.
namespace ZuInit
{

/// Everything else of the library; client packages depend on it.
struct ZU_BASE_VISIBLE base
{
};

/// Numerics.
struct ZU_BASE_VISIBLE baseMath
{
};

/// Tracing and build records.
struct ZU_BASE_VISIBLE debugging
{
};

/// Discrete time.
struct ZU_BASE_VISIBLE discreteTime
{
};

/// Heap settings.
struct ZU_BASE_VISIBLE heapMgr
{
};

/// The command line.
struct ZU_BASE_VISIBLE initArg
{
};

/// Init variables.
struct ZU_BASE_VISIBLE initVars
{
};

/// Defaults, environment and overrides; everything depends on it.
struct ZU_BASE_VISIBLE initialize
{
};

/// The event logger.
struct ZU_BASE_VISIBLE logger
{
};

/// The operating-system layer.
struct ZU_BASE_VISIBLE osal
{
};

/// The hardware counter and what is built on it.
struct ZU_BASE_VISIBLE profiling
{
};

/// Random numbers.
struct ZU_BASE_VISIBLE random
{
};

/// The test framework.
struct ZU_BASE_VISIBLE testing
{
};

} // namespace ZuInit

#endif
