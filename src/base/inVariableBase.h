/// @file
/// What all init variables have in common.

#ifndef ZU_BASE_INVARIABLEBASE_H
#define ZU_BASE_INVARIABLEBASE_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "inContextAliasBase.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace Zu
{

class InPackageInitBase;
class InVariableBase;
struct InInitOvr;
template <class Src, int Unique> class InContextAlias;

/// A further source of values for variables, such as a file of settings. It is asked for a variable
/// that neither an override nor the command line nor the environment has given a value, and
/// prevails over defaults.
class ZU_BASE_API InValueSource
{
public:
    virtual ~InValueSource();

    /// The text for this variable, which lives at least until the call returns; null if the source
    /// has none. Called when the variable's package is initialised. Exceptions end the start-up.
    virtual const char* find(const InVariableBase& variable) = 0;

    /// What the source is, for dumps and reasons; owned by the source.
    virtual const char* getDescription() const = 0;
};

/// A named configuration value of a package. When the package is initialised it takes the value of
/// its highest-ranking alias that has one; when the package is finalised it loses it.
///
/// Thread-safety: constructors and overrides belong to one thread, before start-up. Any thread may
/// read while nobody writes; loading a module counts as writing.
class ZU_BASE_API InVariableBase
{
    friend class InInitMgr;

public:
    /// Stands for the absence of an alias and has no other use: its operations abort.
    class ZU_BASE_API InContextAliasDummy : public InContextAliasBase
    {
    public:
        /// See InContextAliasBase.
        explicit InContextAliasDummy(const char* description);

        InContextAliasBase* clone() const override;
        std::uint32_t getPriority() const override;
        const char* getKey() const override;
    };

    /// The one dummy. Only its address matters, so it may be named before it is constructed.
    static InContextAliasDummy _dummy;

    InVariableBase(const InVariableBase&) = delete;
    InVariableBase& operator=(const InVariableBase&) = delete;

    /// Whether an alias supplied a value.
    bool isValid() const;

    /// The alias that supplied the value, or null.
    const InContextAliasBase* contextAlias() const;

    /// The unique name; owned by the variable.
    const char* getHandle() const;

    /// The run-time type name of the alias that supplied the value. Raises
    /// InEx::ExUninitializedObject with the handle if there is none.
    const char* initSource() const;

    /// Takes the value of the first valid alias; without one the variable silently stays
    /// uninitialised. For the package.
    void initialize();

    /// Takes the value away. For the package.
    void finalize();

    /// The variable with this handle, or null.
    static InVariableBase* queryViaHandle(const char* handle);

    /// Forces a value on the variable with this handle, which need not exist yet; the last override
    /// of a handle wins. To be called before start-up. Raises InEx::ExVariableAlreadyInitialized
    /// for a variable that has its value and InEx::ExNoNewContextAliasAfterInit from the start of
    /// the first pass on.
    static void overrideViaHandle(const char* handle, const char* value, const char* description);

    /// Sets the further source of values, for variables that are initialised from now on; null for
    /// none. Returns the one before, which a new source may ask for what it has not itself. The
    /// source is not owned. To be called before start-up, on one thread.
    static InValueSource* setSource(InValueSource* source);

    /// Called with one variable.
    using Visitor = std::function<void(const InVariableBase&)>;

    /// Visits the variables of the process in byte order of their handles. For programs that check
    /// and explain their variables; the visitor must not make or destroy any.
    static void visitAll(const Visitor& visitor);

    /// Called with one alias.
    using AliasVisitor = std::function<void(const InContextAliasBase&)>;

    /// Visits the aliases of the variable, those of higher priority first. Overrides are among them
    /// once the variable has been initialised.
    void visitAliases(const AliasVisitor& visitor) const;

    /// Whether an override for the handle is still waiting for its variable.
    static bool isOverridden(const char* handle);

protected:
    /// Clones the aliases that are not _dummy. Raises InEx::ExHandleAlreadyInUse.
    InVariableBase(const char* handle, InPackageInitBase& package, const InContextAliasBase& a1,
                   const InContextAliasBase& a2, const InContextAliasBase& a3,
                   const InContextAliasBase& a4, const InContextAliasBase& a5,
                   const InContextAliasBase& a6, const InContextAliasBase& a7,
                   const InContextAliasBase& a8, const InContextAliasBase& a9,
                   const InContextAliasBase& a10);
    virtual ~InVariableBase();

    /// Drops the overrides that no variable has taken. For the manager, at shut-down.
    static void clearPendingOverrides();

    /// The text of the supplying alias. Raises InEx::ExUninitializedObject with the handle if there
    /// is none.
    const char* valueText() const;

private:
    struct HigherPriority
    {
        bool operator()(const std::unique_ptr<InContextAliasBase>& a,
                        const std::unique_ptr<InContextAliasBase>& b) const;
    };

    using Handles = std::map<std::string, InVariableBase*>;
    using Overrides = std::map<std::string, std::unique_ptr<InContextAlias<InInitOvr, 0>>>;

    void joinPackage(const InContextAliasBase* const (&aliases)[10]);
    void removeHandle();
    void takeOverride();
    void takeFromSource();

    const InContextAliasBase* _contextAlias;
    std::multiset<std::unique_ptr<InContextAliasBase>, HigherPriority> _contextAliases;
    InPackageInitBase* _package;
    ArrayPtr<char> _handle;

    // Both are null when empty, so that they are usable before any constructor runs.
    static Handles* _handles;
    static Overrides* _pendingOverrides;
};

} // namespace Zu

#endif
