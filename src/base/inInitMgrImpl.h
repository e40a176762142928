/// @file
/// The record behind InInitMgr. Internal to the library.

#ifndef ZU_BASE_ININITMGRIMPL_H
#define ZU_BASE_ININITMGRIMPL_H

#include "containers.h"
#include "inDependencyRows.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <typeinfo>

namespace Zu
{

class InPackageInit;

/// A package in one of the manager's lists.
struct InPackageEntry
{
    /// Null once the object has ended, where its place in the list is still needed.
    InPackageInit* _package;
    std::int32_t _nbDependencies = 0;
    bool _initialized = false;
};

/// Packages in their three lists, and the passes that take them from one to the next. It knows
/// neither the command line nor the process, so that tests can make as many as they need.
class InInitMgrImpl
{
public:
    /// Adds `package` to those that wait for a pass, unless a package of its type is up already.
    void registerPackage(InPackageInit& package);

    /// Forgets an object that is about to end, wherever it is listed.
    void forgetPackage(const InPackageInit& package);

    /// Whether a package of this type is up.
    bool isTypeInitialized(const std::type_info& type) const;

    /// Runs passes until no package waits.
    void runPendingPasses();

    /// Shuts down what is up, in exact reverse order of start-up.
    void finalize();

    void incReinitCount();

    /// Runs the pending passes when the count falls to 0.
    void decReinitCount();

    bool isInitializing() const;
    bool isFinalizing() const;

    std::ostream& dump(std::ostream& os) const;
    std::ostream& reportCycles(std::ostream& os) const;

private:
    void runPass();
    void collectPackages();
    void buildRows();
    void closeRows();
    void runInitialisers();
    void savePass();
    void dropPass();
    void writeCycles(std::ostream& os) const;

    // Declared since the last pass.
    Vector<InPackageEntry> _registered;
    // Of the pass under way; after a pass that found a cycle, what the report speaks of.
    Vector<InPackageEntry> _packagesToInit;
    // Ever taken into a pass, in the order of the passes.
    Vector<InPackageEntry> _savedPackages;
    // The lists of the passes whose bodies run; a body may start a pass of its own.
    Vector<Vector<InPackageEntry>*> _runningPasses;
    bool _cycle = false;
    std::int32_t _nbPckgs = 0;
    // Row order is the alphabetical order of _packagesToInit.
    std::unique_ptr<InDependencyRows> _dependencyRows;
    bool _isInitialized = false;
    bool _isFinalized = false;
    bool _isInitializing = false;
    bool _isFinalizing = false;
    std::int32_t _reinitCount = 0;
};

} // namespace Zu

#endif
