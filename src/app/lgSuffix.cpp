#include "app/lgSuffix.h"

#include "app/apText.h"
#include "app/threadSlot.h"
#include "base/lgQueue.h"
#include "base/lgStream.h"

#include <algorithm>
#include <atomic>
#include <memory>

namespace Zu::LgSuffix
{

namespace
{

constinit std::atomic<bool> arePlacesShown{false};

// Of one thread.
struct Fields
{
    // "thread=worker", or empty.
    std::string _thread;
    // "request=4711, user=ann".
    std::string _others;
    // Both, as they follow a text: " {thread=worker, request=4711}", or empty.
    std::string _shown;

    void show()
    {
        _shown.clear();
        if (_thread.empty() && _others.empty()) return;
        _shown.append(" {").append(_thread);
        if (!_thread.empty() && !_others.empty()) _shown.append(", ");
        _shown.append(_others).append("}");
    }
};

bool isPlain(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') ||
           std::string_view("_.:/@+-").find(character) != std::string_view::npos;
}

void appendQuoted(std::string& text, std::string_view part)
{
    if (!part.empty() && std::all_of(part.begin(), part.end(), isPlain))
    {
        text.append(part);
        return;
    }
    text += '"';
    for (const char character : part)
    {
        const bool isControl = static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
        if (character == '"' || character == '\\') text += '\\';
        text += isControl ? '?' : character;
    }
    text += '"';
}

Fields* fieldsOfThread()
{
    return static_cast<Fields*>(ThreadSlot::get(ThreadSlot::Context));
}

void insert(LgStream& stream, const char* file, int line)
{
    if (arePlacesShown.load(std::memory_order_relaxed))
        stream << " [" << apLastPart(file) << ':' << line << ']';
    const Fields* const fields = fieldsOfThread();
    if (fields && !fields->_shown.empty()) stream << fields->_shown;
}

Fields& makeFields()
{
    static const bool isPrepared = []
    {
        ThreadSlot::setThreadEnded(ThreadSlot::Context,
                                   [](void* fields) { delete static_cast<Fields*>(fields); });
        LgQueue::setSuffixFunction(&insert);
        return true;
    }();
    static_cast<void>(isPrepared);
    if (Fields* const fields = fieldsOfThread()) return *fields;
    auto fields = std::make_unique<Fields>();
    ThreadSlot::set(ThreadSlot::Context, fields.get());
    return *fields.release();
}

} // namespace

void showPlaces(bool isShown)
{
    arePlacesShown.store(isShown, std::memory_order_relaxed);
    if (isShown) LgQueue::setSuffixFunction(&insert);
}

std::size_t push(std::string_view name, std::string_view value)
{
    Fields& fields = makeFields();
    const std::size_t before = fields._others.size();
    const std::string added = (before > 0 ? ", " : "") + field(name, value);
    // Afterwards nothing raises.
    fields._shown.reserve(fields._thread.size() + before + added.size() + 5);
    fields._others += added;
    fields.show();
    return before;
}

void pop(std::size_t before) noexcept
{
    Fields* const fields = fieldsOfThread();
    if (!fields || fields->_others.size() <= before) return;
    fields->_others.resize(before);
    fields->show();
}

void nameThread(std::string_view name)
{
    Fields& fields = makeFields();
    std::string thread = name.empty() ? std::string() : field("thread", name);
    fields._shown.reserve(thread.size() + fields._others.size() + 5);
    fields._thread = std::move(thread);
    fields.show();
}

std::string beginningOf(std::string_view text, std::size_t most)
{
    text = text.substr(0, text.find('\0'));
    std::size_t length = std::min(text.size(), most);
    const auto isContinuation = [&](std::size_t at)
    { return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0U) == 0x80; };
    while (length > 0 && isContinuation(length)) --length;
    return std::string(text.substr(0, length));
}

std::string field(std::string_view name, std::string_view value)
{
    std::string text;
    appendQuoted(text, name);
    text += '=';
    appendQuoted(text, value);
    return text;
}

} // namespace Zu::LgSuffix
