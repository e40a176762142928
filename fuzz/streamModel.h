// What a ring of text holds, told by counts that never wrap and by whole strings.

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
    // What a writer goes back to.
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

    // The next finished string, which is taken; the empty one if there is none.
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

    // Whether a string was finished since.
    bool hasFinishedSince(const Mark& mark) const
    {
        return _finished > mark._finished;
    }

    void resetTo(const Mark& mark);

    // Forgets what stands behind the first string since the mark, which must be finished.
    void keepFirst(const Mark& mark);

private:
    void push();

    std::size_t _size;
    // Places that the writer and the reader have gone, and strings that were ever finished.
    std::size_t _written = 0;
    std::size_t _read = 0;
    std::size_t _finished = 0;
    std::string _current;
    std::deque<std::string> _strings;
    // The writer stands on the terminator of the last string.
    bool _isOnTerminator = false;
    // Nothing was ever finished: there is no terminator that the reader rests on.
    bool _isFresh = true;
    bool _readerIsFresh = true;
    bool _firstIsEmpty = false;
    bool _isInserted = false;
    bool _isClosed = false;
    bool _hasOverflowed = false;
};

} // namespace fuzz

#endif
