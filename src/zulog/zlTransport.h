/// @file
/// What carries messages to another system, and what makes messages of records.

#ifndef ZU_ZULOG_ZLTRANSPORT_H
#define ZU_ZULOG_ZLTRANSPORT_H

#include "zlRecord.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace Zu
{

/// Carries messages to one receiver. Connects when there is something to carry. Not thread-safe.
class ZlTransport
{
public:
    struct Result
    {
        /// So many messages, from the first one on, the receiver has for certain, in the sense of
        /// the transport.
        std::size_t _taken = 0;
        /// Why the others may not have arrived; empty if there are none.
        std::string _failure;
    };

    virtual ~ZlTransport() = default;

    /// Sends messages in their order, and returns when the receiver has all of them, or has failed.
    /// Waits as long as a receiver that works does not take them. Raises ZlError where a further
    /// attempt would be of no use.
    virtual Result deliver(std::span<const std::string> messages) = 0;

    /// Ends the connection in order.
    virtual void finish() = 0;
};

/// Makes messages of records. Not thread-safe.
class ZlMessageForm
{
public:
    virtual ~ZlMessageForm() = default;

    /// Appends what stands for a record, in one or more messages. `log` is the name of its log.
    virtual void append(std::vector<std::string>& messages, const ZlRecord& record,
                        const std::string& log) = 0;
};

} // namespace Zu

#endif
