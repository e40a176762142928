// The scenes of histograms, read by Coin, an implementation of Open Inventor.

#include "base/rnDirectionalHistogram.h"
#include "base/rnHistogram.h"
#include "base/rnHistogramBi.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Zu::RnHistogram;
using Zu::RnHistogramBi;
using Zu::RnHistogramHemispherical;
using Zu::RnHistogramSpherical;
using Zu::RnUniformHistogram;
using Zu::RnUniformHistogramBi;

class CoinEnvironment : public testing::Environment
{
public:
    void SetUp() override
    {
        SoDB::init();
    }

    void TearDown() override
    {
        SoDB::finish();
    }
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new CoinEnvironment);

struct Unref
{
    void operator()(SoNode* node) const
    {
        node->unref();
    }
};

template <class Node> using Held = std::unique_ptr<Node, Unref>;

template <class Node> Held<Node> held(Node* node)
{
    if (node) node->ref();
    return Held<Node>(node);
}

void collect(const SoError* error, void* texts)
{
    *static_cast<std::string*>(texts) += std::string(error->getDebugString().getString()) + "\n";
}

// A parsed scene, and the reader's complaints.
class Scene
{
public:
    template <class Histogram> explicit Scene(const Histogram& histogram)
    {
        std::ostringstream out;
        histogram.dumpInventor(out);
        const std::string text = out.str();
        SoReadError::setHandlerCallback(collect, &_errors);
        SoDebugError::setHandlerCallback(collect, &_errors);
        SoInput input;
        input.setBuffer(text.data(), text.size());
        _root = held(SoDB::readAll(&input));
        // The class of these errors begins with the handler that all errors have.
        SoReadError::setHandlerCallback(SoError::getHandlerCallback(), SoError::getHandlerData());
        SoDebugError::setHandlerCallback(SoError::getHandlerCallback(), SoError::getHandlerData());
    }

    bool isRead() const
    {
        return _root != nullptr;
    }

    const std::string& errors() const
    {
        return _errors;
    }

    // All nodes of a type.
    template <class Node> std::vector<Node*> nodes() const
    {
        SoSearchAction search;
        search.setType(Node::getClassTypeId());
        search.setInterest(SoSearchAction::ALL);
        search.apply(_root.get());
        std::vector<Node*> found;
        for (int i = 0; i < search.getPaths().getLength(); ++i)
            found.push_back(static_cast<Node*>(search.getPaths()[i]->getTail()));
        return found;
    }

private:
    std::string _errors;
    Held<SoSeparator> _root;
};

const SoVertexProperty* propertyOf(const SoVertexShape& shape)
{
    SoNode* const node = shape.vertexProperty.getValue();
    if (!node || !node->isOfType(SoVertexProperty::getClassTypeId())) return nullptr;
    return static_cast<const SoVertexProperty*>(node);
}

using Point = std::array<float, 3>;

std::vector<Point> pointsOf(const SoVertexProperty& property)
{
    std::vector<Point> points;
    for (int i = 0; i < property.vertex.getNum(); ++i)
        points.push_back({property.vertex[i][0], property.vertex[i][1], property.vertex[i][2]});
    return points;
}

// What a scene has: its points, the ends of its lines, how many of these each line takes, and the
// colours of the lines.
struct Told
{
    std::vector<Point> _points;
    std::vector<Point> _ends;
    std::vector<int> _lines;
    std::size_t _colours = 0;
};

void expectPoints(const std::vector<Point>& points, const std::vector<Point>& told)
{
    ASSERT_EQ(points.size(), told.size());
    for (std::size_t i = 0; i < told.size(); ++i)
        for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(points[i][k], told[i][k], 1e-5) << i;
}

template <class Histogram> void expectScene(const Histogram& histogram, const Told& told)
{
    const Scene scene(histogram);
    EXPECT_EQ(scene.errors(), "");
    ASSERT_TRUE(scene.isRead());

    const auto lights = scene.template nodes<SoLightModel>();
    ASSERT_EQ(lights.size(), 1U);
    EXPECT_EQ(lights[0]->model.getValue(), SoLightModel::BASE_COLOR);
    const auto styles = scene.template nodes<SoDrawStyle>();
    ASSERT_EQ(styles.size(), 1U);
    EXPECT_EQ(styles[0]->pointSize.getValue(), 2.0F);

    const auto pointSets = scene.template nodes<SoPointSet>();
    ASSERT_EQ(pointSets.size(), 1U);
    const SoVertexProperty* const points = propertyOf(*pointSets[0]);
    ASSERT_TRUE(points);
    expectPoints(pointsOf(*points), told._points);

    const auto lineSets = scene.template nodes<SoLineSet>();
    ASSERT_EQ(lineSets.size(), 1U);
    const SoVertexProperty* const ends = propertyOf(*lineSets[0]);
    ASSERT_TRUE(ends);
    expectPoints(pointsOf(*ends), told._ends);
    EXPECT_EQ(lineSets[0]->startIndex.getValue(), 0);
    std::vector<int> lines;
    for (int i = 0; i < lineSets[0]->numVertices.getNum(); ++i)
        lines.push_back(lineSets[0]->numVertices[i]);
    EXPECT_EQ(lines, told._lines);
    ASSERT_EQ(ends->orderedRGBA.getNum(), static_cast<int>(told._colours));
    if (told._colours > 0)
    {
        EXPECT_EQ(ends->orderedRGBA[0], 0xFFFFFFFFU);
    }
}

template <class T> class SceneTest : public testing::Test
{
};

using Floats = testing::Types<float, double>;

TYPED_TEST_SUITE(SceneTest, Floats, );

TYPED_TEST(SceneTest, AHistogramIsReadAsAPointForEachBin)
{
    using T = TypeParam;
    const T edges[] = {T(1), T(1.5), T(3)};
    RnHistogram<T> histogram(2, edges);
    histogram.addValue(T(1.25), T(3));
    histogram.addValue(T(2), T(1));
    const Told told{{{1.25F, 1.5F, 0}, {2.25F, 0.1666667F, 0}},
                    {{1, 0, 0}, {3, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 0, 0}, {0, 1, 0}},
                    {2, 2, 2}};
    expectScene(histogram, told);
}

TYPED_TEST(SceneTest, AUniformHistogramOfManyBinsIsRead)
{
    using T = TypeParam;
    RnUniformHistogram<T> histogram(1000, T(0), T(1000));
    Told told{
        {}, {{0, 0, 0}, {1000, 0, 0}, {500, 0, 0}, {500, 1, 0}, {0, 0, 0}, {0, 1, 0}}, {2, 2, 2}};
    for (int i = 0; i < 1000; ++i)
    {
        histogram.addValue(T(i) + T(0.5), T(2));
        told._points.push_back({static_cast<float>(i) + 0.5F, 0.001F, 0});
    }
    expectScene(histogram, told);
}

TYPED_TEST(SceneTest, AHistogramOfPairsIsReadAsAPointForEachCell)
{
    using T = TypeParam;
    const T edgesX[] = {T(1), T(2), T(4)};
    const T edgesY[] = {T(-1), T(1), T(5)};
    RnHistogramBi<T> histogram(2, 2, edgesX, edgesY);
    histogram.addValue(T(1), T(0), T(3));
    histogram.addValue(T(3), T(0), T(1));
    histogram.addValue(T(1), T(3), T(0.5));
    histogram.addValue(T(3), T(3), T(3.5));
    const Told told{
        {{1.5F, 0, 0.1875F}, {3, 0, 0.03125F}, {1.5F, 3, 0.015625F}, {3, 3, 0.0546875F}},
        {{1, -1, 0},
         {4, -1, 0},
         {1, -1, 0},
         {1, 5, 0},
         {4, 5, 0},
         {4, -1, 0},
         {4, 5, 0},
         {1, 5, 0},
         {2.5F, 2.5F, 0},
         {2.5F, 2.5F, 1}},
        {2, 2, 2, 2, 2}};
    expectScene(histogram, told);
}

TYPED_TEST(SceneTest, AUniformHistogramOfPairsIsRead)
{
    using T = TypeParam;
    RnUniformHistogramBi<T> histogram(3, 1, T(0), T(3), T(0), T(2));
    histogram.addValue(T(0.5), T(1), T(2));
    histogram.addValue(T(2.5), T(1), T(2));
    const Told told{{{0.5F, 1, 0.25F}, {1.5F, 1, 0}, {2.5F, 1, 0.25F}},
                    {{0, 0, 0},
                     {3, 0, 0},
                     {0, 0, 0},
                     {0, 2, 0},
                     {3, 2, 0},
                     {3, 0, 0},
                     {3, 2, 0},
                     {0, 2, 0},
                     {1.5F, 1.5F, 0},
                     {1.5F, 1.5F, 1}},
                    {2, 2, 2, 2, 2}};
    expectScene(histogram, told);
}

// The last two, an axis, belong to no line.
const std::vector<Point> SQUARE = {{-1, -1, 0}, {1, -1, 0}, {1, -1, 0},  {1, 1, 0}, {1, 1, 0},
                                   {-1, 1, 0},  {-1, 1, 0}, {-1, -1, 0}, {0, 0, 0}, {0, 0, 1}};

TYPED_TEST(SceneTest, AHistogramOfDirectionsIsReadAsAPointForEachCell)
{
    using T = TypeParam;
    RnHistogramSpherical<T> histogram(2, 4);
    histogram.addCosine(T(-0.5), T(0.5), T(2));
    histogram.addCosine(T(0.5), T(2), T(3));
    histogram.addCosine(T(0.5), T(6), T(3));
    const Told told{{{0.0974621F, 0.0974621F, -0.0795775F},
                     {0, 0, 0},
                     {0, 0, 0},
                     {0, 0, 0},
                     {0, 0, 0},
                     {-0.146193F, 0.146193F, 0.119366F},
                     {0, 0, 0},
                     {0.146193F, -0.146193F, 0.119366F}},
                    SQUARE,
                    {2, 2, 2, 2},
                    1};
    expectScene(histogram, told);
}

TYPED_TEST(SceneTest, AHistogramOfTheUpperHalfIsReadAsAPointForEachCell)
{
    using T = TypeParam;
    RnHistogramHemispherical<T> histogram(1, 4);
    histogram.addCosine(T(0.5), T(0.5), T(3));
    histogram.addCosine(T(0.5), T(2), T(1));
    // Densities of 3/(2 pi) and 1/(2 pi), at a cosine of 1/2 and odd eighths of a turn.
    const Told told{{{0.292386F, 0.292386F, 0.238732F},
                     {-0.0974621F, 0.0974621F, 0.0795775F},
                     {0, 0, 0},
                     {0, 0, 0}},
                    SQUARE,
                    {2, 2, 2, 2},
                    1};
    expectScene(histogram, told);
}

TYPED_TEST(SceneTest, AHistogramWithoutWeightIsNotRead)
{
    using T = TypeParam;
    const Scene single(RnHistogram<T>(2, T(0), T(1)));
    EXPECT_FALSE(single.isRead());
    EXPECT_NE(single.errors(), "");
    const Scene pairs(RnHistogramBi<T>(2, 2, T(0), T(1), T(0), T(1)));
    EXPECT_FALSE(pairs.isRead());
    EXPECT_NE(pairs.errors(), "");
    const Scene sphere(RnHistogramSpherical<T>(2, 2));
    EXPECT_FALSE(sphere.isRead());
    EXPECT_NE(sphere.errors(), "");
    const Scene half(RnHistogramHemispherical<T>(2, 2));
    EXPECT_FALSE(half.isRead());
    EXPECT_NE(half.errors(), "");
}

} // namespace
