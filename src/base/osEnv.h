/// @file
/// The environment of the process.

#ifndef ZU_BASE_OSENV_H
#define ZU_BASE_OSENV_H

#include "baseApi.h"

namespace Zu
{

/// Reads and changes environment variables. As with the C runtime underneath, a change must not run
/// concurrently with a reader in another thread.
class ZU_BASE_API OsEnv
{
public:
    OsEnv() = delete;

    /// The value, owned by the environment and valid until the environment changes; null if the
    /// variable is not set, and for a null name.
    static const char* getVariable(const char* name);

    /// Sets a variable from a text "NAME=value", which is copied; "NAME=" removes the variable.
    /// Raises ExInternalError "Could not set environment variable" if that fails or the text is not
    /// of that form.
    static void putVariable(const char* assignment);

private:
    // Both return whether they succeeded.
    static bool performPut(const char* name, const char* value);
    static bool performRemove(const char* name);
};

} // namespace Zu

#endif
