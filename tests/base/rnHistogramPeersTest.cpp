// The look-ups of the GNU Scientific Library compared with ours.

#include "base/rnHistogram.h"
#include "base/rnHistogramBi.h"
#include "base/rnHistogramRng.h"

#include "support/histogramReference.h"

#include <algorithm>
#include <cstddef>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_histogram.h>
#include <gsl/gsl_histogram2d.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::RepeatingRng;
using support::same;
using Zu::RnHistogram;
using Zu::RnHistogramBi;
using Zu::RnHistogramRng;

// The peer calls a handler for each value outside; without one, it only reports by its result.
class RnHistogramPeers : public testing::Test
{
protected:
    RnHistogramPeers() : _former(gsl_set_error_handler_off()) {}

    ~RnHistogramPeers() override
    {
        gsl_set_error_handler(_former);
    }

private:
    gsl_error_handler_t* _former;
};

struct Free
{
    void operator()(gsl_histogram* histogram) const
    {
        gsl_histogram_free(histogram);
    }

    void operator()(gsl_histogram2d* histogram) const
    {
        gsl_histogram2d_free(histogram);
    }

    void operator()(gsl_histogram_pdf* pdf) const
    {
        gsl_histogram_pdf_free(pdf);
    }
};

using PeerHistogram = std::unique_ptr<gsl_histogram, Free>;
using PeerHistogramBi = std::unique_ptr<gsl_histogram2d, Free>;
using PeerPdf = std::unique_ptr<gsl_histogram_pdf, Free>;

// Each edge is greater than the one before: the peer demands it.
std::vector<double> unevenEdges(std::size_t nBins)
{
    HistogramRandom random(810 + nBins);
    std::vector<double> edges{-2.3};
    for (std::size_t i = 0; i < nBins; ++i)
        edges.push_back(edges.back() + random.magnitude<double>(-5, 1));
    return edges;
}

PeerHistogram peerOf(const std::vector<double>& edges)
{
    PeerHistogram peer(gsl_histogram_alloc(edges.size() - 1));
    EXPECT_EQ(gsl_histogram_set_ranges(peer.get(), edges.data(), edges.size()), GSL_SUCCESS);
    return peer;
}

std::vector<double> valuesFor(const std::vector<double>& edges)
{
    std::vector<double> values{1e30, -1e30, INFINITE<double>, -INFINITE<double>};
    for (const double edge : edges)
        for (const double value : {before(edge), edge, behind(edge)}) values.push_back(value);
    HistogramRandom random(811);
    for (int i = 0; i < 1000; ++i)
        values.push_back(random.within(edges.front() - 1, edges.back() + 1));
    return values;
}

TEST_F(RnHistogramPeers, AValueIsInThePeersBin)
{
    for (const std::size_t nBins : {1U, 2U, 7U, 64U, 1000U})
        for (const std::vector<double>& edges :
             {unevenEdges(nBins), support::toldEdges(static_cast<unsigned int>(nBins), 0.1, 0.8)})
        {
            const PeerHistogram peer = peerOf(edges);
            const RnHistogram<double> histogram(static_cast<unsigned int>(nBins), edges.data());
            for (const double value : valuesFor(edges))
            {
                const int bin = histogram.getBinIndex(value);
                std::size_t peerBin = 0;
                if (gsl_histogram_find(peer.get(), value, &peerBin) == GSL_SUCCESS)
                    ASSERT_EQ(bin, static_cast<int>(peerBin)) << value;
                else
                    ASSERT_EQ(bin, value < edges[0] ? -1 : static_cast<int>(nBins)) << value;
            }
        }
}

TEST_F(RnHistogramPeers, ValuesFillAHistogramAsThePeers)
{
    const std::vector<double> edges = unevenEdges(64);
    const PeerHistogram peer = peerOf(edges);
    RnHistogram<double> histogram(64, edges.data());
    const std::vector<double> values = valuesFor(edges);
    histogram.addValues(static_cast<unsigned int>(values.size()), values.data());
    for (const double value : values) gsl_histogram_increment(peer.get(), value);
    for (std::size_t i = 0; i < 64; ++i)
        EXPECT_EQ(histogram.getBin(static_cast<int>(i)), gsl_histogram_get(peer.get(), i)) << i;
    EXPECT_EQ(histogram.getTotal(), gsl_histogram_sum(peer.get()));
}

TEST_F(RnHistogramPeers, APairIsInThePeersCell)
{
    const std::vector<double> edgesX = unevenEdges(7);
    const std::vector<double> edgesY = unevenEdges(5);
    const PeerHistogramBi peer(gsl_histogram2d_alloc(7, 5));
    ASSERT_EQ(gsl_histogram2d_set_ranges(peer.get(), edgesX.data(), edgesX.size(), edgesY.data(),
                                         edgesY.size()),
              GSL_SUCCESS);
    RnHistogramBi<double> histogram(7, 5, edgesX.data(), edgesY.data());
    const std::vector<double> valuesX = valuesFor(edgesX);
    const std::vector<double> valuesY = valuesFor(edgesY);
    for (std::size_t k = 0; k < valuesX.size(); ++k)
        for (const double y : {valuesY[k % valuesY.size()], valuesY[k * 7 % valuesY.size()]})
        {
            const double weight = static_cast<double>(k) * 0.1;
            histogram.addValue(valuesX[k], y, weight);
            gsl_histogram2d_accumulate(peer.get(), valuesX[k], y, weight);
        }
    EXPECT_GT(histogram.getTotal(), 0.0);
    for (unsigned int i = 0; i < 7; ++i)
        for (unsigned int j = 0; j < 5; ++j)
            EXPECT_EQ(histogram.getBin(i, static_cast<int>(j)),
                      gsl_histogram2d_get(peer.get(), i, j))
                << i << " " << j;
}

// The peer's formula is lower + (draw - sum[k]) / (sum[k + 1] - sum[k]) * (upper - lower). Ours
// adds in the other order, which is the same number: with the same table, all bits agree. The peer
// treats a draw of 1 as 0, and returns 0 for one from its last entry on, so these are excluded.
TEST_F(RnHistogramPeers, ASampleIsThePeersWithTheSameTable)
{
    for (const std::size_t nBins : {1U, 2U, 7U, 64U, 4096U})
        for (const auto& [name, weights] : support::weightTables<double>(nBins))
        {
            if (*std::max_element(weights.begin(), weights.end()) == 0.0) continue;
            const std::vector<double> edges = unevenEdges(nBins);
            const std::vector<double> cdf = support::toldCdf(weights);
            const PeerPdf peer(gsl_histogram_pdf_alloc(nBins));
            std::copy(edges.begin(), edges.end(), peer->range);
            std::copy(cdf.begin(), cdf.end(), peer->sum);

            RnHistogram<double> histogram(static_cast<unsigned int>(nBins), edges.data());
            for (std::size_t i = 0; i < nBins; ++i) histogram.addValue(edges[i], weights[i]);

            HistogramRandom random(812);
            std::vector<double> draws;
            for (const double draw : support::hardDraws(cdf))
                if (draw >= 0.0 && draw < cdf.back() && draw != 1.0) draws.push_back(draw);
            for (int i = 0; i < 2000; ++i)
                if (const double draw = random.unit<double>(); draw < cdf.back())
                    draws.push_back(draw);
            ASSERT_GT(draws.size(), 1900U) << name;
            RepeatingRng<double> source(draws);
            RnHistogramRng<double> rng(histogram, &source);
            for (const double draw : draws)
            {
                const double expected = gsl_histogram_pdf_sample(peer.get(), draw);
                ASSERT_TRUE(same(rng(), expected)) << draw << " " << name << ", " << nBins;
            }
        }
}

} // namespace
