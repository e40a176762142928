#include "base/rnDraw.h"

#include "base/rnLecuyerUniformRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include <typeinfo>

namespace Zu
{

namespace
{

template <class... Sources> struct List
{
    static bool contains(const std::type_info& type)
    {
        return ((type == typeid(Sources)) || ...);
    }
};

// The sources that draw alike. A client's class derived from one of them may draw in another way.
template <class T>
using Alike = List<RnLecuyerUniformRng<T>, RnNumRecUniformRng<T>, RnVanDerCorputRng<T>>;

template <class T> bool drawsAlike(const RnRng<T>& source)
{
    return Alike<T>::contains(typeid(source));
}

template <class T> void draw(RnRng<T>& source, unsigned int n, T* values)
{
    if (drawsAlike(source))
        source.getSequence(n, values);
    else
        for (unsigned int i = 0; i < n; ++i) values[i] = source();
}

} // namespace

bool rnDrawsAlike(const RnRng<float>& source)
{
    return drawsAlike(source);
}

bool rnDrawsAlike(const RnRng<double>& source)
{
    return drawsAlike(source);
}

void rnDraw(RnRng<float>& source, unsigned int n, float* values)
{
    draw(source, n, values);
}

void rnDraw(RnRng<double>& source, unsigned int n, double* values)
{
    draw(source, n, values);
}

} // namespace Zu
