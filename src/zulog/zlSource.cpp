#include "zulog/zlSource.h"

#include "zulog/zlFile.h"
#include "zulog/zlFormat.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>
#include <zlib.h>

namespace Zu
{

namespace
{

constexpr unsigned char MAGIC[] = {0x1f, 0x8b};

// A file, whose first bytes were read to see what it is.
class PlainSource : public ZlSource
{
public:
    PlainSource(std::unique_ptr<ZlPooledFile> file, std::string first)
        : _file(std::move(file)), _first(std::move(first))
    {
    }

    std::size_t read(char* place, std::size_t size) override
    {
        if (_first.empty()) return _file->read(place, size);
        const std::size_t count = std::min(size, _first.size());
        _first.copy(place, count);
        _first.erase(0, count);
        return count;
    }

    const std::string& getName() const
    {
        return _file->getName();
    }

private:
    std::unique_ptr<ZlPooledFile> _file;
    std::string _first;
};

class GzipSource : public ZlSource
{
public:
    explicit GzipSource(std::unique_ptr<PlainSource> source)
        : _source(std::move(source)), _buffer(BUFFER_SIZE)
    {
        // The window of gzip, and its head.
        constexpr int WINDOW = 15 + 16;
        if (inflateInit2(&_stream, WINDOW) != Z_OK) fail("there is not enough memory");
    }
    ~GzipSource() override
    {
        inflateEnd(&_stream);
    }
    GzipSource(const GzipSource&) = delete;
    GzipSource& operator=(const GzipSource&) = delete;

    std::size_t read(char* place, std::size_t size) override
    {
        _stream.next_out = reinterpret_cast<Bytef*>(place);
        _stream.avail_out = static_cast<uInt>(std::min<std::size_t>(size, 1U << 30));
        const uInt wanted = _stream.avail_out;
        while (_stream.avail_out == wanted && !_fault)
        {
            if (_stream.avail_in == 0 && !fill()) return 0;
            step();
        }
        // What was decoded in front of the fault counts.
        if (_stream.avail_out == wanted) fail(_fault);
        return wanted - _stream.avail_out;
    }

private:
    static constexpr std::size_t BUFFER_SIZE = std::size_t{4} * 1024;

    // False at the end of the file, which must be the end of a member.
    bool fill()
    {
        const std::size_t count = _source->read(_buffer.data(), _buffer.size());
        if (count == 0 && _isInMember) fail("the file ends early");
        _stream.next_in = reinterpret_cast<Bytef*>(_buffer.data());
        _stream.avail_in = static_cast<uInt>(count);
        return count > 0;
    }

    void step()
    {
        _isInMember = true;
        const int result = inflate(&_stream, Z_NO_FLUSH);
        if (result == Z_STREAM_END)
        {
            _isInMember = false;
            inflateReset(&_stream);
        }
        else if (result != Z_OK && result != Z_BUF_ERROR)
            _fault = _stream.msg ? _stream.msg : "the file is damaged";
    }

    [[noreturn]] void fail(const char* reason) const
    {
        std::string text = "\"";
        zlAppendPrintable(text, _source->getName(), false);
        throw ZlError(text + "\" can't be uncompressed: " + reason);
    }

    std::unique_ptr<PlainSource> _source;
    std::vector<char> _buffer;
    z_stream _stream = {};
    bool _isInMember = false;
    // Why nothing more can be decoded.
    const char* _fault = nullptr;
};

} // namespace

std::unique_ptr<ZlSource> zlOpenSource(const std::string& name, std::shared_ptr<ZlOpenFiles> pool)
{
    auto file = std::make_unique<ZlPooledFile>(name, std::move(pool));
    std::string first(sizeof MAGIC, '\0');
    std::size_t count = 0;
    while (count < first.size())
    {
        const std::size_t more = file->read(first.data() + count, first.size() - count);
        if (more == 0) break;
        count += more;
    }
    first.resize(count);
    const bool isCompressed =
        count == sizeof MAGIC && std::memcmp(first.data(), MAGIC, sizeof MAGIC) == 0;
    auto plain = std::make_unique<PlainSource>(std::move(file), std::move(first));
    if (isCompressed) return std::make_unique<GzipSource>(std::move(plain));
    return plain;
}

} // namespace Zu
