#include "streamModel.h"

namespace fuzz
{

// One place stays free, and a terminator at the writer's position occupies one.
std::size_t StreamModel::room() const
{
    const std::size_t ahead = _size - 1 - (_written - _read);
    return ahead == 0 ? 0 : ahead - (_isOnTerminator ? 1 : 0);
}

std::size_t StreamModel::nextSize() const
{
    return _strings.empty() ? 0 : _strings.front().size();
}

void StreamModel::insert(const std::string& text)
{
    if (room() == 0)
    {
        _hasOverflowed = true;
        _isClosed = true;
        return;
    }
    if (_isOnTerminator) ++_written;
    _isOnTerminator = false;
    _isInserted = true;
    const bool fits = text.size() <= room();
    if (!fits) _hasOverflowed = true;
    const std::string stored = fits ? text : "#";
    _current += stored;
    _written += stored.size();
}

void StreamModel::finish()
{
    _isClosed = true;
    if (_isOnTerminator)
    {
        // The string there is already closed: the writer steps past its terminator if there is room
        // by now.
        if (_written - _read == _size - 1) return;
        ++_written;
        _isOnTerminator = false;
        return;
    }
    push();
}

void StreamModel::push()
{
    // An empty string at the very beginning goes behind a first terminator.
    if (_isFresh)
    {
        _firstIsEmpty = _current.empty();
        if (_firstIsEmpty) ++_written;
        _isFresh = false;
    }
    _strings.push_back(_current);
    _current.clear();
    ++_finished;
    _isOnTerminator = _written - _read == _size - 1;
    if (!_isOnTerminator) ++_written;
}

std::string StreamModel::take()
{
    if (_strings.empty()) return "";
    const std::string text = _strings.front();
    _strings.pop_front();
    // The reader skips the terminator that it rests on, and stops at the string's own.
    const bool rests = !_readerIsFresh || _firstIsEmpty;
    _read += text.size() + (rests ? 1 : 0);
    _readerIsFresh = false;
    _hasOverflowed = false;
    return text;
}

StreamModel::Mark StreamModel::mark() const
{
    return {_written, _finished, _isOnTerminator, _isFresh};
}

void StreamModel::resetTo(const Mark& mark)
{
    for (; _finished > mark._finished; --_finished) _strings.pop_back();
    _written = mark._written;
    _isOnTerminator = mark._isOnTerminator;
    _isFresh = mark._isFresh;
    _current.clear();
}

void StreamModel::keepFirst(const Mark& mark)
{
    const std::string first = _strings[_strings.size() - (_finished - mark._finished)];
    resetTo(mark);
    if (_isOnTerminator) ++_written;
    _isOnTerminator = false;
    _current = first;
    _written += first.size();
    push();
}

} // namespace fuzz
