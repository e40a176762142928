/// @file
/// The access rights with which files are made.

#ifndef ZU_BASE_OSFILETYPES_H
#define ZU_BASE_OSFILETYPES_H

#include "base/baseApi.h"

namespace Zu
{

/// The scope of small types that the file classes share.
class ZU_BASE_API OsFileTypes
{
public:
    OsFileTypes() = delete;

    /// Access to a file; the values combine as bits.
    enum Access
    {
        AccessRead = 1,
        AccessWrite = 2,
        AccessExecute = 4
    };

    /// Who may do what with a new file, as bits of Access. Windows has no such modes and ignores
    /// them; Linux applies them, less what the process's umask takes away.
    class Permissions
    {
    public:
        Permissions(int user = AccessRead | AccessWrite, int group = AccessRead,
                    int other = AccessRead)
            : _userMode(user), _groupMode(group), _otherMode(other)
        {
        }

        /// What the owner may do.
        int getUserMode() const
        {
            return _userMode;
        }

        /// What the owner's group may do.
        int getGroupMode() const
        {
            return _groupMode;
        }

        /// What everybody else may do.
        int getOtherMode() const
        {
            return _otherMode;
        }

    private:
        int _userMode;
        int _groupMode;
        int _otherMode;
    };
};

} // namespace Zu

#endif
