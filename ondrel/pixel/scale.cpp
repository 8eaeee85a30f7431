#include <ondrel/pixel/scale.h>
#include <ondrel/pixel/scaleopencl.h>

Ondrel::FilterMethod InterpolationToFilter(QString const& name)
{
    if (name == QLatin1String("Bilinear"))
        return Ondrel::FilterMethod::Bilinear;
    if (name == QLatin1String("Bicubic"))
        return Ondrel::FilterMethod::Bicubic;
    return Ondrel::FilterMethod::NearestNeighbor;
}

Ondrel::Image Scale(Ondrel::Image const& source, unsigned int width, unsigned int height, Ondrel::FilterMethod filter)
{
    Ondrel::Image result;
    // Copying a single pixel for each costs less than its way to a device and back.
    if (filter != Ondrel::FilterMethod::NearestNeighbor && Scale_OpenCL(source, result, width, height, filter))
        return result;
    Scale_CPU(source, result, width, height, filter);
    return result;
}
