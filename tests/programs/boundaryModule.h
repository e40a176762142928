// What the two modules of the boundary tests have in common. Each includes it once.

#ifndef ZU_TESTS_BOUNDARYMODULE_H
#define ZU_TESTS_BOUNDARYMODULE_H

#include "base/inContextAlias.h"
#include "base/inEx.h"
#include "boundaryClient.h"

#include <stdexcept>

#if defined(_WIN32)
#define BOUNDARY_MODULE_API extern "C" __declspec(dllexport)
#else
#define BOUNDARY_MODULE_API extern "C" __attribute__((visibility("default")))
#endif

BOUNDARY_MODULE_API void throwFromModule(int which)
{
    if (which == 0) throw Zu::InEx::ExDoubleInit(__FILE__, __LINE__);
    if (which == 1) throw boundary::ClientError(__FILE__, __LINE__, "of the client");
    throw std::out_of_range("of the standard library");
}

BOUNDARY_MODULE_API void catchInModule(boundary::Callback callback)
{
    try
    {
        callback();
    }
    catch (const boundary::ClientError& exception)
    {
        boundary::say(std::string("module caught ClientError: ") + exception.what());
    }
    catch (const Zu::InEx& exception)
    {
        boundary::say(std::string("module caught InEx: ") + exception.getReason());
    }
    catch (const std::exception& exception)
    {
        boundary::say(std::string("module caught std::exception: ") + exception.what());
    }
}

BOUNDARY_MODULE_API void buildAlias()
{
    Zu::InDefAlias alias("7", "built by the module");
}

#endif
