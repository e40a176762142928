/// @file
/// The command ship: sends logs to another system.

#ifndef ZU_ZULOG_ZLSHIP_H
#define ZU_ZULOG_ZLSHIP_H

#include "zlCursor.h"
#include "zlFilter.h"
#include "zlInputs.h"
#include "zlReports.h"
#include "zlShow.h"
#include "zlTail.h"
#include "zlTransport.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Where logs go.
struct ZlDestination
{
    enum class Kind
    {
        /// RELP, for example to rsyslog, which acknowledges each message.
        Relp,
        /// Syslog over TCP.
        Tcp,
        /// The system's journal.
        Journal
    };

    Kind _kind = Kind::Relp;
    std::string _host;
    std::string _port;
    /// Of the journal's socket; empty for the usual one.
    std::string _path;
};

/// Reads "relp://host:20514", "tcp://[::1]:601", "journal:" or "journal:/path". Nothing for
/// anything else.
std::optional<ZlDestination> zlParseDestination(std::string_view text);

struct ZlShipOptions
{
    /// The logs and the selection.
    ZlShowOptions _show;
    ZlDestination _destination;
    /// The destination as it was written: a cursor is for one.
    std::string _destinationText;
    std::string _cursorFile;
    /// Whether the program ends when all that is there was taken.
    bool _isOnce = false;
    /// The program's name in messages; empty for that of the log.
    std::string _app;
};

/// Reads logs from where the cursor is on, and delivers their records in batches; the cursor
/// follows what the receiver has taken. So after an end at any moment the next shipper goes on, and
/// what was under way, at most one batch, is sent twice. Does not wait itself. Not thread-safe.
class ZlShipper
{
public:
    enum class Outcome
    {
        /// A batch was taken, and there may be more.
        Shipped,
        /// There is nothing new.
        Idle,
        /// The receiver has not taken all. The rest comes with the next step.
        Failed
    };

    /// So many messages, and about so many bytes, are delivered at once.
    static constexpr std::size_t MOST_MESSAGES = 1000;
    static constexpr std::size_t MOST_BYTES = std::size_t{1} << 20;

    /// The references must outlive the object. Raises ZlError for a cursor that can't be used, or
    /// is for another destination.
    ZlShipper(const ZlShipOptions& options, ZlTransport& transport, ZlMessageForm& form,
              ZlCursorFile& file, ZlReports& reports);
    ~ZlShipper();

    /// Delivers a batch. Raises ZlError where going on is of no use.
    Outcome step();

    /// Events that may still be continued come with the next step; with `isAll` also lines without
    /// their end.
    void release(bool isAll);

    /// The directories in which something may happen.
    std::vector<std::string> getDirectories() const;

private:
    // A record that was read, and how many messages there are up to it.
    struct Entry
    {
        std::size_t _tail;
        ZlPlace _place;
        std::size_t _messages;
    };

    void findLogs();
    void collect();
    void add(std::size_t tail);
    bool isFull() const;
    void noteTaken(std::size_t taken);

    const ZlShipOptions& _options;
    ZlTransport& _transport;
    ZlMessageForm& _form;
    ZlCursorFile& _file;
    ZlReports& _reports;
    ZlFilter _filter;
    ZlCursor _cursor;
    ZlLogWords _words;
    std::set<std::string> _names;
    std::vector<std::unique_ptr<ZlTail>> _tails;
    // What was read and not taken.
    std::vector<std::string> _messages;
    std::vector<Entry> _entries;
    std::size_t _bytes = 0;
    bool _isFailing = false;
};

/// Ships until `isStopped` is set or, if so asked, all that is there was taken. Raises ZlError for
/// what can't be used, and, if once only is asked for, when the receiver fails for a while.
void zlShip(const ZlShipOptions& options, ZlReports& reports, const std::atomic<bool>& isStopped);

} // namespace Zu

#endif
