/// @file
/// Named groups of tests, which register themselves.

#ifndef ZU_BASE_TESTGROUP_H
#define ZU_BASE_TESTGROUP_H

#include "baseApi.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <vector>

namespace Zu
{

/// A test that a program offers by name. An object registers itself when it is constructed. Usually
/// it is a static object, so that linking it in is enough:
///
/// @code
/// class LookupTest : public Zu::TestGroup
/// {
/// public:
///     LookupTest() : TestGroup("Lookup") {}
///     void run(int argc, char** const argv) override { ... }
/// } theLookupTest;
/// @endcode
///
/// A group stays in the registry when it is destroyed, so it must live as long as groups are looked
/// up. A copy shares the texts and is not registered; copies are not meant for use.
///
/// Thread-safety: everything here belongs to one thread; run() may start threads of its own.
class ZU_BASE_API TestGroup
{
    friend class TestMgr;

public:
    TestGroup(const TestGroup&) = default;
    TestGroup& operator=(const TestGroup&) = default;
    virtual ~TestGroup();

    /// Prepares what run() needs and what must not be measured; does nothing by default. The words
    /// are those of the command line after the group's name, or beginning with it if
    /// getGroupNameInArgs(). In a performance run they are only those of the file. A null follows
    /// the last one.
    virtual void prepare(int argc, char** const argv);

    /// The test. It fails by raising an exception.
    virtual void run(int argc, char** const argv) = 0;

    /// Ends what prepare() began; does nothing by default. It is not called when run() raised.
    virtual void terminate();

    /// Writes the result of a cycle of a performance run; does nothing by default.
    virtual void dump(std::ostream& os);

    /// Null for a group without a name.
    const char* getName() const;

    /// What was passed to setPrintHeaders().
    bool getPrintHeaders() const;

    /// What was passed to setGroupNameInArgs().
    bool getGroupNameInArgs() const;

    /// The first group of this name; null if there is none, and for null.
    static TestGroup* getInstance(const char* name);

    /// Called with a group, which may be one without a name.
    using Visitor = std::function<void(TestGroup& group)>;

    /// Visits the groups in the order in which they registered themselves. For programs that run
    /// them in a way of their own. The visitor must not make groups.
    static void visitAll(const Visitor& visitor);

    /// Whether the program was instrumented for profiling, as TestMgr finds out from its name.
    static bool isPixified();

    /// Traces a heading, "***** text *****" between two empty lines, on the level "Main".
    static void caseHeader(const char* text);

    /// Traces a remark, "[ text ] " between two empty lines, on the level "Main".
    static void log(const char* text);

    /// Prints all groups with their usages and descriptions, and the levels of tracing.
    static void printInstances();

protected:
    /// Takes the name as setName() does; a group without one can't be run by name. When the name is
    /// refused the group is not registered.
    explicit TestGroup(const char* name = nullptr);

    /// The texts are copied; null removes one. A name that another group has raises ExInternalError
    /// `Duplicate test group : "<name>".` and leaves this group without a name.
    void setName(const char* name);

    /// The text after the name in printInstances().
    void setUsage(const char* usage);

    /// The text below it.
    void setDescription(const char* description);

    /// Whether TestMgr announces the start and the end of the group; true at first.
    void setPrintHeaders(bool printHeaders);

    /// Whether the group wants its own name as the first word; false at first.
    void setGroupNameInArgs(bool groupNameInArgs);

private:
    static std::vector<TestGroup*>& instances();
    static void setIsPixified(bool isPixified);

    static bool _isPixified;

    std::shared_ptr<char[]> _name;
    std::shared_ptr<char[]> _usage;
    std::shared_ptr<char[]> _description;
    bool _printHeaders = true;
    bool _groupNameInArgs = false;
};

} // namespace Zu

#endif
