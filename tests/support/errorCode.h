// The system's code behind a failed call.

#ifndef ZU_TESTS_ERRORCODE_H
#define ZU_TESTS_ERRORCODE_H

#include "base/exSysError.h"

namespace support
{

// The code of the ExSysErrorWindows that an act raises; 0 if it raises none.
template <class Act> int codeOf(Act act)
{
    try
    {
        act();
    }
    catch (const Zu::ExSysErrorWindows& exception)
    {
        return exception.getErrorCode();
    }
    return 0;
}

} // namespace support

#endif
