#include "essentials.h"

#include <ondrel/color/colormanager.h>

#include <cmath>

namespace OndrelTest
{

const Host::NodeTypes& essentials()
{
    static const std::unique_ptr<const Host::NodeTypes> types = [] {
        auto loaded = std::make_unique<Host::NodeTypes>();
        const QStringList problems = Host::loadPlugins(ONDREL_PLUGINS, *loaded);
        EXPECT_TRUE(problems.isEmpty()) << qPrintable(problems.join('\n'));
        return loaded;
    }();
    return *types;
}

const Host::NodeType& nodeType(const QString& file)
{
    const Host::NodeType* const type = essentials().find("essentials/" + file);
    if (!type)
        throw std::runtime_error("There is no node " + file.toStdString());
    return *type;
}

namespace
{

QVariantMap complete(const QString& file, const QVariantMap& values)
{
    QVariantMap all = nodeType(file).defaults();
    for (auto value = values.begin(); value != values.end(); ++value)
        all.insert(value.key(), value.value());
    return all;
}

} // namespace

Host::Result evaluate(const QString& file, const Inputs& inputs, const QVariantMap& values, double scale,
                      const Ondrel::RunStatus& status)
{
    return nodeType(file).entry.behaviour->evaluate({inputs, complete(file, values), scale, status});
}

Sizes sizesOf(const QString& file, const QVariantMap& values, const Sizes& inputs)
{
    return nodeType(file).entry.behaviour->outputSizes(complete(file, values), inputs);
}

std::vector<Ondrel::TransformMap> mapsOf(const QString& file, const QVariantMap& values, const Sizes& inputs)
{
    return nodeType(file).entry.behaviour->transformMaps(complete(file, values), inputs);
}

Inputs inputOf(const Ondrel::Image& image, const QSize& fullSize)
{
    const QSize own(int(image.width), int(image.height));
    return {{"image", {image.toPtr(), fullSize.isEmpty() ? own : fullSize}}};
}

Ondrel::Image picture(unsigned int width, unsigned int height, unsigned int seed)
{
    Ondrel::Image image = randomImage(width, height, seed);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

Ondrel::Image smoothPicture(unsigned int width, unsigned int height)
{
    Ondrel::Image image(width, height);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            const double u = double(x) / width, v = double(y) / height;
            const auto wave = [](double t) { return std::uint16_t(32767 + 30000 * std::sin(t)); };
            setPixel(image, x, y, {wave(6 * u), wave(5 * v + 1), wave(4 * (u + v)), 65535});
        }
    }
    return image;
}

Ondrel::Image imageOf(const Host::Result& result, const QString& output)
{
    EXPECT_TRUE(result.error.isEmpty()) << qPrintable(result.error);
    const Host::Picture found = result.outputs.value(output);
    EXPECT_TRUE(found.image) << "no picture";
    return found.image ? *found.image : Ondrel::Image();
}

testing::AssertionResult same(const Ondrel::Image& expected, const Ondrel::Image& actual)
{
    if (!samePixels(expected, actual))
        return testing::AssertionFailure() << "other pixels, " << expected.width << " x " << expected.height << " and "
                                           << actual.width << " x " << actual.height;
    if (actual.colorProfile != Ondrel::DefaultColorProfileHash)
        return testing::AssertionFailure() << "the profile is lost";
    return testing::AssertionSuccess();
}

double meanDifference(const Ondrel::Image& a, const Ondrel::Image& b)
{
    if (a.width != b.width || a.height != b.height || !a.data)
        return 65535;
    double sum = 0;
    const std::size_t samples = std::size_t(a.width) * a.height * 4;
    for (std::size_t i = 0; i < samples; ++i)
        sum += std::abs(double(a.data[i]) - double(b.data[i]));
    return sum / double(samples);
}

} // namespace OndrelTest
