// The registry, the display conversion and reload() from many threads at once: no deadlock, no race, right results.

#include "tests/support/stress.h"
#include "tests/support/testimages.h"
#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>

#include <atomic>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

TEST(ColorLocks, ReloadMeetsRunningConversionsWithoutADeadlock)
{
    ColorManager::get();
    Image image = randomImage(40, 40, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    const QImage expected = Ondrel::ColorTransformer::toQImage(image, false);
    std::atomic<int> wrong{0}, rendered{0}, reloads{0};
    const auto render = [&] {
        wrong += Ondrel::ColorTransformer::toQImage(image, false) != expected;
        ++rendered;
    };
    const auto reload = [&] {
        ColorManager::reload();
        ++reloads;
    };
    runTogether({render, render, render, reload, reload, render, render, render});
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_GT(rendered.load(), 0);
    EXPECT_GT(reloads.load(), 0);
}

TEST(ColorLocks, RegistryAndConversionsFromEightThreads)
{
    ColorManager::get();
    const Bytes data = savedBytes(rgbProfile(1.77, "Threads").get());
    const QByteArray sRGB = toByteArray(Ondrel::DefaultColorProfileHash),
                     wide = toByteArray(
                         ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get()));
    const Image image = randomImage(30, 30, 1);
    const Image expected = ConvertColorSpace(image, sRGB, wide, 0);
    std::atomic<int> wrong{0};
    const auto convert = [&] { wrong += !samePixels(ConvertColorSpace(image, sRGB, wide, 0), expected); };
    const auto list = [&] {
        std::vector<std::pair<QString, Hash>> names;
        ColorManager::colorProfileNamesAndHashesSorted(names, {ColorManager::ColorProfile::RGB},
                                                       {ColorManager::ColorProfile::BuiltIn});
        wrong += names.size() != 4;
    };
    const auto churn = [&] {
        Hash hash{};
        ColorManager::addColorProfile(data, ColorManager::ColorProfile::Embedded, &hash);
        const Profile copy(ColorManager::copyColorProfileByHash(hash));
        ColorManager::removeColorProfile(hash, ColorManager::ColorProfile::Embedded);
    };
    const auto lab = [&] { wrong += ColorManager::toLab(image).size() != 2700; };
    testing::internal::CaptureStdout(); // duplicates are reported
    runTogether({convert, convert, list, list, churn, lab, lab, list});
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(wrong.load(), 0);
}

} // namespace
