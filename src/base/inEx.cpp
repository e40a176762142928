#include "base/inEx.h"

#include "base/exDefine.h"

namespace Zu
{

namespace
{

constexpr int NAME_CUT = 256;

} // namespace

InEx::InEx(const char* file, int line) : ExBase(file, line) {}

InEx::ExPackageNotRegistered::ExPackageNotRegistered(const char* file, int line,
                                                     const char* package)
    : std::runtime_error(""), InEx(file, line)
{
    const ExText text("Init Package not registered: '%.*s'.", NAME_CUT, ExText::orEmpty(package));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExPackageNotRegistered)

InEx::ExDependencyCycle::ExDependencyCycle(const char* file, int line)
    : std::logic_error(""), InEx(file, line)
{
    setReason("Init dependencies contain cycle(s)");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExDependencyCycle)

InEx::ExPackageInitError::ExPackageInitError(const char* file, int line, const char* package)
    : std::runtime_error(""), InEx(file, line)
{
    const ExText text("Init error in package: '%.*s'.", NAME_CUT, ExText::orEmpty(package));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExPackageInitError)

InEx::ExRegAfterInit::ExRegAfterInit(const char* file, int line)
    : std::runtime_error(""), InEx(file, line)
{
    setReason("Package registered after initialize().");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExRegAfterInit)

InEx::ExReinitWithoutGuard::ExReinitWithoutGuard(const char* file, int line)
    : std::runtime_error(""), InEx(file, line)
{
    setReason("Reinitialize without using the reinitialize guard.");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExReinitWithoutGuard)

InEx::ExDoubleInit::ExDoubleInit(const char* file, int line)
    : std::runtime_error(""), InEx(file, line)
{
    setReason("Multiple calls to initialize().");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExDoubleInit)

InEx::ExFinaliseBeforeInit::ExFinaliseBeforeInit(const char* file, int line)
    : std::runtime_error(""), InEx(file, line)
{
    setReason("Call to finalize() before initialize().");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExFinaliseBeforeInit)

InEx::ExDoubleFinalise::ExDoubleFinalise(const char* file, int line)
    : std::runtime_error(""), InEx(file, line)
{
    setReason("Multiple calls to finalize().");
}

ZU_EX_WHAT_AND_CLONE(InEx::ExDoubleFinalise)

InEx::ExHandleAlreadyInUse::ExHandleAlreadyInUse(const char* file, int line, const char* handle)
    : std::runtime_error(""), InEx(file, line)
{
    const ExText text("Trying to register an object with an already used handle: '%.*s'.", NAME_CUT,
                      ExText::orEmpty(handle));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExHandleAlreadyInUse)

InEx::ExUninitializedObject::ExUninitializedObject(const char* file, int line, const char* name)
    : std::logic_error(""), InEx(file, line)
{
    const ExText text("Trying to access an object that is not fully initialized: '%.*s'.", NAME_CUT,
                      ExText::orEmpty(name));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExUninitializedObject)

InEx::ExInvalidObject::ExInvalidObject(const char* file, int line, const char* name)
    : std::logic_error(""), InEx(file, line)
{
    const ExText text("Trying to access an object that has an invalid value: '%.*s'.", NAME_CUT,
                      ExText::orEmpty(name));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExInvalidObject)

InEx::ExContextAliasAlreadyDefined::ExContextAliasAlreadyDefined(const char* file, int line,
                                                                 const char* key)
    : std::logic_error(""), InEx(file, line)
{
    const ExText text("Trying to re-create an already existing Context Alias: '%.*s'.", NAME_CUT,
                      ExText::orEmpty(key));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExContextAliasAlreadyDefined)

InEx::ExVariableAlreadyInitialized::ExVariableAlreadyInitialized(const char* file, int line,
                                                                 const char* handle)
    : std::logic_error(""), InEx(file, line)
{
    const ExText text("Trying to override an InVariable that is already initialized: '%.*s'.",
                      NAME_CUT, ExText::orEmpty(handle));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExVariableAlreadyInitialized)

InEx::ExNoNewContextAliasAfterInit::ExNoNewContextAliasAfterInit(const char* file, int line,
                                                                 const char* description,
                                                                 const char* key)
    : std::logic_error(""), InEx(file, line)
{
    const ExText text("Trying to do post initialization registration "
                      "of context alias instance: '%.*s' (key: %.*s).",
                      NAME_CUT, ExText::orEmpty(description), NAME_CUT, ExText::orEmpty(key));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(InEx::ExNoNewContextAliasAfterInit)

} // namespace Zu
