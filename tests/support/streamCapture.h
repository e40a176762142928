// Captures what a program writes to one of its standard streams.

#ifndef ZU_TESTS_STREAMCAPTURE_H
#define ZU_TESTS_STREAMCAPTURE_H

#include <cstddef>
#include <iostream>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace support
{

// Keeps each written piece separately, with "|" after each flush.
class PieceRecorder : public std::streambuf
{
public:
    const std::vector<std::string>& pieces() const
    {
        return _pieces;
    }

protected:
    std::streamsize xsputn(const char* text, std::streamsize length) override
    {
        _pieces.emplace_back(text, static_cast<std::size_t>(length));
        return length;
    }

    int_type overflow(int_type character) override
    {
        _pieces.emplace_back(1, traits_type::to_char_type(character));
        return traits_type::not_eof(character);
    }

    int sync() override
    {
        _pieces.emplace_back("|");
        return 0;
    }

private:
    std::vector<std::string> _pieces;
};

// Redirects a stream until the scope ends.
class BufferGuard
{
public:
    BufferGuard(std::ostream& stream, std::streambuf& buffer)
        : _stream(stream), _former(stream.rdbuf(&buffer))
    {
    }

    BufferGuard(const BufferGuard&) = delete;
    BufferGuard& operator=(const BufferGuard&) = delete;

    ~BufferGuard()
    {
        _stream.rdbuf(_former);
    }

private:
    std::ostream& _stream;
    std::streambuf* _former;
};

// Keeps what is written to a stream while it lives.
class StreamCapture
{
public:
    explicit StreamCapture(std::ostream& stream) : _guard(stream, _kept) {}

    std::string text() const
    {
        return _kept.str();
    }

private:
    std::stringbuf _kept;
    BufferGuard _guard;
};

// What an act writes to std::cout.
template <class Act> std::string coutOf(Act act)
{
    const StreamCapture capture(std::cout);
    act();
    return capture.text();
}

} // namespace support

#endif
