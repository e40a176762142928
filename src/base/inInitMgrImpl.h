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
    /// Null once the object has ended while its place in the list is still needed.
    InPackageInit* _package;
    std::int32_t _nbDependencies = 0;
    bool _initialized = false;
};

/// Packages in their three lists, and the passes that move them from one list to the next. It
/// depends on neither the command line nor the process, so tests can make as many as they need.
class InInitMgrImpl
{
public:
    /// Adds `package` to those waiting for a pass, unless a package of its type is already up.
    void registerPackage(InPackageInit& package);

    /// Removes an object that is about to end from every list.
    void forgetPackage(const InPackageInit& package);

    /// Whether a package of this type is up.
    bool isTypeInitialized(const std::type_info& type) const;

    /// Runs passes until no package is waiting.
    void runPendingPasses();

    /// Shuts down the packages that are up, in the exact reverse of the start-up order.
    void finalize();

    void incReinitCount();

    /// Runs the pending passes when the count falls to 0.
    void decReinitCount();

    bool isInitializing() const;
    bool isFinalizing() const;

    std::ostream& dump(std::ostream& os) const;
    std::ostream& reportCycles(std::ostream& os) const;

    /// The record of the process. Null before the manager is made, and again after static
    /// destruction has taken it, when the objects of packages may still follow.
    static inline InInitMgrImpl* _current = nullptr;

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
    // The packages of the current pass; after a pass that found a cycle, those that the report
    // covers.
    Vector<InPackageEntry> _packagesToInit;
    // All packages ever taken into a pass, in the order of the passes.
    Vector<InPackageEntry> _savedPackages;
    // The lists of the passes whose bodies are running; a body may start a nested pass.
    Vector<Vector<InPackageEntry>*> _runningPasses;
    bool _cycle = false;
    std::int32_t _nbPckgs = 0;
    // Rows are in the alphabetical order of _packagesToInit.
    std::unique_ptr<InDependencyRows> _dependencyRows;
    bool _isInitialized = false;
    bool _isFinalized = false;
    bool _isInitializing = false;
    bool _isFinalizing = false;
    std::int32_t _reinitCount = 0;
};

} // namespace Zu

#endif
