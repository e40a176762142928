#include "zulog/zlFile.h"
#include "zulog/zlRelp.h"

#include "zulog/zlTcp.h"

#include <cstdarg>
#include <dlfcn.h>
#include <sys/socket.h>

namespace Zu
{

namespace
{

// The library is opened when it is needed: so the program is one file that starts without it, and
// the libraries for encryption that it takes along.
constexpr const char* LIBRARY = "librelp.so.0";

using Object = void*;
using Bytes = unsigned char*;

constexpr int OK = 0;
constexpr int COMMAND_REQUIRED = 3;
constexpr unsigned TIMEOUT_SECONDS = 90;
constexpr int CONNECT_SECONDS = 10;

// What librelp.h declares, as far as it is used here.
struct Library
{
    int (*_makeEngine)(Object*);
    int (*_destroyEngine)(Object*);
    int (*_setNotes)(Object, void (*)(char*, ...));
    int (*_setErrors)(Object, void (*)(void*, char*, char*, int));
    int (*_enableCommand)(Object, Bytes, int);
    int (*_makeClient)(Object, Object*);
    int (*_destroyClient)(Object, Object*);
    int (*_connect)(Object, int, Bytes, Bytes);
    int (*_send)(Object, Bytes, std::size_t);
    int (*_setWindow)(Object, int);
    int (*_setTimeout)(Object, unsigned);
    int (*_setConnectTimeout)(Object, int);
};

template <class Function> void find(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (!function) throw ZlError(std::string(LIBRARY) + " can't be used: it has no " + name);
}

// Stays loaded.
Library openLibrary()
{
    void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw ZlError(std::string("RELP takes the library ") + LIBRARY +
                      ", which can't be opened; Debian has it in the package librelp0");
    Library functions = {};
    find(library, "relpEngineConstruct", functions._makeEngine);
    find(library, "relpEngineDestruct", functions._destroyEngine);
    find(library, "relpEngineSetDbgprint", functions._setNotes);
    find(library, "relpEngineSetOnErr", functions._setErrors);
    find(library, "relpEngineSetEnableCmd", functions._enableCommand);
    find(library, "relpEngineCltConstruct", functions._makeClient);
    find(library, "relpEngineCltDestruct", functions._destroyClient);
    find(library, "relpCltConnect", functions._connect);
    find(library, "relpCltSendSyslog", functions._send);
    find(library, "relpCltSetWindowSize", functions._setWindow);
    find(library, "relpCltSetTimeout", functions._setTimeout);
    find(library, "relpCltSetConnTimeout", functions._setConnectTimeout);
    return functions;
}

Bytes bytesOf(const std::string& text)
{
    return reinterpret_cast<Bytes>(const_cast<char*>(text.c_str()));
}

// Of the delivery that is under way: the library's notes come without a reference to it.
struct Delivery
{
    ZlRelpAnswers _answers;
    std::string _error;
    bool _isConnected = false;
};
thread_local Delivery* theDelivery = nullptr;

// Its interface reports no single answers, but its notes do. Each session shows whether they still
// have this form, by the answer to its opening.
void takeNote(char* form, ...)
{
    if (!theDelivery || !zlIsAnswerForm(form)) return;
    va_list values;
    va_start(values, form);
    const int transaction = va_arg(values, int);
    const int code = va_arg(values, int);
    va_end(values);
    theDelivery->_answers.take(transaction, code);
}

// The first one is the cause of the others.
void takeError(void*, char*, char* text, int)
{
    if (theDelivery && theDelivery->_error.empty() && text) theDelivery->_error = text;
}

class Relp : public ZlTransport
{
public:
    Relp(std::string host, std::string port)
        : _library(openLibrary()), _host(std::move(host)), _port(std::move(port))
    {
        if (_library._makeEngine(&_engine) != OK) throw ZlError("there is not enough memory");
        _library._setNotes(_engine, &takeNote);
        _library._setErrors(_engine, &takeError);
        _library._enableCommand(_engine, bytesOf("syslog"), COMMAND_REQUIRED);
    }
    ~Relp() override
    {
        _library._destroyEngine(&_engine);
    }
    Relp(const Relp&) = delete;
    Relp& operator=(const Relp&) = delete;

    Result deliver(std::span<const std::string> messages) override
    {
        Delivery delivery;
        delivery._answers.begin(messages.size());
        theDelivery = &delivery;
        const int result = run(messages);
        theDelivery = nullptr;
        if (result == OK && !delivery._answers.isOpened())
            throw ZlError(std::string("this version of ") + LIBRARY +
                          " does not report answers, and can't be used");
        const std::size_t taken = delivery._answers.countTaken();
        if (taken == messages.size()) return {taken, ""};
        std::string cause = delivery._isConnected ? std::string() : causeOfNoConnection();
        if (!cause.empty()) return {taken, std::move(cause)};
        return {taken, reasonOf(delivery, result)};
    }

    // Each session has ended in order.
    void finish() override {}

private:
    // A session. Its window is larger than the delivery, so that its end need not wait to be sent.
    int run(std::span<const std::string> messages)
    {
        Object client = nullptr;
        if (const int result = _library._makeClient(_engine, &client); result != OK) return result;
        _library._setWindow(client, static_cast<int>(messages.size()) + 2);
        _library._setTimeout(client, TIMEOUT_SECONDS);
        _library._setConnectTimeout(client, CONNECT_SECONDS);
        int result = _library._connect(client, AF_UNSPEC, bytesOf(_port), bytesOf(_host));
        theDelivery->_isConnected = result == OK;
        for (std::size_t i = 0; i < messages.size() && result == OK; ++i)
            result = _library._send(client, bytesOf(messages[i]), messages[i].size());
        _library._destroyClient(_engine, &client);
        return result;
    }

    // The library knows no more than that it failed. Empty if it can be connected to by now.
    std::string causeOfNoConnection() const
    {
        try
        {
            const ZlSocket socket(_host, _port);
            return {};
        }
        catch (const ZlError& error)
        {
            return error.what();
        }
    }

    static std::string reasonOf(const Delivery& delivery, int result)
    {
        if (const int refusal = delivery._answers.getRefusal(); refusal != 0)
            return "the receiver refused a message with the code " + std::to_string(refusal);
        if (!delivery._error.empty()) return delivery._error;
        return "the receiver did not acknowledge all (" + std::to_string(result) + ")";
    }

    const Library _library;
    const std::string _host;
    const std::string _port;
    Object _engine = nullptr;
};

} // namespace

std::unique_ptr<ZlTransport> zlMakeRelp(const std::string& host, const std::string& port)
{
    return std::make_unique<Relp>(host, port);
}

} // namespace Zu
