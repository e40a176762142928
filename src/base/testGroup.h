/// @file
/// Named groups of tests, which register themselves.

#ifndef ZU_BASE_TESTGROUP_H
#define ZU_BASE_TESTGROUP_H

#include "baseApi.h"

#include <iosfwd>
#include <memory>
#include <vector>

namespace Zu
{

/// A test that a program offers by name. An object registers itself when it is built, as a rule as
/// a static object, so linking it in is all that it takes:
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
/// A group stays in the registry when it ends, so it must live as long as groups are looked up.
/// A copy shares the texts and is not registered; copies are not meant for use.
///
/// Thread-safety: everything here belongs to one thread; run() may start threads of its own.
class ZU_BASE_API TestGroup
{
    friend class TestMgr;

public:
    TestGroup(const TestGroup&) = default;
    TestGroup& operator=(const TestGroup&) = default;
    virtual ~TestGroup();

    /// What run() needs and what is not to be measured; nothing here. The words are those of the
    /// command line behind the group's name, or from it on if getGroupNameInArgs(); in a
    /// performance run they are those of the file alone. Behind the last stands a null.
    virtual void prepare(int argc, char** const argv);

    /// The test. It fails by raising an exception.
    virtual void run(int argc, char** const argv) = 0;

    /// The end of what prepare() began; nothing here. It is not called when run() raised.
    virtual void terminate();

    /// Writes the result of a cycle of a performance run; nothing here.
    virtual void dump(std::ostream& os);

    /// Null for a group without a name.
    const char* getName() const;

    /// What setPrintHeaders() was told.
    bool getPrintHeaders() const;

    /// What setGroupNameInArgs() was told.
    bool getGroupNameInArgs() const;

    /// The first group of this name; null if there is none, and for null.
    static TestGroup* getInstance(const char* name);

    /// Whether the program was instrumented for profiling, as TestMgr tells from its name.
    static bool isPixified();

    /// Traces a heading, "***** text *****" between two empty lines, on the level "Main".
    static void caseHeader(const char* text);

    /// Traces a remark, "[ text ] " between two empty lines, on the level "Main".
    static void log(const char* text);

    /// Prints all groups with their usages and descriptions, and the levels of tracing.
    static void printInstances();

protected:
    /// The name is that of setName(); without one the group can't be run by name. When the name is
    /// refused the group is not registered.
    explicit TestGroup(const char* name = nullptr);

    /// The texts are copied; null takes one away. A name that another group has raises
    /// ExInternalError `Duplicate test group : "<name>".` and leaves this one without a name.
    void setName(const char* name);

    /// What stands behind the name in printInstances().
    void setUsage(const char* usage);

    /// What stands below.
    void setDescription(const char* description);

    /// Whether TestMgr tells that it runs the group, and its end; true at first.
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
