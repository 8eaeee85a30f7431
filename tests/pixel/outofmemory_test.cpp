// What operations do when there is no memory: they throw, and leave behind what was there before.

#include "tests/support/failnth.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <functional>
#include <ondrel/core/parallel_p.h>
#include <ondrel/core/runtimestatistics.h>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/scale.h>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

class OutOfMemory : public testing::Test
{
protected:
    // Row loops run on the thread whose calls fail, so that each run makes the same calls.
    OutOfMemory() { setParallelEngine(ParallelEngine::Shuffled); }
    ~OutOfMemory() override { setParallelEngine(m_engine); }

    // Runs run() as it is, then with the first, second, third... call of a kind failing, until none is left to fail.
    // A run gives its result or throws std::bad_alloc.
    void failInTurn(const std::function<Image()>& run)
    {
        const Image expected = run();
        int thrown = 0;
        for (const unsigned int kind : {Call::New, Call::Malloc, Call::Map}) {
            if (kind == Call::Malloc && !canFailMalloc())
                continue;
            for (int nth = 1; nth < 1000; ++nth) {
                const Outcome outcome = runFailing(kind, nth, run, expected);
                EXPECT_TRUE(outcome.isRight) << "kind " << kind << ", call " << nth;
                thrown += outcome.threw;
                if (outcome.failures == 0)
                    break;
            }
        }
        EXPECT_GT(thrown, 0);
    }

    const Image m_source = randomImage(31, 23, 1);

private:
    struct Outcome {
        bool threw = false, isRight = false;
        int failures = 0;
    };

    static Outcome runFailing(unsigned int kind, int nth, const std::function<Image()>& run, const Image& expected)
    {
        const std::uint64_t memory = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
        Outcome outcome;
        const FailNth failing(kind, nth, FailNth::Once);
        try {
            outcome.isRight = samePixels(run(), expected);
        } catch (const std::bad_alloc&) {
            outcome.threw = outcome.isRight = true;
        }
        outcome.failures = failing.failures();
        outcome.isRight = outcome.isRight && RunTimeStatistics::Get(RunTimeStatistics::ImageMemory) == memory;
        return outcome;
    }

    const ParallelEngine m_engine = parallelEngine();
};

Eigen::Matrix3d leaning()
{
    Eigen::Matrix3d matrix = Eigen::Matrix3d::Identity();
    matrix(0, 1) = 0.2;
    matrix(2, 0) = 0.001;
    return matrix;
}

} // namespace

TEST_F(OutOfMemory, BlurThrows)
{
    failInTurn([&] { return GaussianBlur_CPU(m_source, 4.0f, 2.0f, GaussianEdge::Clamp, RunStatus()); });
}

TEST_F(OutOfMemory, ScaleThrows)
{
    failInTurn([&] { return Scale(m_source, 12, 40, FilterMethod::Bicubic); });
}

TEST_F(OutOfMemory, RotateThrows)
{
    failInTurn([&] { return Rotate(m_source, 17.0f, RotateSizeBounding, FilterMethod::Bilinear); });
}

TEST_F(OutOfMemory, TransformThrowsAndKeepsTheOutputOfBefore)
{
    const auto before = std::make_shared<const Image>(randomImage(3, 3, 2));
    const Image kept(*before);
    failInTurn([&] {
        std::shared_ptr<const Image> output = before;
        Transform(m_source, RectT<int>::invalid(), 1.0, TransformSizeBounding, FilterMethod::Bicubic, leaning(),
                  output);
        return Image(*output);
    });
    EXPECT_TRUE(samePixels(*before, kept));

    std::shared_ptr<const Image> output = before;
    const FailNth failing(Call::Map | Call::New, 1, FailNth::Onwards);
    EXPECT_THROW(Transform(m_source, RectT<int>::invalid(), 1.0, TransformSizeBounding, FilterMethod::Bicubic,
                           leaning(), output),
                 std::bad_alloc);
    EXPECT_EQ(output, before);
}

TEST_F(OutOfMemory, GradientsThrow)
{
    const std::vector<GradientStop> stops = {{0.0f, 1, 2, 3, 65535}, {0.5f, 60000, 2, 3, 0}, {1.0f, 4, 5, 6, 65535}};
    for (const auto interpolation : {GradientColorInterpolationRGB, GradientColorInterpolationLCH})
        failInTurn([&] {
            Image image(m_source);
            GradientLinear(image, {0, 0, 31, 23}, {0.1f, 0.2f, 0.8f, 0.9f}, stops, interpolation,
                           {{0, 0}, {30000, 20000}, {65535, 65535}});
            return image;
        });
}
