/// @file
/// The four kinds of context aliases.

#ifndef ZU_BASE_INCONTEXTALIAS_H
#define ZU_BASE_INCONTEXTALIAS_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "inContextAliasBase.h"
#include "inContextAliasMgr.h"

#include <cstdint>

namespace Zu
{

/// The kind of alias whose value is an option of the command line.
struct ZU_BASE_VISIBLE InInitArg
{
};

/// The kind of alias whose value is an environment variable.
struct ZU_BASE_VISIBLE InInitEnv
{
};

/// The kind of alias whose value is compiled in.
struct ZU_BASE_VISIBLE InInitDef
{
};

/// The kind of alias whose value was forced by the program.
struct ZU_BASE_VISIBLE InInitOvr
{
};

/// A context alias of the kind `Src`. With `Unique` 1 a key may be constructed only once; clones
/// share it. Aliases are static objects and exist before start-up: all of them, including clones,
/// must be constructed before their kind takes its values.
///
/// | alias | priority | the key is | the value is |
/// |---|---|---|---|
/// | InOvrAlias | 4294967295 | the value | the key; made by InVariableBase::overrideViaHandle() |
/// | InArgAlias | 15 | an option letter, followed by ":" if the option takes a value | from the command line |
/// | InEnvAlias | 10 | the name of a variable | from the environment at start-up |
/// | InDefAlias | 0 | the value | the key |
template <class Src, int Unique> class ZU_BASE_VISIBLE InContextAlias : public InContextAliasBase
{
public:
    /// Copies both texts. Raises InEx::ExContextAliasAlreadyDefined if the kind is unique and the
    /// key in use and, after that check, InEx::ExNoNewContextAliasAfterInit once the kind has taken
    /// its values.
    InContextAlias(const char* key, const char* description);
    InContextAlias& operator=(const InContextAlias&) = delete;
    ~InContextAlias() override;

    /// A heap copy, owned by the caller. It counts as a new alias of the kind, so it raises
    /// InEx::ExNoNewContextAliasAfterInit as the constructor does.
    InContextAliasBase* clone() const override;
    std::uint32_t getPriority() const override;
    const char* getKey() const override;

    /// The run-time type name of the kind.
    static const char* initSourceString();

protected:
    /// For clone(), where its exceptions are documented.
    InContextAlias(const InContextAlias& other);

private:
    void joinKind();
    void releaseKey();

    ArrayPtr<char> _key;
};

/// @{
/// The kinds of aliases; see the table of InContextAlias.
using InArgAlias = InContextAlias<InInitArg, 1>;
using InEnvAlias = InContextAlias<InInitEnv, 1>;
using InDefAlias = InContextAlias<InInitDef, 0>;
using InOvrAlias = InContextAlias<InInitOvr, 0>;
/// @}

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API InContextAlias<InInitArg, 1>;
extern template class ZU_BASE_API InContextAlias<InInitEnv, 1>;
extern template class ZU_BASE_API InContextAlias<InInitDef, 0>;
extern template class ZU_BASE_API InContextAlias<InInitOvr, 0>;

extern template class ZU_BASE_API InContextAliasMgr<InArgAlias>;
extern template class ZU_BASE_API InContextAliasMgr<InEnvAlias>;
extern template class ZU_BASE_API InContextAliasMgr<InDefAlias>;
extern template class ZU_BASE_API InContextAliasMgr<InOvrAlias>;
#endif

} // namespace Zu

#endif
