// A model of a ring of text, with counts that never wrap and whole strings.

#ifndef ZU_FUZZ_STREAMMODEL_H
#define ZU_FUZZ_STREAMMODEL_H

#include <cstddef>
#include <deque>
#include <string>

namespace fuzz
{

class StreamModel
{
public:
    // A state that the writer can return to.
    struct Mark
    {
        std::size_t _written;
        std::size_t _finished;
        bool _isOnTerminator;
        bool _isFresh;
    };

    explicit StreamModel(std::size_t size) : _size(size) {}

    void insert(const std::string& text);
    void finish();

    // Takes the next finished string; returns the empty one if there is none.
    std::string take();

    std::size_t room() const;
    std::size_t nextSize() const;

    bool hasNext() const
    {
        return !_strings.empty();
    }

    void resetFlags()
    {
        _isInserted = _isClosed = false;
    }

    bool isInserted() const
    {
        return _isInserted;
    }

    bool isClosed() const
    {
        return _isClosed;
    }

    bool hasOverflowed() const
    {
        return _hasOverflowed;
    }

    Mark mark() const;

    // Whether a string has been finished since.
    bool hasFinishedSince(const Mark& mark) const
    {
        return _finished > mark._finished;
    }

    void resetTo(const Mark& mark);

    // Forgets everything behind the first string since the mark, which must be finished.
    void keepFirst(const Mark& mark);

private:
    void push();

    std::size_t _size;
    // The places that the writer and the reader have passed, and the strings finished so far.
    std::size_t _written = 0;
    std::size_t _read = 0;
    std::size_t _finished = 0;
    std::string _current;
    std::deque<std::string> _strings;
    // The writer is at the terminator of the last string.
    bool _isOnTerminator = false;
    // Nothing has been finished yet: there is no terminator for the reader to rest on.
    bool _isFresh = true;
    bool _readerIsFresh = true;
    bool _firstIsEmpty = false;
    bool _isInserted = false;
    bool _isClosed = false;
    bool _hasOverflowed = false;
};

} // namespace fuzz

#endif
