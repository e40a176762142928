// The platform's sine, cosine, logarithm and arc cosine, on which directions and Gaussian values
// rest. They may differ between platforms in their last bits; by how much is measured here.

#include "base/rnDirectionalRng.h"

#include "base/rnGaussianRng.h"

#include "support/scriptedRng.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <type_traits>
#include <vector>

namespace
{

using support::ScriptedRng;
using Zu::RnBiRng;
using Zu::RnGaussianRng;

template <class T> class RnDirectionalRngMath : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnDirectionalRngMath, Precisions);

template <class T> using Limits = std::numeric_limits<T>;

constexpr long double PI = std::numbers::pi_v<long double>;

// The step from the magnitude of `x` to the next one, in the precision of T.
template <class T> long double unitInTheLastPlace(long double x)
{
    const T magnitude = std::abs(static_cast<T>(x));
    return static_cast<long double>(std::nextafter(magnitude, Limits<T>::infinity())) -
           static_cast<long double>(magnitude);
}

template <class T> long double errorInUnits(T actual, long double exact)
{
    return std::abs(static_cast<long double>(actual) - exact) / unitInTheLastPlace<T>(exact);
}

// The allowed error of each function, in units in the last place: one unit more than the largest
// errors over both platforms, which were below 0.6 for sine and cosine, 0.8 for the logarithm and
// 0.9 for the arc cosine. The root is exact to its rounding everywhere.
constexpr long double SINE_UNITS = 1.6L;
constexpr long double LOGARITHM_UNITS = 1.8L;
constexpr long double ARC_UNITS = 1.9L;
constexpr long double ROOT_UNITS = 0.5L;

// The sine and cosine of long double lose their extra precision where the result is close to 0;
// there are tables for those places below.
constexpr long double NEAR_ZERO = 1.0L / 64;

constexpr int N_STEPS = 8192;

// The largest error of `function` over a grid from `min` to `max`, ignoring results below `least`.
template <class T, class Function, class Exact>
long double largestError(Function function, Exact exactFunction, long double min, long double max,
                         long double least = 0)
{
    long double largest = 0;
    for (int i = 0; i <= N_STEPS; ++i)
    {
        const volatile T x = static_cast<T>(min + (max - min) * i / N_STEPS);
        const long double exact = exactFunction(static_cast<long double>(x));
        if (exact == 0 || std::abs(exact) < least) continue;
        const long double error = errorInUnits<T>(function(T(x)), exact);
        if (std::isnan(error)) return error;
        largest = std::max(largest, error);
    }
    return largest;
}

// With the same function of long double as the exact one.
template <class T, class Function>
long double largestErrorToLong(Function function, long double min, long double max,
                               long double least = 0)
{
    return largestError<T>(function, function, min, max, least);
}

TYPED_TEST(RnDirectionalRngMath, SineAndCosineStayWithinTheirBoundOverOneTurn)
{
    using T = TypeParam;
    EXPECT_LE(largestErrorToLong<T>([](auto x) { return std::sin(x); }, 0, 2 * PI, NEAR_ZERO),
              SINE_UNITS);
    EXPECT_LE(largestErrorToLong<T>([](auto x) { return std::cos(x); }, 0, 2 * PI, NEAR_ZERO),
              SINE_UNITS);
}

TYPED_TEST(RnDirectionalRngMath, TheLogarithmStaysWithinItsBoundBelowOne)
{
    using T = TypeParam;
    const auto logarithm = [](auto x) { return std::log(x); };
    EXPECT_LE(largestErrorToLong<T>(logarithm, 1.0L / N_STEPS, 1), LOGARITHM_UNITS);
    EXPECT_LE(largestErrorToLong<T>(logarithm, 1e-30L, 1e-27L), LOGARITHM_UNITS);
}

TYPED_TEST(RnDirectionalRngMath, TheArcCosineStaysWithinItsBound)
{
    using T = TypeParam;
    const auto arcCosine = [](T x) { return std::acos(x); };
    // One platform's function of long double is worse near 1 than its function of double.
    const auto exact = [](long double x)
    { return 2 * std::atan2(std::sqrt(1 - x), std::sqrt(1 + x)); };
    EXPECT_LE(largestError<T>(arcCosine, exact, -1, 1), ARC_UNITS);
    EXPECT_LE(largestError<T>(arcCosine, exact, 0.99L, 1), ARC_UNITS);
    EXPECT_LE(largestError<T>(arcCosine, exact, 0.999999L, 1), ARC_UNITS);
    EXPECT_LE(largestError<T>(arcCosine, exact, -1, -0.99L), ARC_UNITS);
}

TYPED_TEST(RnDirectionalRngMath, TheRootIsRoundedCorrectly)
{
    using T = TypeParam;
    // The last bits of the reference may make a little more of a half.
    EXPECT_LE(largestErrorToLong<T>([](auto x) { return std::sqrt(x); }, 0, 2),
              ROOT_UNITS + 0.001L);
    EXPECT_LE(largestErrorToLong<T>([](auto x) { return std::sqrt(x); }, 1, 1e6L),
              ROOT_UNITS + 0.001L);
}

// Near its zeros a function may be far off in units of its own last place, as the platform has a
// limited number of bits of pi; the absolute error stays small.
struct GoldenZero
{
    bool _isCosine;
    double _argument;
    double _value;
};

// Computed with 50 digits: the numbers next to each quarter of a turn.
const GoldenZero FLOAT_ZEROS[] = {
    {true, 0x1.921fb4p+0, 0x1.4442d18469893p-24},   {true, 0x1.921fb6p+0, -0x1.777a5cf72ceccp-25},
    {true, 0x1.921fb8p+0, -0x1.5dde973dcb398p-23},  {false, 0x1.921fb4p+1, 0x1.4442d18469883p-23},
    {false, 0x1.921fb6p+1, -0x1.777a5cf72cec6p-24}, {false, 0x1.921fb8p+1, -0x1.5dde973dcb347p-22},
    {true, 0x1.2d97c6p+2, -0x1.f3321d234f136p-22},  {true, 0x1.2d97c8p+2, 0x1.99bc5b961b1adp-27},
    {true, 0x1.2d97cap+2, 0x1.0666f16e5860fp-21},   {false, 0x1.921fb4p+2, -0x1.4442d18469842p-22},
    {false, 0x1.921fb6p+2, 0x1.777a5cf72ceadp-23},  {false, 0x1.921fb8p+2, 0x1.5dde973dcb2p-21},
};

const GoldenZero DOUBLE_ZEROS[] = {
    {true, 0x1.921fb54442d17p+0, 0x1.469898cc51702p-52},
    {true, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54},
    {true, 0x1.921fb54442d19p+0, -0x1.72cece675d1fdp-53},
    {false, 0x1.921fb54442d17p+1, 0x1.469898cc51702p-51},
    {false, 0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},
    {false, 0x1.921fb54442d19p+1, -0x1.72cece675d1fdp-52},
    {true, 0x1.2d97c7f3321d1p+2, -0x1.34f272993d141p-50},
    {true, 0x1.2d97c7f3321d2p+2, -0x1.a79394c9e8a0ap-53},
    {true, 0x1.2d97c7f3321d3p+2, 0x1.961b1acd85d7dp-51},
    {false, 0x1.921fb54442d17p+2, -0x1.469898cc51702p-50},
    {false, 0x1.921fb54442d18p+2, -0x1.1a62633145c07p-52},
    {false, 0x1.921fb54442d19p+2, 0x1.72cece675d1fdp-51},
};

template <class T> const auto& zeros()
{
    if constexpr (std::is_same_v<T, float>)
        return FLOAT_ZEROS;
    else
        return DOUBLE_ZEROS;
}

TYPED_TEST(RnDirectionalRngMath, NearTheirZerosSineAndCosineHaveTinyErrors)
{
    using T = TypeParam;
    for (const GoldenZero& row : zeros<T>())
    {
        const volatile T argument = static_cast<T>(row._argument);
        const T actual = row._isCosine ? std::cos(T(argument)) : std::sin(T(argument));
        const auto exact = static_cast<long double>(row._value);
        const long double allowed = std::ldexp(1.0L, -64) + unitInTheLastPlace<T>(exact);
        EXPECT_LE(std::abs(static_cast<long double>(actual) - exact), allowed)
            << row._argument << ": " << actual;
    }
}

// A direction of the pair (u, v), for pairs that both precisions hold exactly.
struct GoldenDirection
{
    double _u;
    double _v;
    double _x;
    double _y;
    double _z;
    double _theta;
    double _phi;
};

// Computed with 50 digits.
const GoldenDirection SPHERE[] = {
    {0x1.4p-4, 0x1.8p-5, 0x1.06f9d0aad3905p-1, 0x1.3f1765bb39536p-3, -0x1.bp-1,
     0x1.499a8730b6515p+1, 0x1.2d97c7f3321d2p-2},
    {0x1.6p-3, 0x1.3p-2, -0x1.c094126c2ce0ap-3, 0x1.71b0f2ecf3269p-1, -0x1.5p-1,
     0x1.24b06f831478fp+1, 0x1.dd85a7410f58dp+0},
    {0x1.4p-2, 0x1.5p-1, -0x1.07b1ab8ae6c75p-1, -0x1.8aa55ff7424dep-1, -0x1.8p-2,
     0x1.f48788fb685cdp+0, 0x1.07e4cef4cbd98p+2},
    {0x1.ap-2, 0x1.dp-1, 0x1.a2298a053ad1cp-1, -0x1.1768371ae2b1fp-1, -0x1.8p-3,
     0x1.c268df1e5fc38p+0, 0x1.6c6cbc45dc8dep+2},
    {0x1.18p-1, 0x1.6p-3, 0x1.e0959421e2ddcp-2, 0x1.c18e1381c04fdp-1, 0x1.8p-4,
     0x1.7a16ac1b2eec5p+0, 0x1.1475cc9eedf01p+0},
    {0x1.5p-1, 0x1.bp-2, -0x1.acedeb0d13249p-1, 0x1.ca88f8dc19bc7p-2, 0x1.4p-2,
     0x1.40c2d055ff46ep+0, 0x1.534ac0f19860cp+1},
    {0x1.98p-1, 0x1.28p-1, -0x1.6b559d960b542p-1, -0x1.8469a06b2a62bp-2, 0x1.3p-1,
     0x1.dec3776f8751ap-1, 0x1.d0f4a996ed424p+1},
    {0x1.d8p-1, 0x1.a8p-1, 0x1.03169151a4f82p-2, -0x1.e4b847c09a19fp-2, 0x1.bp-1,
     0x1.2214b84e3200cp-1, 0x1.4d02421c87558p+2},
    {0x1.78c29ap-1, 0x1.1e5678p-3, 0x1.202d1ab3d5b9cp-1, 0x1.5b83beb17f345p-1, 0x1.e30a68p-2,
     0x1.145dd2249fadap+0, 0x1.c1c73fa8048c8p-1},
    {0x1.312d04p-2, 0x1.4fb186p-1, -0x1.05ac8bc28d6aap-1, -0x1.84738e394da46p-1, -0x1.9da5f8p-2,
     0x1.fc93d619a48cfp+0, 0x1.07a72c4ea0421p+2},
};

const GoldenDirection HEMISPHERE[] = {
    {0x1.4p-4, 0x1.8p-5, 0x1.e874b8c0c6333p-1, 0x1.2857cda22604fp-2, 0x1.4p-4, 0x1.7e1a7c4201ea8p+0,
     0x1.2d97c7f3321d2p-2},
    {0x1.6p-3, 0x1.3p-2, -0x1.24d3fa751ad16p-2, 0x1.e2a98f2140dd8p-1, 0x1.6p-3,
     0x1.65e77fd098172p+0, 0x1.dd85a7410f58dp+0},
    {0x1.4p-2, 0x1.5p-1, -0x1.0e34ba4fe6ecbp-1, -0x1.94644d928c4e7p-1, 0x1.4p-2,
     0x1.40c2d055ff46ep+0, 0x1.07e4cef4cbd98p+2},
    {0x1.ap-2, 0x1.dp-1, 0x1.84fff574f049dp-1, -0x1.03ebdfbbd7ecep-1, 0x1.ap-2,
     0x1.2706f59416274p+0, 0x1.6c6cbc45dc8dep+2},
    {0x1.18p-1, 0x1.6p-3, 0x1.9421c54d4dfa1p-2, 0x1.7a09f005cd0b7p-1, 0x1.18p-1,
     0x1.fbfd9c80230bcp-1, 0x1.1475cc9eedf01p+0},
    {0x1.5p-1, 0x1.bp-2, -0x1.54b5991af2db1p-1, 0x1.6c39d4b77f789p-2, 0x1.5p-1,
     0x1.b5bd1704b9625p-1, 0x1.534ac0f19860cp+1},
    {0x1.98p-1, 0x1.28p-1, -0x1.10cc296ef5a2bp-1, -0x1.23a069931e1e3p-2, 0x1.98p-1,
     0x1.4c214b0126fa4p-1, 0x1.d0f4a996ed424p+1},
    {0x1.d8p-1, 0x1.a8p-1, 0x1.761699d9b15fdp-3, -0x1.5def5ab5d5912p-2, 0x1.d8p-1,
     0x1.97744681eca44p-2, 0x1.4d02421c87558p+2},
    {0x1.78c29ap-1, 0x1.1e5678p-3, 0x1.ba9b4ac8e426dp-2, 0x1.0adf36d6492abp-1, 0x1.78c29ap-1,
     0x1.7cdb5686d4801p-1, 0x1.c1c73fa8048c8p-1},
    {0x1.312d04p-2, 0x1.4fb186p-1, -0x1.110d886648e55p-1, -0x1.9557d7fa2f26bp-1, 0x1.312d04p-2,
     0x1.44a7209c229f5p+0, 0x1.07a72c4ea0421p+2},
};

const GoldenDirection COSINE[] = {
    {0x1.4p-4, 0x1.8p-5, 0x1.d66cec887cc2bp-1, 0x1.1d676dec3beffp-2, 0x1.1e3779b97f4a8p-2,
     0x1.499a8730b6515p+0, 0x1.2d97c7f3321d2p-2},
    {0x1.6p-3, 0x1.3p-2, -0x1.0e80c1c5fc266p-2, 0x1.bddd47700fa98p-1, 0x1.a887293fd6f34p-2,
     0x1.24b06f831478fp+0, 0x1.dd85a7410f58dp+0},
    {0x1.4p-2, 0x1.5p-1, -0x1.d7b5d051bb9c6p-2, -0x1.60fb6b832ea2ap-1, 0x1.1e3779b97f4a8p-1,
     0x1.f48788fb685cdp-1, 0x1.07e4cef4cbd98p+2},
    {0x1.ap-2, 0x1.dp-1, 0x1.4808914a473c7p-1, -0x1.b65eb270a9016p-2, 0x1.465655f122ff6p-1,
     0x1.c268df1e5fc38p-1, 0x1.6c6cbc45dc8dep+2},
    {0x1.18p-1, 0x1.6p-3, 0x1.44ef2d6f29497p-2, 0x1.2ff463bab0789p-1, 0x1.7aa10d193c22dp-1,
     0x1.7a16ac1b2eec5p-1, 0x1.1475cc9eedf01p+0},
    {0x1.5p-1, 0x1.bp-2, -0x1.08bdaf1f9c7f8p-1, 0x1.1b0393e5dccb7p-2, 0x1.9ec474a261264p-1,
     0x1.40c2d055ff46ep-1, 0x1.534ac0f19860cp+1},
    {0x1.98p-1, 0x1.28p-1, -0x1.9704173ad96f4p-2, -0x1.b31bf10fd7813p-3, 0x1.c90d29d2d43cep-1,
     0x1.dec3776f8751ap-2, 0x1.d0f4a996ed424p+1},
    {0x1.d8p-1, 0x1.a8p-1, 0x1.0dd7de6fd1b5cp-3, -0x1.f8d75837f4c62p-3, 0x1.eb97e455b9edbp-1,
     0x1.2214b84e3200cp-2, 0x1.4d02421c87558p+2},
    {0x1.78c29ap-1, 0x1.1e5678p-3, 0x1.4ff06a76a6545p-2, 0x1.951cc91e0bcf7p-2, 0x1.b73487a5355c5p-1,
     0x1.145dd2249fadap-1, 0x1.c1c73fa8048c8p-1},
    {0x1.312d04p-2, 0x1.4fb186p-1, -0x1.df54ba4efb5c4p-2, -0x1.63c7b10211cdcp-1,
     0x1.17822eb416498p-1, 0x1.fc93d619a48cfp-1, 0x1.07a72c4ea0421p+2},
};

struct GoldenPair
{
    double _u;
    double _v;
    double _first;
    double _second;
};

// Gaussian values of two uniform ones, computed with 50 digits.
const GoldenPair PAIRS[] = {
    {0x1.8p-1, 0x1.8p-2, 0x1.5d3c33f332f3dp+0, -0x1.5d3c33f332f3dp-1},
    {0x1p-2, 0x1.4p-1, -0x1.5d3c33f332f3dp+0, 0x1.5d3c33f332f3dp-1},
    {0x1.2p-1, 0x1.fp-2, 0x1.63844f42781bap+1, -0x1.63844f42781bap-1},
    {0x1.dp-1, 0x1.ap-2, 0x1.a94fbe4831e95p-1, -0x1.889860e02e127p-3},
    {0x1.4p-3, 0x1.ap-3, -0x1.e069277886c78p-2, -0x1.9ee6738b00096p-2},
    {0x1.04p-1, 0x1.ap-1, 0x1.18a0af47bd3c6p-5, 0x1.5ec8db19ac8b7p+0},
    {0x1p-5, 0x1.cp-2, -0x1.df397fd0e7159p-2, -0x1.ff2c4412078e8p-5},
    {0x1.6p-1, 0x1.ep-1, 0x1.65f688e67065bp-3, 0x1.a19f9fb783214p-2},
    {0x1.12a882p-1, 0x1.d32ec4p-2, 0x1.e2de884173aabp+0, -0x1.21f6ee8370d88p+1},
    {0x1.000004p-2, 0x1.6e3602p-1, -0x1.f462c4774fe86p-1, 0x1.aed8090e56378p-1},
};

// One unit more than the largest errors in units in the last place, which were 6.2, 3 and 1: phi
// alone brings one of a number that is much larger than the sine or cosine.
constexpr long double POINT_UNITS = 7.2L;
constexpr long double ANGLE_UNITS = 4;
constexpr long double GAUSSIAN_UNITS = 2;

// The same pair over and over.
template <class T> class OnePairRng : public RnBiRng<T>
{
public:
    OnePairRng(double u, double v) : _u(static_cast<T>(u)), _v(static_cast<T>(v)) {}

    virtual ~OnePairRng() = default;

    void getSample(T& x, T& y) override
    {
        x = _u;
        y = _v;
    }

    void getSequence(unsigned int n, T* x, T* y) override
    {
        for (unsigned int i = 0; i < n; ++i) getSample(x[i], y[i]);
    }

    void getEfficientWidth(T& x, T& y) const override
    {
        x = y = T(1);
    }

    void getEfficientMin(T& x, T& y) const override
    {
        x = y = T(0);
    }

    void getEfficientMax(T& x, T& y) const override
    {
        x = y = T(1);
    }

    T getEfficientFraction() const override
    {
        return T(1);
    }

    T getPdf(T, T) const override
    {
        return T(1);
    }

    void restart() override {}

    const char* getName() const override
    {
        return "One pair";
    }

private:
    T _u;
    T _v;
};

template <class T> void expectNear(T actual, double exact, long double units)
{
    EXPECT_LE(errorInUnits<T>(actual, static_cast<long double>(exact)), units)
        << std::hexfloat << actual << " and not " << exact << std::defaultfloat;
}

template <class T, class Directions, class Table> void expectGolden(const Table& table)
{
    for (const GoldenDirection& row : table)
    {
        SCOPED_TRACE(testing::Message() << row._u << " " << row._v);
        OnePairRng<T> source(row._u, row._v);
        Directions directions(&source);
        T x;
        T y;
        T z;
        directions.getSampleXYZ(x, y, z);
        expectNear(x, row._x, POINT_UNITS);
        expectNear(y, row._y, POINT_UNITS);
        expectNear(z, row._z, ROOT_UNITS);
        T theta;
        T phi;
        directions.getSampleAngles(theta, phi);
        expectNear(theta, row._theta, ANGLE_UNITS);
        expectNear(phi, row._phi, ANGLE_UNITS);

        // The roles are swapped in a sequence.
        OnePairRng<T> swapped(row._v, row._u);
        Directions others(&swapped);
        T point[3];
        others.getSequenceXYZ(1, &point[0], &point[1], &point[2]);
        expectNear(point[0], row._x, POINT_UNITS);
        expectNear(point[1], row._y, POINT_UNITS);
        expectNear(point[2], row._z, ROOT_UNITS);
    }
}

TYPED_TEST(RnDirectionalRngMath, DirectionsAreNearTheirExactValues)
{
    using T = TypeParam;
    expectGolden<T, Zu::RnUniformSphericalRng<T>>(SPHERE);
    expectGolden<T, Zu::RnUniformHemisphericalRng<T>>(HEMISPHERE);
    expectGolden<T, Zu::RnCosineHemisphericalRng<T>>(COSINE);
}

TYPED_TEST(RnDirectionalRngMath, GaussianValuesAreNearTheirExactValues)
{
    using T = TypeParam;
    for (const GoldenPair& row : PAIRS)
    {
        SCOPED_TRACE(testing::Message() << row._u << " " << row._v);
        ScriptedRng<T> source({static_cast<T>(row._u), static_cast<T>(row._v)});
        RnGaussianRng<T> shaped(&source);
        expectNear(shaped(), row._first, GAUSSIAN_UNITS);
        expectNear(shaped(), row._second, GAUSSIAN_UNITS);
    }
}

} // namespace
