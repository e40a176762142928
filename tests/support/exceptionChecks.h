// The requirements on every concrete exception, checked in the same way for all families.

#ifndef ZU_TESTS_EXCEPTIONCHECKS_H
#define ZU_TESTS_EXCEPTIONCHECKS_H

#include "base/exBase.h"

#include "support/rowName.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <typeinfo>
#include <utility>

namespace support
{

// The place at which all exceptions of the checks claim to have been raised.
inline constexpr const char* RAISE_FILE = "place/ofTheRaise.cpp";
inline constexpr int RAISE_LINE = 4711;

// Which of the two direct bases of a class comes first in its objects.
enum class FirstBase
{
    STANDARD,
    ROOT
};

// One concrete exception, how to make and raise it, and its expected text.
struct ExceptionRow
{
    // The name of the class without its scopes, optionally with a word about the arguments.
    std::string _name;
    std::string _reason;
    FirstBase _firstBase = FirstBase::STANDARD;

    // Makes one with the same arguments each time.
    std::function<std::unique_ptr<Zu::ExBase>()> _make;
    // Its text as a std::exception.
    std::function<std::string()> _what;
    // The text of its standard base, without the override.
    std::function<std::string()> _standardText;
    // Raise it past handlers for other types; return what the handlers for the standard class, for
    // the family and for the common root read from it.
    std::function<std::string()> _readByStandardHandler;
    std::function<std::string()> _readByFamilyHandler;
    std::function<std::string()> _readByRootHandler;
    // Which base comes first in an object.
    std::function<FirstBase()> _observedFirstBase;
};

inline void PrintTo(const ExceptionRow& row, std::ostream* stream)
{
    *stream << row._name;
}

// The text that `read` returns for the exception of `raise`, if a handler for Handler catches it.
template <class Handler, class Raise, class Read> std::string readBy(Raise raise, Read read)
{
    try
    {
        raise();
    }
    catch (const Handler& caught)
    {
        return read(caught);
    }
    catch (...)
    {
        return "(not caught by this handler)";
    }
    return "(nothing raised)";
}

// A row of a table: the exception's class, its standard base and its family; then its name, its
// reason and the constructor arguments after file and line.
template <class Exception, class Standard, class Family, class... Arguments>
ExceptionRow exceptionRow(std::string name, std::string reason, Arguments... arguments)
{
    const std::tuple<std::decay_t<Arguments>...> kept(std::move(arguments)...);
    const auto make = [kept]
    {
        return std::apply(
            [](const auto&... text)
            { return std::make_unique<Exception>(RAISE_FILE, RAISE_LINE, text.c_str()...); },
            kept);
    };
    const auto raise = [make] { throw Exception(*make()); };

    ExceptionRow row;
    row._name = std::move(name);
    row._reason = std::move(reason);
    row._make = make;
    row._what = [make]
    {
        const std::unique_ptr<const std::exception> exception = make();
        return std::string(exception->what());
    };
    row._standardText = [make] { return std::string(make()->Standard::what()); };
    row._readByStandardHandler = [raise]
    { return readBy<Standard>(raise, [](const Standard& caught) { return caught.what(); }); };
    row._readByFamilyHandler = [raise]
    { return readBy<Family>(raise, [](const Family& caught) { return caught.getReason(); }); };
    row._readByRootHandler = [raise] {
        return readBy<Zu::ExBase>(raise,
                                  [](const Zu::ExBase& caught) { return caught.getReason(); });
    };
    row._observedFirstBase = [make]
    {
        const std::unique_ptr<const Exception> exception = make();
        const void* const standard = static_cast<const Standard*>(exception.get());
        const void* const family = static_cast<const Family*>(exception.get());
        return std::less<>()(standard, family) ? FirstBase::STANDARD : FirstBase::ROOT;
    };
    return row;
}

// The same for a class whose family root comes before the standard class.
inline ExceptionRow rootFirst(ExceptionRow row)
{
    row._firstBase = FirstBase::ROOT;
    return row;
}

// A name longer than any precision, and its beginning as truncated by a precision of `length`. The
// characters around the cut differ from their neighbours.
inline std::string longName(char letter)
{
    std::string name(63, letter);
    name.append("<>").append(190, letter);
    name.append("()").append(254, letter);
    name.append("[]").append(87, letter);
    return name;
}

inline std::string cutName(char letter, std::size_t length)
{
    return longName(letter).substr(0, length);
}

// The object reports where and why it was raised, also as a std::exception.
inline void expectTexts(const ExceptionRow& row)
{
    const std::unique_ptr<Zu::ExBase> exception = row._make();
    EXPECT_EQ(exception->getReason(), row._reason);
    EXPECT_STREQ(exception->getFileName(), RAISE_FILE);
    EXPECT_EQ(exception->getLineNo(), RAISE_LINE);
    EXPECT_EQ(row._what(), row._reason);
}

// Handlers for the standard class, the family and the root catch it and read the reason.
inline void expectHandlers(const ExceptionRow& row)
{
    EXPECT_EQ(row._readByStandardHandler(), row._reason);
    EXPECT_EQ(row._readByFamilyHandler(), row._reason);
    EXPECT_EQ(row._readByRootHandler(), row._reason);
}

// `copy` is a clone of `exception`: a different object of the same type with the same texts.
inline void expectCloneOf(const Zu::ExBase& exception, const Zu::ExBase& copy)
{
    EXPECT_NE(&copy, &exception);
    EXPECT_TRUE(typeid(copy) == typeid(exception)) << typeid(copy).name();
    EXPECT_STREQ(copy.getReason(), exception.getReason());
    EXPECT_STREQ(copy.getFileName(), exception.getFileName());
    EXPECT_EQ(copy.getLineNo(), exception.getLineNo());
    EXPECT_STREQ(copy.getDetailedReason(), exception.getDetailedReason());
    const auto* const standard = dynamic_cast<const std::exception*>(&copy);
    ASSERT_TRUE(standard);
    EXPECT_STREQ(standard->what(), exception.getReason());
}

// A clone outlives the original.
inline void expectClone(const ExceptionRow& row)
{
    std::unique_ptr<Zu::ExBase> exception = row._make();
    const std::unique_ptr<Zu::ExBase> copy(exception->clone());
    ASSERT_TRUE(copy);
    expectCloneOf(*exception, *copy);
    exception.reset();
    EXPECT_EQ(copy->getReason(), row._reason);
}

// Tests over the tables of all families; a family instantiates it with its own table.
class ExceptionFamilies : public testing::TestWithParam<ExceptionRow>
{
};

} // namespace support

#endif
