/// @file
/// A package in one statement.

#ifndef ZU_APP_APPACKAGE_H
#define ZU_APP_APPACKAGE_H

#include "../base/compiler.h"
#include "../base/inInit.h"
#include "../base/xGlue.h"
#include "../base/zuInit.h"
#include "appApi.h"

#include <cstddef>
#include <functional>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Zu
{

/// Something that lives as long as a package is up, such as a log group.
class ZU_APP_API ApPart
{
public:
    ApPart() = default;
    ApPart(const ApPart&) = delete;
    ApPart& operator=(const ApPart&) = delete;
    virtual ~ApPart();

    /// Runs before the package's own start. An exception ends the start of the package.
    virtual void start() = 0;

    /// Runs after the package's own stop, and after a failure of its start.
    virtual void stop() noexcept = 0;
};

/// The packages that one needs, by their tags.
template <class... Tags> struct ApNeeds
{
};

/// Start-up work of a package.
struct ApStart
{
    /// Runs when all that the package needs is up, and its variables have their values.
    std::function<void()> _body;
};

/// Shut-down work of a package.
struct ApStop
{
    /// Runs before anything that the package needs is stopped.
    std::function<void()> _body;
};

/// Declares what a package needs; for ZU_PACKAGE. A tag is one that ZU_PACKAGE or
/// ZU_DECLARE_PACKAGE has named, or that of a package in the long form, such as `ZuInit::logger`.
template <class... Tags> ApNeeds<Tags...> needs()
{
    return {};
}

/// What runs when a package starts; for ZU_PACKAGE.
inline ApStart atStart(std::function<void()> body)
{
    return {std::move(body)};
}

/// What runs when a package stops; for ZU_PACKAGE.
inline ApStop atStop(std::function<void()> body)
{
    return {std::move(body)};
}

/// What packages made by ZU_PACKAGE have in common. They start and stop as all packages do.
///
/// Thread-safety: none, as for InPackageInit.
class ZU_APP_API ApPackage : public InPackageInit
{
public:
    ~ApPackage() override;

    /// Adds a part, which must live as long as it is in the package. Parts start in the order in
    /// which they were added, and stop in the reverse order. A part that is added while the package
    /// is up is not started.
    void add(ApPart& part);

    /// Removes a part; nothing happens if it is not in the package.
    void remove(const ApPart& part);

    /// Whether the package is up.
    bool isUp() const;

    /// Starts the parts, then runs the package's own work. After an exception the parts that were
    /// started are stopped again, and it is passed on.
    void performInitialize() override;

    /// Runs the package's own work, then stops the parts. An exception of the work is passed on
    /// when the parts are stopped.
    void performFinalize() override;

    void setInitialized(bool initialized) override;

protected:
    /// See InPackageInit.
    explicit ApPackage(const char* name);

    /// @{
    /// Takes one clause of ZU_PACKAGE.
    template <class... Tags> void take(ApNeeds<Tags...>);
    void take(ApStart start);
    void take(ApStop stop);
    /// @}

private:
    void stopParts(std::size_t count) noexcept;

    std::vector<ApPart*> _parts;
    std::function<void()> _atStart;
    std::function<void()> _atStop;
    bool _isUp = false;
};

/// Stands for the packages made by ZU_PACKAGE among those of InInit.
template <class Tag> struct ApShort
{
};

/// A package made by ZU_PACKAGE.
template <class Tag> class ZU_BASE_VISIBLE InInit<ApShort<Tag>> : public ApPackage
{
public:
    /// Names and registers the package; it needs "base", and what the clauses declare.
    template <class... Clauses> explicit InInit(const char* packageName, Clauses... clauses);

    /// The run-time type that identifies this package.
    static const std::type_info* getType()
    {
        return &typeid(InInit);
    }
};

/// @{
/// Whether a tag was named by ZU_PACKAGE or ZU_DECLARE_PACKAGE.
template <class Tag, class = void> inline constexpr bool apIsShort = false;
template <class Tag>
inline constexpr bool apIsShort<Tag, std::void_t<decltype(zuPackage(static_cast<Tag*>(nullptr)))>> =
    true;
/// @}

/// The run-time type that identifies the package of a tag of either kind, for addDependency() in
/// the long form.
template <class Tag> const std::type_info* packageType()
{
    if constexpr (apIsShort<Tag>)
        return InInit<ApShort<Tag>>::getType();
    else
        return InInit<Tag>::getType();
}

/// The object of a package that ZU_PACKAGE defines: variables and parts are made with it, in any
/// source file and before main. It is made at the first call.
template <class Tag> ApPackage& packageOf()
{
    return zuPackage(static_cast<Tag*>(nullptr));
}

template <class... Tags> void ApPackage::take(ApNeeds<Tags...>)
{
    (addDependency(packageType<Tags>()), ...);
}

template <class Tag>
template <class... Clauses>
InInit<ApShort<Tag>>::InInit(const char* packageName, Clauses... clauses) : ApPackage(packageName)
{
    static_assert((0 + ... + int(std::is_same_v<Clauses, ApStart>)) <= 1,
                  "a package has one atStart()");
    static_assert((0 + ... + int(std::is_same_v<Clauses, ApStop>)) <= 1,
                  "a package has one atStop()");
    registerPackage();
    addDependency(packageType<ZuInit::base>());
    (take(std::move(clauses)), ...);
}

} // namespace Zu

/// Declares a package in a header, so that others can need it and have parts in it. This macro and
/// the next are used outside functions, in the namespace of the subsystem, whose tag they name.
#define ZU_DECLARE_PACKAGE(tag)                                                                    \
    struct tag;                                                                                    \
    ::Zu::ApPackage& zuPackage(tag*)

/// Defines a package in one source file: its tag, its name, and clauses in any order:
///
/// @code
/// ZU_PACKAGE(shop, "shop");
/// ZU_PACKAGE(orders, "orders", Zu::needs<shop, ZuInit::random>(),
///            Zu::atStart([] { openOrders(); }), Zu::atStop([] { closeOrders(); }));
/// @endcode
///
/// Every package needs "base"; it is not declared. The bodies may raise exceptions, as those of the
/// long form: see InInitMgr. A variable of the package is made with `Zu::packageOf<shop>()`.
#define ZU_PACKAGE(tag, ...)                                                                       \
    ZU_DECLARE_PACKAGE(tag);                                                                       \
    struct ZU_BASE_VISIBLE tag                                                                     \
    {                                                                                              \
    };                                                                                             \
    ::Zu::ApPackage& zuPackage(tag*)                                                               \
    {                                                                                              \
        static ::Zu::InInit<::Zu::ApShort<tag>> package(__VA_ARGS__);                              \
        return package;                                                                            \
    }                                                                                              \
    [[maybe_unused]] static const ::Zu::ApPackage& ZU_XGLUE(theApPackage, tag) =                   \
        zuPackage(static_cast<tag*>(nullptr))

#endif
