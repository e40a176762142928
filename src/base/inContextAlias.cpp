#include "base/inContextAlias.h"

#include "base/inArgBinding.h"
#include "base/inContextAlias.imp"
#include "base/inContextAliasMgr.imp"

#include <cstdlib>

namespace Zu
{

template <> struct InAliasKind<InInitOvr>
{
    static constexpr std::uint32_t PRIORITY = 4294967295U;
};

template <> struct InAliasKind<InInitArg>
{
    static constexpr std::uint32_t PRIORITY = 15;
};

template <> struct InAliasKind<InInitEnv>
{
    static constexpr std::uint32_t PRIORITY = 10;
};

template <> struct InAliasKind<InInitDef>
{
    static constexpr std::uint32_t PRIORITY = 0;
};

namespace
{

using Aliases = std::set<InContextAliasBase*>;

// The key of a default or an override is its value.
struct ValueIsTheKey
{
    static void assign(const Aliases& aliases, const Vector<char*>&)
    {
        for (InContextAliasBase* alias : aliases) alias->initialize(alias->getKey());
    }
};

} // namespace

template <> struct InAliasValues<InDefAlias> : ValueIsTheKey
{
};

template <> struct InAliasValues<InOvrAlias> : ValueIsTheKey
{
};

// Deliberately reads the current environment, not the snapshot of InInitMgr::getEnv().
template <> struct InAliasValues<InEnvAlias>
{
    static void assign(const Aliases& aliases, const Vector<char*>&)
    {
        for (InContextAliasBase* alias : aliases) alias->initialize(std::getenv(alias->getKey()));
    }
};

template <> struct InAliasValues<InArgAlias>
{
    static void assign(const Aliases& aliases, Vector<char*>& args)
    {
        inBindArguments(aliases, args);
    }
};

template class ZU_BASE_API InContextAliasMgr<InArgAlias>;
template class ZU_BASE_API InContextAliasMgr<InEnvAlias>;
template class ZU_BASE_API InContextAliasMgr<InDefAlias>;
template class ZU_BASE_API InContextAliasMgr<InOvrAlias>;

template class ZU_BASE_API InContextAlias<InInitArg, 1>;
template class ZU_BASE_API InContextAlias<InInitEnv, 1>;
template class ZU_BASE_API InContextAlias<InInitDef, 0>;
template class ZU_BASE_API InContextAlias<InInitOvr, 0>;

} // namespace Zu
