// A picture of points, as the sample program for random numbers makes.

#ifndef ZU_EXAMPLES_SVGPICTURE_H
#define ZU_EXAMPLES_SVGPICTURE_H

#include <string>
#include <vector>

namespace sample
{

struct Range
{
    double _min;
    double _max;
};

// Collects shapes in the coordinates of a range on x and one on y, and writes them as a file in
// the format SVG.
class SvgPicture
{
public:
    SvgPicture(Range x, Range y);

    // A small dot, omitted if it is outside the ranges.
    void addPoint(double x, double y);

    // A bar from 0 up to a height.
    void addBar(double low, double high, double height);

    // A line through points.
    void addCurve(const std::vector<double>& x, const std::vector<double>& y);

    // Throws std::runtime_error if the file can't be written.
    void write(const std::string& file, const std::string& title) const;

private:
    double toPictureX(double x) const;
    double toPictureY(double y) const;

    Range _x;
    Range _y;
    std::string _shapes;
};

} // namespace sample

#endif
