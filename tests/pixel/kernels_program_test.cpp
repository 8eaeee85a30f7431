// The program that PixelOpenCL builds on a device.

#include "opencldevice.h"

#include <algorithm>
#include <sstream>

using namespace OndrelTest;

namespace
{

using KernelsProgram = OnDevice;

// The kernels `first` to `last` of a source, by their letters.
void add(std::vector<std::string>& names, char first, char last, char source)
{
    for (char letter = first; letter <= last; ++letter)
        names.push_back(std::string{letter, source});
}

} // namespace

TEST_F(KernelsProgram, HasAllKernelsAndNoOther)
{
    std::vector<std::string> expected = {"c0", "d0", "a2", "a6", "f6", "g6", "a7"};
    add(expected, 'b', 'g', '1');
    add(expected, 'a', 'j', '3');
    add(expected, 'a', 't', '4');
    add(expected, 'a', 'c', '5');
    std::sort(expected.begin(), expected.end());

    DeviceWork work;
    std::istringstream list(work.program().getInfo<CL_PROGRAM_KERNEL_NAMES>());
    std::vector<std::string> names;
    for (std::string name; std::getline(list, name, ';');)
        names.push_back(name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, expected);
}

TEST_F(KernelsProgram, IsBuiltForTheChosenDeviceAlone)
{
    DeviceWork work;
    EXPECT_EQ(work.program().getInfo<CL_PROGRAM_DEVICES>(), std::vector<cl::Device>{work.device()});
    EXPECT_EQ(work.context().getInfo<CL_CONTEXT_DEVICES>(), std::vector<cl::Device>{work.device()});
    EXPECT_EQ(work.program().getBuildInfo<CL_PROGRAM_BUILD_OPTIONS>(work.device()), "-cl-mad-enable");
    EXPECT_EQ(work.program().getBuildInfo<CL_PROGRAM_BUILD_STATUS>(work.device()), CL_BUILD_SUCCESS);
}

TEST_F(KernelsProgram, HasNoBytesThatAreNotText)
{
    DeviceWork work;
    std::string source = work.program().getInfo<CL_PROGRAM_SOURCE>();
    while (!source.empty() && source.back() == '\0')
        source.pop_back(); // of the question itself
    EXPECT_FALSE(source.empty());
    EXPECT_EQ(source.find('\0'), std::string::npos);
}
