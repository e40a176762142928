/// @file
/// Typed init variables.

#ifndef ZU_BASE_INVARIABLE_H
#define ZU_BASE_INVARIABLE_H

#include "baseApi.h"
#include "inContextAlias.h"
#include "inVariableBase.h"

namespace Zu
{

/// An init variable of type `T`, one of int, bool and `const char*`. Variables are static objects,
/// defined after their package and their aliases in the same source file:
///
/// @code
/// static Zu::InEnvAlias portEnv("MYAPP_PORT", "port to listen on");
/// static Zu::InDefAlias portDefault("8080", "usual port");
/// static Zu::InVariable<int> port("my::app::port", thePackage, portEnv, portDefault);
/// @endcode
template <class T> class ZU_BASE_VISIBLE InVariable : public InVariableBase
{
public:
    /// `handle` must be unique in the process, otherwise InEx::ExHandleAlreadyInUse is raised.
    /// `package` must outlive the variable. There may be up to ten aliases; _dummy stands for none.
    InVariable(const char* handle, InPackageInitBase& package, const InContextAliasBase& a1,
               const InContextAliasBase& a2 = _dummy, const InContextAliasBase& a3 = _dummy,
               const InContextAliasBase& a4 = _dummy, const InContextAliasBase& a5 = _dummy,
               const InContextAliasBase& a6 = _dummy, const InContextAliasBase& a7 = _dummy,
               const InContextAliasBase& a8 = _dummy, const InContextAliasBase& a9 = _dummy,
               const InContextAliasBase& a10 = _dummy);
    ~InVariable() override;

    /// The value, converted from the supplying alias's text at each call. Raises
    /// InEx::ExUninitializedObject with the handle if no alias supplied one.
    ///
    /// - int: the decimal number at the beginning of the text, as `atoi` reads it: 0 for malformed
    ///   text, the nearest int for a number out of range.
    /// - bool: false for "0" and for "false" in any mix of case. Deliberately every other text is
    ///   true, including the empty one; none is rejected.
    /// - `const char*`: the text, owned by the alias.
    T getValue() const;

private:
    // Unused: part of the layout, which is frozen, see docs/compatibility.md.
    T _value;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API InVariable<int>;
extern template class ZU_BASE_API InVariable<bool>;
extern template class ZU_BASE_API InVariable<const char*>;
#endif

} // namespace Zu

#endif
