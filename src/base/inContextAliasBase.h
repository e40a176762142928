/// @file
/// What all context aliases have in common.

#ifndef ZU_BASE_INCONTEXTALIASBASE_H
#define ZU_BASE_INCONTEXTALIASBASE_H

#include "arrayPtr.h"
#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// One named source from which a configuration value can reach the program.
///
/// Thread-safety: written in static construction, start-up and shut-down on one thread; plain reads
/// are safe while nobody writes.
class ZU_BASE_API InContextAliasBase
{
public:
    /// Copies the description, a text for people that appears in dumps and reasons; null gives the
    /// empty text.
    explicit InContextAliasBase(const char* description);
    InContextAliasBase& operator=(const InContextAliasBase&) = delete;
    virtual ~InContextAliasBase();

    /// A heap copy of the same kind, owned by the caller.
    virtual InContextAliasBase* clone() const = 0;

    /// The rank among the aliases of one variable: a higher number wins.
    virtual std::uint32_t getPriority() const = 0;

    /// The key under which the value is looked up; owned by the alias.
    virtual const char* getKey() const = 0;

    /// Gives the alias a copy of its value; null means that there is none. The alias must not be
    /// initialised yet.
    void initialize(const char* value);

    /// Takes the alias out of use. The alias must be initialised; its text is kept.
    void finalize();

    /// Whether the alias is initialised and has a value.
    bool isValid() const;

    /// The value, owned by the alias. Raises InEx::ExUninitializedObject while the alias is not
    /// initialised and InEx::ExInvalidObject when it has no value, both with the description.
    const char* getValue() const;

    /// The description, owned by the alias.
    const char* getDescription() const;

protected:
    /// For clone(): copies the texts, and whether the alias is initialised.
    InContextAliasBase(const InContextAliasBase& other);

private:
    bool _isInitialized;
    ArrayPtr<char> _value;
    ArrayPtr<char> _description;
};

} // namespace Zu

#endif
