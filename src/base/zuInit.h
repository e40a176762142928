/// @file
/// The tags that name the library's own packages.

#ifndef ZU_BASE_ZUINIT_H
#define ZU_BASE_ZUINIT_H

/// The empty classes that identify packages: `Zu::InInit<ZuInit::logger>` is the package "logger".
/// A client puts its tags here or into a namespace of its own.
namespace ZuInit
{

/// Everything else of the library; client packages depend on it.
struct base
{
};

/// Numerics.
struct baseMath
{
};

/// Tracing and build records.
struct debugging
{
};

/// Discrete time.
struct discreteTime
{
};

/// Heap settings.
struct heapMgr
{
};

/// The command line.
struct initArg
{
};

/// Init variables.
struct initVars
{
};

/// Defaults, environment and overrides; what everything depends on.
struct initialize
{
};

/// The event logger.
struct logger
{
};

/// The operating-system layer.
struct osal
{
};

/// The hardware counter and what is built on it.
struct profiling
{
};

/// Random numbers.
struct random
{
};

/// The test framework.
struct testing
{
};

} // namespace ZuInit

#endif
