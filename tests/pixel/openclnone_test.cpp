// A machine without any OpenCL driver.

#include "../support/testimages.h"

#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/scaleopencl.h>

#include <gtest/gtest.h>

using namespace OndrelTest;
using Ondrel::FilterMethod;
using Ondrel::Image;

TEST(WithoutOpenCL, ListsNoPlatform)
{
    std::vector<PixelOpenCL::Platform> platforms(3);
    PixelOpenCL::instance()->queryDevices(platforms);
    EXPECT_TRUE(platforms.empty());
}

TEST(WithoutOpenCL, NoDeviceCanBeSet)
{
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(PixelOpenCL::instance()->setDevice(0, 0));
        cl::Context context;
        cl::Program program;
        cl::Device device;
        EXPECT_EQ(PixelOpenCL::beginWork(context, program, device), nullptr);
        EXPECT_EQ(context(), nullptr);
    }
    PixelOpenCL::instance()->disable();
}

TEST(WithoutOpenCL, OperationsRunOnTheProcessor)
{
    const Image source = withMetadata(33, 29);
    Image expected, refused;
    for (const FilterMethod filter : {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        Scale_CPU(source, expected, 40, 31, filter);
        EXPECT_TRUE(samePixels(Scale(source, 40, 31, filter), expected));
        EXPECT_FALSE(Scale_OpenCL(source, refused, 40, 31, filter));
    }
    EXPECT_TRUE(samePixels(GaussianBlur(source, 3, 2, GaussianEdge::Blank, Ondrel::RunStatus()),
                           GaussianBlur_CPU(source, 3, 2, GaussianEdge::Blank, Ondrel::RunStatus())));
}
