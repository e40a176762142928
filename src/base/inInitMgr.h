/// @file
/// The manager that starts all packages in order and stops them in reverse.

#ifndef ZU_BASE_ININITMGR_H
#define ZU_BASE_ININITMGR_H

#include "baseApi.h"

#include <iosfwd>
#include <memory>

namespace Zu
{

class InInitMgrImpl;

/// Starts and stops the packages of the process.
///
/// A pass sorts the declared packages by name, counts the direct and transitive dependencies of
/// each, and starts those with fewer dependencies first. Among equal counts the name decides, in
/// byte order. Shut-down is the exact reverse over all passes. Clients use the manager through
/// InInitGuard and InReinitGuard.
///
/// Thread-safety: none. Declaration, start-up and shut-down belong to one thread at a time, in
/// practice the main thread before others exist.
class ZU_BASE_API InInitMgr
{
    friend class InPackageInit;
    friend class InReinitGuard;

public:
    /// The one manager. The first call takes the environment snapshot that getEnv() reads.
    static InInitMgr& getInstance();

    InInitMgr(const InInitMgr&) = delete;
    InInitMgr& operator=(const InInitMgr&) = delete;
    ~InInitMgr();

    /// Copies the words of the command line into the list of InContextAliasMgrBase, sets `argc` to
    /// 0 and `argv` to null and runs the pending passes. A second call is deliberately not an
    /// error: it appends its words and starts what is pending.
    ///
    /// Raises InEx::ExPackageNotRegistered, InEx::ExDependencyCycle and whatever a package's body
    /// raises. The packages that are up by then stay up until finalize().
    void initialize(int& argc, const char* const*& argv);

    /// Drops unused overrides and the list of arguments, then shuts down all initialised packages.
    /// Raises InEx::ExFinaliseBeforeInit and InEx::ExDoubleFinalise, in both cases after emptying
    /// the list. An exception from a package's body ends the shut-down and is passed on.
    void finalize();

    /// Whether the bodies of packages are being initialised.
    bool isInitializing() const;

    /// Whether the bodies of packages are being finalised; stays true after one has thrown.
    bool isFinalizing() const;

    /// Writes the waiting packages, those that were taken into a pass with their transitive counts,
    /// and a report of dependency cycles if there are any.
    std::ostream& dump(std::ostream& os) const;

    /// Writes the report of dependency cycles alone.
    std::ostream& reportCycles(std::ostream& os) const;

    /// The value of an environment variable as it was when the manager was made, or null. The text
    /// lives until the end of the process. A null `name` gives null.
    static const char* getEnv(const char* name);

private:
    InInitMgr();

    void incReinitCount();
    void decReinitCount();

    std::unique_ptr<InInitMgrImpl> _impl;
};

} // namespace Zu

#endif
