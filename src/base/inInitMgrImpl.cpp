#include "base/inInitMgrImpl.h"

#include "base/inDebug.h"
#include "base/inEx.h"
#include "base/inPackageInit.h"
#include "base/internalAssert.h"
#include "base/plainNumber.h"
#include "base/typeName.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <ostream>
#include <typeindex>
#include <unordered_map>
#include <vector>

namespace Zu
{

namespace
{

// Sets a flag and restores its old value on every exit path.
class FlagScope
{
public:
    explicit FlagScope(bool& flag) : _flag(flag), _previous(flag)
    {
        _flag = true;
    }
    ~FlagScope()
    {
        _flag = _previous;
    }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& _flag;
    const bool _previous;
};

// Makes the list of a running pass visible to forgetPackage().
class RunningPass
{
public:
    RunningPass(Vector<Vector<InPackageEntry>*>& passes, Vector<InPackageEntry>& pass)
        : _passes(passes)
    {
        _passes.push_back(&pass);
    }
    ~RunningPass()
    {
        _passes.pop_back();
    }
    RunningPass(const RunningPass&) = delete;
    RunningPass& operator=(const RunningPass&) = delete;

private:
    Vector<Vector<InPackageEntry>*>& _passes;
};

const std::type_info& typeOf(const InPackageEntry& entry)
{
    const InPackageInit& package = *entry._package;
    return typeid(package);
}

// Null marks an object that ended while its list was being walked.
bool isAlive(const InPackageEntry& entry)
{
    return entry._package != nullptr;
}

int indexOf(const Vector<InPackageEntry>& entries, const std::type_info& type)
{
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (isAlive(entries[i]) && typeOf(entries[i]) == type) return static_cast<int>(i);
    return -1;
}

// Returns whether the object was in the list.
bool markEnded(Vector<InPackageEntry>& entries, const InPackageInit& package)
{
    bool found = false;
    for (InPackageEntry& entry : entries)
    {
        if (entry._package != &package) continue;
        entry._package = nullptr;
        found = true;
    }
    return found;
}

void removeEnded(Vector<InPackageEntry>& entries)
{
    entries.erase(std::remove_if(entries.begin(), entries.end(), std::not_fn(isAlive)),
                  entries.end());
}

void writeEntries(std::ostream& os, const Vector<InPackageEntry>& entries)
{
    for (const InPackageEntry& entry : entries)
    {
        if (!isAlive(entry)) continue;
        os << "\t'" << entry._package->getName() << "' ";
        if (entry._initialized)
            os << "Initialized (" << plainNumber(entry._nbDependencies) << " dependencies)"
               << std::endl;
        else
            os << "Not initialized" << std::endl;
    }
}

} // namespace

void InInitMgrImpl::registerPackage(InPackageInit& package)
{
    if (_isInitialized && _reinitCount == 0) throw InEx::ExReinitWithoutGuard(__FILE__, __LINE__);
    if (isTypeInitialized(typeid(package))) return;
    _registered.push_back(InPackageEntry{&package});
}

void InInitMgrImpl::forgetPackage(const InPackageInit& package)
{
    markEnded(_registered, package);
    removeEnded(_registered);
    // The bodies of packages may end other packages; a list that is being walked keeps its places.
    markEnded(_savedPackages, package);
    if (!_isFinalizing) removeEnded(_savedPackages);
    for (Vector<InPackageEntry>* pass : _runningPasses) markEnded(*pass, package);
    // A failed pass is kept for its report, which needs all of its packages.
    if (markEnded(_packagesToInit, package)) dropPass();
}

bool InInitMgrImpl::isTypeInitialized(const std::type_info& type) const
{
    const int index = indexOf(_savedPackages, type);
    return index != -1 && _savedPackages[static_cast<std::size_t>(index)]._initialized;
}

void InInitMgrImpl::runPendingPasses()
{
    _isInitialized = true;
    while (!_registered.empty()) runPass();
}

void InInitMgrImpl::runPass()
{
    _packagesToInit = _registered;
    _registered.clear();
    collectPackages();
    buildRows();
    closeRows();
    if (_cycle) throw InEx::ExDependencyCycle(__FILE__, __LINE__);
    runInitialisers();
}

// Leaves one entry per type, in ascending byte order of the names.
void InInitMgrImpl::collectPackages()
{
    _cycle = false;
    std::sort(_packagesToInit.begin(), _packagesToInit.end(),
              [](const InPackageEntry& a, const InPackageEntry& b)
              { return typeOf(a).before(typeOf(b)); });
    const auto sameType = [](const InPackageEntry& a, const InPackageEntry& b)
    { return typeOf(a) == typeOf(b); };
    _packagesToInit.erase(std::unique(_packagesToInit.begin(), _packagesToInit.end(), sameType),
                          _packagesToInit.end());
    std::stable_sort(_packagesToInit.begin(), _packagesToInit.end(),
                     [](const InPackageEntry& a, const InPackageEntry& b)
                     { return std::strcmp(a._package->getName(), b._package->getName()) < 0; });
    _nbPckgs = static_cast<std::int32_t>(_packagesToInit.size());
    if (inDebugInitialize())
        inDebugStream() << "-->_nbPckgs:" << plainNumber(_nbPckgs) << std::endl;
}

void InInitMgrImpl::buildRows()
{
    _dependencyRows = std::make_unique<InDependencyRows>(_nbPckgs);
    std::unordered_map<std::type_index, int> rowOf;
    for (int i = 0; i < _nbPckgs; ++i)
        rowOf.emplace(typeOf(_packagesToInit[static_cast<std::size_t>(i)]), i);
    for (int i = 0; i < _nbPckgs; ++i)
    {
        InPackageEntry& entry = _packagesToInit[static_cast<std::size_t>(i)];
        if (inDebugInitialize())
            inDebugStream() << "_packagesToInit[" << plainNumber(i)
                            << "]: " << entry._package->getName() << std::endl;
        for (const std::type_info* type : entry._package->getDependencies())
        {
            const auto found = rowOf.find(*type);
            if (found == rowOf.end())
                throw InEx::ExPackageNotRegistered(__FILE__, __LINE__, typeName(*type));
            _dependencyRows->set(i, found->second);
            // A dependency that is declared twice counts twice.
            ++entry._nbDependencies;
        }
    }
}

void InInitMgrImpl::closeRows()
{
    ZU_INTERNAL_ASSERT(!_cycle);
    std::vector<std::int32_t> counts;
    for (const InPackageEntry& entry : _packagesToInit) counts.push_back(entry._nbDependencies);
    _cycle = _dependencyRows->close(counts);
    for (std::size_t i = 0; i < counts.size(); ++i) _packagesToInit[i]._nbDependencies = counts[i];
}

void InInitMgrImpl::runInitialisers()
{
    ZU_INTERNAL_ASSERT(!_cycle);
    // The list is alphabetical, so packages with equal counts start in ascending order of their
    // names.
    std::stable_sort(_packagesToInit.begin(), _packagesToInit.end(),
                     [](const InPackageEntry& a, const InPackageEntry& b)
                     { return a._nbDependencies < b._nbDependencies; });
    _dependencyRows.reset();
    savePass();

    const FlagScope initializing(_isInitializing);
    // A body may load a module under a guard, and the pass of that guard then replaces
    // _packagesToInit.
    Vector<InPackageEntry> pass = _packagesToInit;
    const RunningPass running(_runningPasses, pass);
    for (const InPackageEntry& entry : pass)
    {
        if (!isAlive(entry)) continue;
        entry._package->initialize();
        if (!isAlive(entry)) continue;
        const int index = indexOf(_savedPackages, typeOf(entry));
        ZU_INTERNAL_ASSERT(index != -1);
        _savedPackages[static_cast<std::size_t>(index)]._initialized = true;
    }
    dropPass();
}

// Appends the packages of the pass to those of earlier passes.
void InInitMgrImpl::savePass()
{
    for (const InPackageEntry& entry : _packagesToInit)
    {
        const int index = indexOf(_savedPackages, typeOf(entry));
        if (index == -1)
            _savedPackages.push_back(entry);
        else
            // The body of an earlier object failed. Its place is kept, but this object is started.
            _savedPackages[static_cast<std::size_t>(index)]._package = entry._package;
    }
}

void InInitMgrImpl::dropPass()
{
    _packagesToInit.clear();
    _dependencyRows.reset();
    _cycle = false;
}

void InInitMgrImpl::finalize()
{
    if (!_isInitialized) throw InEx::ExFinaliseBeforeInit(__FILE__, __LINE__);
    if (_isFinalized) throw InEx::ExDoubleFinalise(__FILE__, __LINE__);
    // Deliberately without a scope guard: if a body throws, the flag and the lists stay as they
    // are.
    _isFinalizing = true;
    for (std::size_t i = _savedPackages.size(); i-- > 0;)
        if (isAlive(_savedPackages[i]) && _savedPackages[i]._initialized)
            _savedPackages[i]._package->finalize();
    _isFinalizing = false;
    _savedPackages.clear();
    _isFinalized = true;
}

void InInitMgrImpl::incReinitCount()
{
    ++_reinitCount;
}

void InInitMgrImpl::decReinitCount()
{
    --_reinitCount;
    ZU_INTERNAL_ASSERT(_reinitCount >= 0);
    if (_reinitCount == 0) runPendingPasses();
}

bool InInitMgrImpl::isInitializing() const
{
    return _isInitializing;
}

bool InInitMgrImpl::isFinalizing() const
{
    return _isFinalizing;
}

std::ostream& InInitMgrImpl::dump(std::ostream& os) const
{
    // "to be initialize" is frozen, see docs/compatibility.md.
    if (_registered.empty())
        os << "No packages waiting to be initialize." << std::endl;
    else
        os << plainNumber(_registered.size()) << " packages waiting to be initialize:" << std::endl;
    writeEntries(os, _registered);
    if (_savedPackages.empty())
        os << "No packages saved." << std::endl;
    else
        os << plainNumber(_savedPackages.size()) << " packages currently saved:" << std::endl;
    writeEntries(os, _savedPackages);
    if (_cycle)
    {
        os << "Dependency cycle(s) detected..." << std::endl;
        writeCycles(os);
    }
    return os;
}

std::ostream& InInitMgrImpl::reportCycles(std::ostream& os) const
{
    if (_cycle)
        writeCycles(os);
    else
        os << "No dependency cycles to report." << std::endl;
    return os;
}

void InInitMgrImpl::writeCycles(std::ostream& os) const
{
    const auto nameOf = [this](int index)
    { return _packagesToInit[static_cast<std::size_t>(index)]._package->getName(); };
    std::vector<int> groups(static_cast<std::size_t>(_nbPckgs), -1);
    int nextGroup = 0;
    for (int i = 0; i < _nbPckgs; ++i)
    {
        if (groups[static_cast<std::size_t>(i)] != -1 || !_dependencyRows->test(i, i)) continue;
        groups[static_cast<std::size_t>(i)] = nextGroup;
        os << "'" << nameOf(i) << "' is in a cycle with:" << std::endl;
        for (int j = i + 1; j < _nbPckgs; ++j)
        {
            if (!_dependencyRows->test(i, j) || !_dependencyRows->test(j, j)) continue;
            groups[static_cast<std::size_t>(j)] = nextGroup;
            os << "\t'" << nameOf(j) << "'" << std::endl;
        }
        ++nextGroup;
    }
}

} // namespace Zu
