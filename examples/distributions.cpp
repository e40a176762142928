// Draws from every source of random numbers, fills histograms, draws from these in turn, and writes
// pictures, texts and scenes of the results to a directory: distributions [directory].

#include "base/base.h"
#include "svgPicture.h"

#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using sample::Range;
using sample::SvgPicture;

constexpr unsigned int SAMPLES = 100000;
constexpr unsigned int POINTS = 2000;
constexpr unsigned int BINS = 80;

class Gallery
{
public:
    explicit Gallery(std::string directory) : _directory(std::move(directory)) {}

    // A histogram as bars, over the density that the source states.
    void showValues(const std::string& name, Zu::RnRng<double>& rng, Range range, double height);

    // The points of a source of pairs.
    void showPairs(const std::string& name, Zu::RnBiRng<double>& rng, Range range = {0, 1});

    // Two coordinates of a source of tuples.
    template <int N> void showTuples(const std::string& name, Zu::RnMultiRng<double, N>& rng);

    // Directions seen from the side, with the z axis upwards.
    void showDirections(const std::string& name, Zu::RnSphericalRng<double>& rng);

    // A histogram's text and scene.
    template <class Histogram> void dump(const std::string& name, const Histogram& histogram);

private:
    std::string fileFor(const std::string& name, const char* suffix) const
    {
        return (Zu::OsFilePath(_directory.c_str()) + (name + suffix).c_str()).getChars();
    }

    std::string _directory;
};

void say(const std::string& name, const std::string& text)
{
    std::cout << "  " << std::left << std::setw(26) << name << text << std::endl;
}

void Gallery::showValues(const std::string& name, Zu::RnRng<double>& rng, Range range,
                         double height)
{
    Zu::RnUniformHistogram<double> histogram(BINS, range._min, range._max);
    histogram.addSamples(&rng, SAMPLES);
    SvgPicture picture(range, {0, height});
    std::vector<double> x;
    std::vector<double> densities;
    double worst = 0;
    for (unsigned int i = 0; i < BINS; ++i)
    {
        double low;
        double high;
        histogram.getBinLimits(i, low, high);
        const double measured =
            histogram.getBin(static_cast<int>(i)) / ((high - low) * double(SAMPLES));
        picture.addBar(low, high, measured);
        x.push_back((low + high) / 2);
        densities.push_back(rng.getPdf(x.back()));
        worst = std::max(worst, std::abs(measured - densities.back()));
    }
    picture.addCurve(x, densities);
    picture.write(fileFor(name, ".svg"), rng.getName());
    dump(name, histogram);
    std::ostringstream text;
    text << rng.getName() << ": " << histogram.getTotal() << " of " << SAMPLES
         << " in range, density off by at most " << std::setprecision(2) << worst;
    say(name, text.str());
}

void Gallery::showPairs(const std::string& name, Zu::RnBiRng<double>& rng, Range range)
{
    std::vector<double> x(POINTS);
    std::vector<double> y(POINTS);
    rng.getSequence(POINTS, x.data(), y.data());
    SvgPicture picture(range, range);
    for (unsigned int i = 0; i < POINTS; ++i) picture.addPoint(x[i], y[i]);
    picture.write(fileFor(name, ".svg"), rng.getName());
    say(name, std::string(rng.getName()) + ": " + std::to_string(POINTS) + " pairs");
}

template <int N> void Gallery::showTuples(const std::string& name, Zu::RnMultiRng<double, N>& rng)
{
    std::vector<double> coordinates[N];
    double* arrays[N];
    for (int d = 0; d < N; ++d)
    {
        coordinates[d].resize(POINTS);
        arrays[d] = coordinates[d].data();
    }
    rng.getSequence(POINTS, arrays);
    SvgPicture picture({0, 1}, {0, 1});
    for (unsigned int i = 0; i < POINTS; ++i) picture.addPoint(arrays[N - 2][i], arrays[N - 1][i]);
    picture.write(fileFor(name, ".svg"),
                  std::string(rng.getName()) + ", the last two of " + std::to_string(N));
    say(name, std::string(rng.getName()) + ": " + std::to_string(POINTS) + " points of " +
                  std::to_string(N) + " coordinates");
}

void Gallery::showDirections(const std::string& name, Zu::RnSphericalRng<double>& rng)
{
    std::vector<double> x(POINTS);
    std::vector<double> y(POINTS);
    std::vector<double> z(POINTS);
    rng.getSequenceXYZ(POINTS, x.data(), y.data(), z.data());
    SvgPicture picture({-1, 1}, {-1, 1});
    for (unsigned int i = 0; i < POINTS; ++i) picture.addPoint(x[i], z[i]);
    picture.write(fileFor(name, ".svg"), std::string(rng.getName()) + ", x and z");
    say(name, std::string(rng.getName()) + ": " + std::to_string(POINTS) + " directions");
}

template <class Histogram> void Gallery::dump(const std::string& name, const Histogram& histogram)
{
    const struct
    {
        const char* _suffix;
        void (Histogram::*_dump)(std::ostream&) const;
    } forms[] = {{".txt", &Histogram::dumpText}, {".iv", &Histogram::dumpInventor}};
    for (const auto& form : forms)
    {
        const std::string file = fileFor(name, form._suffix);
        std::ofstream out(file);
        (histogram.*form._dump)(out);
        out.close();
        if (!out) throw std::runtime_error("can't write '" + file + "'");
    }
}

void showUniform(Gallery& gallery)
{
    Zu::RnLecuyerUniformRng<double> combined;
    Zu::RnNumRecUniformRng<double> shuffled(7);
    Zu::RnStdUniformRng<double> standard(7);
    Zu::RnVanDerCorputRng<double> sequence;
    gallery.showValues("uniformCombined", combined, {0, 1}, 2);
    gallery.showValues("uniformShuffled", shuffled, {0, 1}, 2);
    gallery.showValues("uniformStandard", standard, {0, 1}, 2);
    gallery.showValues("vanDerCorput", sequence, {0, 1}, 2);
}

void showPoints(Gallery& gallery)
{
    Zu::RnLecuyerUniformRng<double> combined;
    Zu::RnNumRecUniformRng<double> shuffled(7);
    Zu::RnMexicanHatRng<double> hat(&combined);
    Zu::RnSeparableBiRng<double> separable(&combined);
    Zu::RnAsymmetricalSeparableBiRng<double> asymmetrical(&hat, &shuffled);
    Zu::RnSeparableMultiRng<double, 3> separableMulti(&combined);
    Zu::RnHaltonBiRng<double> halton;
    Zu::RnHaltonMultiRng<double, 3> haltonMulti;
    Zu::RnHammersleyBiRng<double> hammersley(POINTS);
    Zu::RnHammersleyMultiRng<double, 3> hammersleyMulti(POINTS);
    Zu::RnNiederreiterMultiRng<double> niederreiter;
    gallery.showPairs("separable", separable);
    gallery.showPairs("separableAsymmetrical", asymmetrical, {-0.5, 1});
    gallery.showTuples("separableMulti", separableMulti);
    gallery.showPairs("halton", halton);
    gallery.showTuples("haltonMulti", haltonMulti);
    gallery.showPairs("hammersley", hammersley);
    gallery.showTuples("hammersleyMulti", hammersleyMulti);
    gallery.showTuples("niederreiter", niederreiter);
}

void showShaped(Gallery& gallery)
{
    Zu::RnLecuyerUniformRng<double> combined;
    Zu::RnGaussianRng<double> gaussian(&combined);
    Zu::RnMexicanHatRng<double> hat(&combined);
    gallery.showValues("gaussian", gaussian, {-4, 4}, 0.5);
    gallery.showValues("mexicanHat", hat, {-0.5, 0.5}, 2.5);
}

void showDirections(Gallery& gallery)
{
    Zu::RnHaltonBiRng<double> pairs;
    Zu::RnUniformSphericalRng<double> sphere(&pairs);
    Zu::RnUniformHemisphericalRng<double> hemisphere(&pairs);
    Zu::RnCosineHemisphericalRng<double> cosine(&pairs);
    gallery.showDirections("sphere", sphere);
    gallery.showDirections("hemisphere", hemisphere);
    gallery.showDirections("cosineHemisphere", cosine);

    Zu::RnHistogramSpherical<double> onSphere(20, 40);
    Zu::RnHistogramHemispherical<double> onHemisphere(20, 40);
    for (unsigned int i = 0; i < SAMPLES; ++i)
    {
        double cosTheta;
        double phi;
        sphere.getSampleCosine(cosTheta, phi);
        onSphere.addCosine(cosTheta, phi);
        cosine.getSampleCosine(cosTheta, phi);
        onHemisphere.addCosine(cosTheta, phi);
    }
    gallery.dump("sphereHistogram", onSphere);
    gallery.dump("hemisphereHistogram", onHemisphere);
}

// A measured histogram serves as a source.
void showMeasured(Gallery& gallery)
{
    Zu::RnLecuyerUniformRng<double> combined;
    Zu::RnGaussianRng<double> low(&combined, 0.3, 0.07);
    Zu::RnGaussianRng<double> high(&combined, 0.7, 0.05);
    Zu::RnHistogram<double> histogram(BINS, 0.0, 1.0);
    histogram.addSamples(&low, SAMPLES);
    histogram.addSamples(&high, SAMPLES / 2);
    Zu::RnHistogramRng<double> sampler(histogram, &combined);
    gallery.showValues("measured", sampler, {0, 1}, 5);

    Zu::RnAsymmetricalSeparableBiRng<double> pairs(&low, &high);
    Zu::RnUniformHistogramBi<double> grid(40, 40, 0.0, 1.0, 0.0, 1.0);
    grid.addSamples(&pairs, SAMPLES);
    Zu::RnHistogramBiRng<double> pairSampler(grid, &combined);
    gallery.showPairs("measuredPairs", pairSampler);
    gallery.dump("measuredPairs", grid);
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        Gallery gallery(argc > 1 ? argv[1] : ".");
        showUniform(gallery);
        showPoints(gallery);
        showShaped(gallery);
        showDirections(gallery);
        showMeasured(gallery);
        return 0;
    }
    catch (const std::exception& exception)
    {
        std::cerr << "distributions: " << exception.what() << std::endl;
        return 1;
    }
}
