/// @file
/// The collector of all context aliases of one kind.

#ifndef ZU_BASE_INCONTEXTALIASMGR_H
#define ZU_BASE_INCONTEXTALIASMGR_H

#include "baseApi.h"
#include "inContextAliasMgrBase.h"

#include <functional>
#include <set>

namespace Zu
{

class InContextAliasBase;

/// Collects the aliases of one kind, `Alias`, as they are constructed, and gives all of them their
/// values in one step of start-up. Aliases and the bodies of packages call the operations.
///
/// Thread-safety: none; everything runs in static construction, start-up and shut-down.
template <class Alias> class ZU_BASE_VISIBLE InContextAliasMgr : public InContextAliasMgrBase
{
public:
    /// Adds an alias. Raises InEx::ExNoNewContextAliasAfterInit once the kind has been initialised.
    static void registerAlias(InContextAliasBase* alias);

    /// Removes an alias, which must be present.
    static void unregisterAlias(InContextAliasBase* alias);

    /// Gives every alias its value. From then on no alias of the kind can be constructed in the
    /// process, not even after shut-down.
    static void initializeAll();

    /// Takes every alias out of use.
    static void finalizeAll();

    /// Called with one alias.
    using Visitor = std::function<void(const InContextAliasBase&)>;

    /// Visits the aliases of the kind, clones included, in no particular order. For programs that
    /// explain their options; the visitor must not make or destroy any.
    static void visitAll(const Visitor& visitor);

    /// Writes the aliases with their values to standard error.
    static void dump();

private:
    // Ordered by address; null when empty.
    static std::set<InContextAliasBase*>* _ca;
    static bool _isInitialized;
};

} // namespace Zu

#endif
