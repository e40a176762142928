/// @file
/// The scopes in which a process is started and in which modules are loaded.

#ifndef ZU_BASE_ININITGUARD_H
#define ZU_BASE_ININITGUARD_H

#include "baseApi.h"

namespace Zu
{

/// Starts all packages at its construction and stops them at its end. One object of it stands in
/// `main`, before any other call into the library:
///
/// @code
/// int main(int argc, char** argv)
/// {
///     const Zu::InInitGuard guard(argc, argv);
///     ...
/// }
/// @endcode
///
/// Afterwards `argc` is 0 and `argv` null; what the option parser left of the command line is in
/// InContextAliasMgrBase::getUnboundArgs().
///
/// When start-up fails with an exception derived from InEx, the constructor prints "Initialisation
/// failed: ", the reason and the manager's dump to standard output, shuts down what was up and
/// raises the exception again. Any other exception passes through, and then nothing is shut down.
///
/// The destructor raises what InInitMgr::finalize() raises, unless an exception unwinds the stack
/// through the guard: then that of finalize() is dropped.
///
/// A program that declares aliases for options must be given at least one word, its name: an empty
/// command line is then a fatal error.
class ZU_BASE_API InInitGuard
{
public:
    /// @{
    /// Starts the packages with the command line of `main`, which it takes from the caller; `argv`
    /// may be declared in three ways.
    InInitGuard(int& argc, const char* const*& argv);
    InInitGuard(int& argc, char**& argv);
    InInitGuard(int& argc, const char**& argv);
    /// @}

    InInitGuard(const InInitGuard&) = delete;
    InInitGuard& operator=(const InInitGuard&) = delete;

    /// Stops the packages.
    ~InInitGuard() noexcept(false);
};

/// Brackets the loading of code that declares packages after start-up. The new packages are
/// started when the outermost guard ends; its destructor raises what such a pass raises, unless an
/// exception unwinds the stack through the guard: then that of the pass is dropped.
///
/// A guard that ends before start-up runs the first pass itself, with an empty command line. To
/// load a module before start-up, no guard is needed.
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
