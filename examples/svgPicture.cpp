#include "svgPicture.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sample
{

namespace
{

constexpr double SIZE = 400;
constexpr double BORDER = 24;

} // namespace

SvgPicture::SvgPicture(Range x, Range y) : _x(x), _y(y) {}

double SvgPicture::toPictureX(double x) const
{
    return BORDER + (x - _x._min) / (_x._max - _x._min) * SIZE;
}

// The y axis of a picture points downwards.
double SvgPicture::toPictureY(double y) const
{
    return BORDER + (_y._max - y) / (_y._max - _y._min) * SIZE;
}

void SvgPicture::addPoint(double x, double y)
{
    if (x < _x._min || x > _x._max || y < _y._min || y > _y._max) return;
    std::ostringstream shape;
    shape << "<circle cx=\"" << toPictureX(x) << "\" cy=\"" << toPictureY(y)
          << "\" r=\"1.2\" fill=\"#204a87\"/>\n";
    _shapes += shape.str();
}

void SvgPicture::addBar(double low, double high, double height)
{
    const double top = toPictureY(height);
    std::ostringstream shape;
    shape << "<rect x=\"" << toPictureX(low) << "\" y=\"" << top << "\" width=\""
          << toPictureX(high) - toPictureX(low) << "\" height=\"" << toPictureY(0) - top
          << "\" fill=\"#729fcf\"/>\n";
    _shapes += shape.str();
}

void SvgPicture::addCurve(const std::vector<double>& x, const std::vector<double>& y)
{
    std::ostringstream shape;
    shape << "<polyline fill=\"none\" stroke=\"#a40000\" points=\"";
    for (std::size_t i = 0; i < x.size(); ++i)
        shape << toPictureX(x[i]) << "," << toPictureY(y[i]) << " ";
    shape << "\"/>\n";
    _shapes += shape.str();
}

void SvgPicture::write(const std::string& file, const std::string& title) const
{
    const double whole = SIZE + 2 * BORDER;
    std::ofstream out(file);
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << whole << "\" height=\"" << whole
        << "\" font-family=\"sans-serif\" font-size=\"13\">\n"
        << "<rect width=\"" << whole << "\" height=\"" << whole << "\" fill=\"white\"/>\n"
        << "<rect x=\"" << BORDER << "\" y=\"" << BORDER << "\" width=\"" << SIZE << "\" height=\""
        << SIZE << "\" fill=\"none\" stroke=\"#888\"/>\n"
        << "<text x=\"" << BORDER << "\" y=\"16\">" << title << "</text>\n"
        << _shapes << "</svg>\n";
    out.close();
    if (!out) throw std::runtime_error("can't write '" + file + "'");
}

} // namespace sample
