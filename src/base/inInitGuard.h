/// @file
/// Scope guards for starting a process and for loading modules.

#ifndef ZU_BASE_ININITGUARD_H
#define ZU_BASE_ININITGUARD_H

#include "baseApi.h"

namespace Zu
{

/// Starts all packages when it is constructed and stops them when it is destroyed. One such object
/// belongs in `main`, before any other call into the library:
///
/// @code
/// int main(int argc, char** argv)
/// {
///     const Zu::InInitGuard guard(argc, argv);
///     ...
/// }
/// @endcode
///
/// Afterwards `argc` is 0 and `argv` null. InContextAliasMgrBase::getUnboundArgs() has what the
/// option parser left of the command line.
///
/// When start-up fails with an exception derived from InEx, the constructor prints "Initialisation
/// failed: ", the reason and the manager's dump to standard output, shuts down the packages that
/// were up and rethrows the exception. Any other exception passes through, and then nothing is shut
/// down.
///
/// The destructor raises what InInitMgr::finalize() raises. While an exception unwinds the stack
/// through the guard, an exception from finalize() is dropped instead.
///
/// A process has one guard. A second one starts what is pending and raises nothing, but the end of
/// whichever ends first stops all packages.
///
/// A program that declares aliases for options must be given at least one word, its name: an empty
/// command line is then a fatal error.
class ZU_BASE_API InInitGuard
{
public:
    /// @{
    /// Starts the packages with the command line of `main`, which it takes from the caller. The
    /// overloads accept the three ways of declaring `argv`.
    InInitGuard(int& argc, const char* const*& argv);
    InInitGuard(int& argc, char**& argv);
    InInitGuard(int& argc, const char**& argv);
    /// @}

    InInitGuard(const InInitGuard&) = delete;
    InInitGuard& operator=(const InInitGuard&) = delete;

    /// Stops the packages.
    ~InInitGuard() noexcept(false);
};

/// Brackets the loading of code that declares packages after start-up. The new packages are started
/// when the outermost guard is destroyed. Its destructor raises what that pass raises. While an
/// exception unwinds the stack through the guard, an exception from the pass is dropped instead.
///
/// A guard that is destroyed before start-up runs the first pass itself, with an empty command
/// line. Loading a module before start-up needs no guard.
class ZU_BASE_API InReinitGuard
{
public:
    /// Begins a bracket; brackets may be nested.
    InReinitGuard();
    InReinitGuard(const InReinitGuard&) = delete;
    InReinitGuard& operator=(const InReinitGuard&) = delete;

    /// Ends the bracket; the outermost one starts the new packages.
    ~InReinitGuard() noexcept(false);
};

} // namespace Zu

#endif
