// What the server answers.

#ifndef ZU_EXAMPLES_REQUESTS_H
#define ZU_EXAMPLES_REQUESTS_H

#include "app/apLogGroup.h"
#include "app/apPackage.h"
#include "app/lgService.h"
#include "base/base.h"

#include <string>

// The package of the server, and its log group.
ZU_DECLARE_PACKAGE(serverPackage);
ZU_DECLARE_LOG_GROUP(Requests);

namespace server
{

struct Answer
{
    // Without the end of the line.
    std::string _text;
    // Whether the connection, and whether the server, ends with it.
    bool _closes = false;
    bool _shutsDown = false;
};

// The answer to a request, which is a line without its end. The request is one event of the log
// before this returns, so whatever a client has got an answer to is in the log, even if the process
// is killed now. Any thread may call it.
Answer answerTo(const std::string& request, const Zu::LgService& service);

} // namespace server

#endif
