#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/geometry_reference.h"

#include <ondrel/pixel/geometry.h>
#include <string>

namespace
{

using namespace OndrelBench;
using Ondrel::Image;
using Operation = Image (*)(const Image&);

void move(benchmark::State& state, Operation operation, unsigned int width, unsigned int height)
{
    const Image source = syntheticImage(width, height);
    for (auto _ : state) {
        const Image result = operation(source);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, std::size_t(width) * height, 16);
}

// Odd sides put every row of the result elsewhere in its cache lines.
void addMove(const std::string& name, Operation operation, Operation literal)
{
    add(name, move, operation, kWidth, kHeight);
    add(name + "/literal", move, literal, kWidth, kHeight);
    add(name + "/floor", mapAndCopy, kWidth, kHeight);
    add(name + "/small pages mapped and copied", mapSmallPagesAndCopy, kWidth, kHeight);
    add(name + ", odd sides", move, operation, kWidth + 1, kHeight + 3);
    add(name + ", odd sides/floor", mapAndCopy, kWidth + 1, kHeight + 3);
}

const bool added = [] {
    addMove(
        "Rotate90", [](const Image& image) { return Rotate90(image, RotateSizeBounding); },
        [](const Image& image) { return OndrelReference::rotate90(image, RotateSizeBounding); });
    addMove(
        "Rotate180", [](const Image& image) { return Rotate180(image); },
        [](const Image& image) { return OndrelReference::rotate180(image); });
    addMove(
        "Rotate270", [](const Image& image) { return Rotate270(image, RotateSizeBounding); },
        [](const Image& image) { return OndrelReference::rotate270(image, RotateSizeBounding); });
    addMove(
        "HorizontalMirror", [](const Image& image) { return HorizontalMirror(image); },
        [](const Image& image) { return OndrelReference::horizontalMirror(image); });
    addMove(
        "VerticalMirror", [](const Image& image) { return VerticalMirror(image); },
        [](const Image& image) { return OndrelReference::verticalMirror(image); });
    addMove(
        "Crop", [](const Image& image) { return Crop(image, 1, 1, 1, 1); },
        [](const Image& image) { return OndrelReference::crop(image, 1, 1, 1, 1); });
    addMove(
        "Translate", [](const Image& image) { return Translate(image, -10, -10); },
        [](const Image& image) { return OndrelReference::translate(image, -10, -10); });
    return true;
}();

} // namespace
