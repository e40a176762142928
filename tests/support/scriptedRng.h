// Sources whose draws a test sets, sources of the library to draw from, and bitwise comparisons of
// the draws.

#ifndef ZU_TESTS_SCRIPTEDRNG_H
#define ZU_TESTS_SCRIPTEDRNG_H

#include "base/exInternalError.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnMexicanHatRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnRng.h"
#include "base/rnStdUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include "support/exceptionChecks.h"
#include "support/sameNumbers.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// A separate namespace, as headers of other tests in the same program use the same names.
namespace support
{
inline namespace shapeTests
{

template <class T>
using FloatBits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

template <class T> FloatBits<T> floatBits(T x)
{
    return std::bit_cast<FloatBits<T>>(x);
}

// A value that no draw gives; it fills the room behind the values to be written.
template <class T> constexpr T UNTOUCHED = T(-12345678);

// Room for `n` values and some more that must not change.
template <class T> std::vector<T> roomFor(unsigned int n)
{
    return std::vector<T>(n + 3U, UNTOUCHED<T>);
}

// The first `n` of them, if the others are unchanged.
template <class T> std::vector<T> written(std::vector<T> room, unsigned int n)
{
    for (std::size_t i = n; i < room.size(); ++i)
        EXPECT_TRUE(same(room[i], UNTOUCHED<T>)) << "behind the end, n = " << n;
    room.resize(n);
    return room;
}

// The reason of the failed assertion in `raise`.
template <class Raise> std::string failureOf(Raise raise)
{
    return readBy<Zu::ExInternalError>(raise, [](const Zu::ExInternalError& error)
                                       { return std::string(error.getReason()); });
}

// Plays back a list of values, one for each operator(); one draw too many raises. No other
// operation may draw from it.
template <class T> class ScriptedRng : public Zu::RnRng<T>
{
public:
    explicit ScriptedRng(std::vector<T> script) : _script(std::move(script)) {}

    virtual ~ScriptedRng() = default;

    T operator()() override
    {
        ++_nDraws;
        return next();
    }

    void getSample(T& value) override
    {
        ADD_FAILURE() << "getSample() of a source that is not known";
        value = next();
    }

    void getSequence(unsigned int n, T* values) override
    {
        ADD_FAILURE() << "getSequence() of a source that is not known";
        for (unsigned int i = 0; i < n; ++i) values[i] = next();
    }

    T getEfficientWidth() const override
    {
        return T(3.25);
    }

    T getEfficientMin() const override
    {
        return T(-1.125);
    }

    T getEfficientMax() const override
    {
        return T(2.125);
    }

    T getEfficientFraction() const override
    {
        return T(0.7);
    }

    T getPdf(T x) const override
    {
        return x * T(0.3) + T(0.1);
    }

    void restart() override
    {
        ++_nRestarts;
        _next = 0;
    }

    const char* getName() const override
    {
        return "Scripted";
    }

    unsigned int nDraws() const
    {
        return _nDraws;
    }

    unsigned int nRestarts() const
    {
        return _nRestarts;
    }

    std::size_t nLeft() const
    {
        return _script.size() - _next;
    }

protected:
    T next()
    {
        if (_next == _script.size()) throw std::out_of_range("the script has ended");
        return _script[_next++];
    }

private:
    std::vector<T> _script;
    std::size_t _next = 0;
    unsigned int _nDraws = 0;
    unsigned int _nRestarts = 0;
};

// Overrides the draw of a source of the library; its other operations ignore the override.
template <class T> class MirroredRng : public Zu::RnLecuyerUniformRng<T>
{
public:
    explicit MirroredRng(unsigned int seed) : Zu::RnLecuyerUniformRng<T>(0, seed) {}

    T operator()() override
    {
        ++_nDraws;
        return T(1) - Zu::RnLecuyerUniformRng<T>::operator()();
    }

    unsigned int nDraws() const
    {
        return _nDraws;
    }

private:
    unsigned int _nDraws = 0;
};

// Sources of the library; all objects of a kind begin with the same state.
template <class T> struct LecuyerSource
{
    static constexpr const char* NAME = "combined";

    LecuyerSource()
    {
        for (int i = 0; i < 17; ++i) _rng.eval();
    }

    Zu::RnLecuyerUniformRng<T> _rng{7, 4711};
};

template <class T> struct NumRecSource
{
    static constexpr const char* NAME = "shuffling";

    Zu::RnNumRecUniformRng<T> _rng{271828};
};

template <class T> struct VanDerCorputSource
{
    static constexpr const char* NAME = "radical inverse, base 2";

    Zu::RnVanDerCorputRng<T> _rng;
};

template <class T> struct TernarySource
{
    static constexpr const char* NAME = "radical inverse, base 3";

    TernarySource()
    {
        _rng.restart(6559);
    }

    Zu::RnVanDerCorputRng<T> _rng{3};
};

// The runtime library has only one state, which is reseeded for each object.
template <class T> struct StdSource
{
    static constexpr const char* NAME = "runtime library";

    Zu::RnStdUniformRng<T> _rng{31415};
};

template <class T> struct HatSource
{
    static constexpr const char* NAME = "triangle over 0 to 1";

    Zu::RnLecuyerUniformRng<T> _uniform{1, 1234567};
    Zu::RnMexicanHatRng<T> _rng{&_uniform, T(0.5), T(1)};
};

template <class T> struct MirroredSource
{
    static constexpr const char* NAME = "derived from a source of the library";

    MirroredRng<T> _rng{998877};
};

// Calls `check` once for each kind.
template <class T, class Check> void forEachSource(Check check)
{
    check.template operator()<LecuyerSource<T>>();
    check.template operator()<NumRecSource<T>>();
    check.template operator()<VanDerCorputSource<T>>();
    check.template operator()<TernarySource<T>>();
    check.template operator()<StdSource<T>>();
    check.template operator()<HatSource<T>>();
    check.template operator()<MirroredSource<T>>();
}

// The next `n` draws of a source.
template <class T> std::vector<T> drawsOf(Zu::RnRng<T>& source, unsigned int n)
{
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i) values.push_back(source());
    return values;
}

} // namespace shapeTests
} // namespace support

#endif
