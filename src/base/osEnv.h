/// @file
/// The environment of the process.

#ifndef ZU_BASE_OSENV_H
#define ZU_BASE_OSENV_H

#include "baseApi.h"

namespace Zu
{

/// Reads and changes environment variables. As with the C runtime underneath, a change must not
/// run beside a reader in another thread.
class ZU_BASE_API OsEnv
{
public:
    OsEnv() = delete;

    /// The value, owned by the environment and good until the next change of it; null if unset, and
    /// for a null name.
    static const char* getVariable(const char* name);

    /// Sets a variable from a text "NAME=value", of which a copy is taken; "NAME=" removes the
    /// variable. Raises ExInternalError "Could not set environment variable" when that fails or
    /// the text is not of that form.
    static void putVariable(const char* assignment);

private:
    // Both return whether it succeeded.
    static bool performPut(const char* name, const char* value);
    static bool performRemove(const char* name);
};

} // namespace Zu

#endif
