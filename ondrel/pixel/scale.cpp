#include <ondrel/pixel/scale.h>

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
    Scale_CPU(source, result, width, height, filter);
    return result;
}
