// Uniform, normal and measured samples, and a source in place of the standard library's.
#include "base/base.h"
#include <algorithm>
#include <functional>
#include <iostream>
#include <random>
#include <vector>

int main()
{
    Zu::RnLecuyerUniformRng<double> uniform;
    Zu::RnGaussianRng<double> normal(&uniform, 170.0, 10.0);

    // Measure a distribution, then draw from what was measured.
    Zu::RnHistogram<double> heights(40, 130.0, 210.0);
    heights.addSamples(&normal, 100000);
    Zu::RnHistogramRng<double> measured(heights, &uniform);
    std::vector<double> people(1000);
    measured.getSequence(1000, people.data());
    const auto tall = std::count_if(people.begin(), people.end(), [](double h) { return h > 180; });
    std::cout << tall << " of 1000 are taller than 1.80 m\n";

    // Any source is a callable, and a generator of bits where one is wanted.
    std::generate(people.begin(), people.end(), std::ref(normal));
    std::vector<int> cards = {1, 2, 3, 4, 5};
    std::shuffle(cards.begin(), cards.end(), Zu::RnBitGenerator<double>(uniform));
    std::cout << cards.size() << " cards shuffled\n";

    // A low-discrepancy source covers a square more evenly than chance does.
    Zu::RnHaltonBiRng<double> halton;
    int inside = 0;
    for (int i = 0; i < 10000; ++i)
    {
        double x;
        double y;
        halton.getSample(x, y);
        inside += x * x + y * y < 1 ? 1 : 0;
    }
    std::cout << "pi is about " << inside * 4 / 10000.0 << "\n";
}
