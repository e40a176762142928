/// @file
/// The printed form of a run-time type.

#ifndef ZU_BASE_TYPENAME_H
#define ZU_BASE_TYPENAME_H

#include "baseApi.h"

#include <typeinfo>

namespace Zu
{

/// The name of a type as a C++ programmer writes it, for example
/// "Zu::InContextAlias<Zu::InInitEnv, 1>"; the runtime's own form if it can't be decoded or memory
/// is exhausted.
///
/// The text lives to the end of the process, even beyond the module of the type, and every call
/// with an equal type returns the same pointer. Any thread may call it; it takes a lock, so use it
/// for diagnostics.
ZU_BASE_API const char* typeName(const std::type_info& type) noexcept;

} // namespace Zu

#endif
