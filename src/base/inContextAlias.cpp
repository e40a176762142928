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

// The key of a default or an override is its value.
template <class Alias> void InContextAliasMgr<Alias>::assignValues()
{
    for (InContextAliasBase* alias : *_ca) alias->initialize(alias->getKey());
}

// Deliberately the environment of this moment, not the snapshot of InInitMgr::getEnv().
template <> void InContextAliasMgr<InEnvAlias>::assignValues()
{
    for (InContextAliasBase* alias : *_ca) alias->initialize(std::getenv(alias->getKey()));
}

template <> void InContextAliasMgr<InArgAlias>::assignValues()
{
    inBindArguments(*_ca, args());
}

template class InContextAliasMgr<InArgAlias>;
template class InContextAliasMgr<InEnvAlias>;
template class InContextAliasMgr<InDefAlias>;
template class InContextAliasMgr<InOvrAlias>;

template class ZU_BASE_API InContextAlias<InInitArg, 1>;
template class ZU_BASE_API InContextAlias<InInitEnv, 1>;
template class ZU_BASE_API InContextAlias<InInitDef, 0>;
template class ZU_BASE_API InContextAlias<InInitOvr, 0>;

} // namespace Zu
