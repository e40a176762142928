/// @file
/// Carries syslog messages by RELP, which acknowledges each of them.

#ifndef ZU_ZULOG_ZLRELP_H
#define ZU_ZULOG_ZLRELP_H

#include "zlTransport.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Which messages of a session the receiver has acknowledged. Not thread-safe.
class ZlRelpAnswers
{
public:
    /// Begins a session of so many messages.
    void begin(std::size_t messages);

    /// Takes the answer to a transaction; 200 is "taken". The session's opening has the number 1,
    /// the messages follow.
    void take(int transaction, int code);

    /// Whether the opening was answered, so that answers are seen at all.
    bool isOpened() const
    {
        return _isOpened;
    }

    /// How many messages were taken, from the first one on, up to one that was not.
    std::size_t countTaken() const;

    /// The first code that refused a message; 0 if none did.
    int getRefusal() const
    {
        return _refusal;
    }

private:
    std::vector<bool> _areTaken;
    bool _isOpened = false;
    int _refusal = 0;
};

/// Whether this is the form of the text by which librelp notes an answer, with the transaction and
/// the code as its first two values.
bool zlIsAnswerForm(std::string_view form);

/// Sends messages through librelp, one session for each delivery: its orderly end waits for all
/// answers. Raises ZlError where there is no such library.
std::unique_ptr<ZlTransport> zlMakeRelp(const std::string& host, const std::string& port);

} // namespace Zu

#endif
