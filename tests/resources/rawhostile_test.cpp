// What comes in for a camera RAW file and is none, or only the beginning of one.

#include "rawstore.h"

#include "tests/reference/raw_reference.h"

#include <ondrel/resources/librawhazards_p.h>

#include <QThread>

#include <atomic>
#include <cstring>
#include <functional>
#include <random>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Kind = DngFile::Kind;

constexpr char kWarning[] = "Warning: Resource system is storing an invalid image resource.\n";

class RawHostile : public RawTest
{
protected:
    // Refused by the store, which it leaves without a trace.
    static void expectRefused(const Bytes& file)
    {
        FreshStore store;
        Ondrel::ResourceId id(77);
        EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatRAW, file, "raw", id));
        EXPECT_EQ(id.id, 77u);
        EXPECT_EQ(store.nextId, 1u);
        EXPECT_TRUE(store.resources.empty() && store.usedColorProfiles.empty() && store.sizeCache.empty());
    }

    // Accepted exactly if LibRaw opens and unpacks it; what is accepted then decodes to what LibRaw makes of it.
    static bool checkAgainstLibRaw(const Bytes& file)
    {
        const bool isGood = OndrelReference::isRaw(file);
        if (!isGood)
            expectRefused(file);
        const StoredRaw stored(file);
        EXPECT_EQ(stored.accepted, isGood);
        if (!stored.accepted)
            return false;
        const auto image = stored.image();
        EXPECT_NE(image, nullptr);
        if (image)
            expectSameRaw(*image, OndrelReference::processRaw(file));
        return true;
    }

    // For files whose outcome LibRaw makes from memory that it has not set.
    static void checkIsDecodedIfAccepted(const Bytes& file)
    {
        const StoredRaw stored(file);
        if (!stored.accepted)
            return;
        const auto image = stored.image();
        ASSERT_NE(image, nullptr);
        for (std::size_t i = 0; i < std::size_t(image->width) * image->height; ++i)
            ASSERT_EQ(image->data[4 * i + 3], 65535);
    }

    static Bytes beginningWith(const char* text, std::size_t size)
    {
        Bytes file = randomBytes(size, unsigned(size));
        std::memcpy(file.data(), text, std::min(size, std::strlen(text)));
        return file;
    }

    static std::string standardErrorOf(const std::function<void()>& body)
    {
        testing::internal::CaptureStderr();
        body();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(RawHostile, GarbageOfEverySmallLengthIsRefused)
{
    for (std::size_t size = 0; size <= 64; ++size) {
        SCOPED_TRACE(size);
        for (const Bytes& file : {randomBytes(size, unsigned(size)), Bytes(size, 0), Bytes(size, 255)}) {
            expectRefused(file);
            const auto info = recordOf(file);
            info->format = ResourceEngine::FormatRAW;
            EXPECT_FALSE(ResourceEngine::ValidateRawImage(info, nullptr));
        }
    }
}

TEST_F(RawHostile, FilesThatLibRawDoesNotSurviveAreRefusedBeforeIt)
{
    for (const char* const text : {"RIFF", "DSC-Image"})
        for (const std::size_t size : {4u, 9u, 10u, 64u, 157u, 192u, 4096u})
            if (size >= std::strlen(text)) {
                SCOPED_TRACE(text + std::to_string(size));
                expectRefused(beginningWith(text, size));
            }
    Bytes nested;
    for (int i = 0; i < 20000; ++i)
        append(nested, {'R', 'I', 'F', 'F', 255, 255, 255, 0, 'L', 'I', 'S', 'T'});
    expectRefused(nested);
}

TEST_F(RawHostile, TheSameFilesAreNeitherDecodedNorPreviewed)
{
    const TemporaryFolder folder;
    const StoredRaw stored(randomDng(Kind::Bayer, 24, 24).bytes());
    for (const char* const text : {"RIFF", "DSC-Image"}) {
        const Bytes file = beginningWith(text, 192);
        stored.exchange(file);
        Image image(3, 3);
        EXPECT_EQ(standardErrorOf([&] { image = ProcessRaw(stored.id, {}); }), kWarning);
        EXPECT_EQ(image.width, 0u);
        writeFile(folder.path("a.raw"), file);
        EXPECT_FALSE(ResourceEngine::ImportRawThumbnail(folder.path("a.raw"), image));
    }
}

TEST_F(RawHostile, PicturesOfOtherKindsAreRefused)
{
    expectRefused(pngWith({}));
    expectRefused(sRGBPng());
}

TEST_F(RawHostile, FileWithoutPixelsIsRefusedOrEmpty)
{
    DngFile file = randomDng(Kind::Bayer, 24, 24);
    file.width = file.height = 0;
    file.samples.clear();
    checkAgainstLibRaw(file.bytes());
    file.width = 24;
    checkAgainstLibRaw(file.bytes());
    file = randomDng(Kind::Bayer, 21, 24); // too small for LibRaw
    checkAgainstLibRaw(file.bytes());
}

TEST_F(RawHostile, CutAtEveryBoundaryOfATag)
{
    const Bytes whole = randomDng(Kind::Bayer, 24, 24).bytes();
    const std::size_t entries = whole[8] + whole[9] * 256u;
    std::vector<std::size_t> cuts = {1, 2, 4, 8, 9};
    for (std::size_t i = 0; i <= entries; ++i)
        for (const std::size_t part : {0u, 2u, 4u, 8u})
            cuts.push_back(10 + 12 * i + part);
    for (std::size_t end = 10 + 12 * entries + 4; end < whole.size(); end += 61)
        cuts.push_back(end);
    int accepted = 0;
    for (const std::size_t cut : cuts) {
        SCOPED_TRACE(cut);
        accepted += checkAgainstLibRaw(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(cut)));
    }
    EXPECT_LT(accepted, int(cuts.size()));
    EXPECT_TRUE(checkAgainstLibRaw(whole));
}

TEST_F(RawHostile, CutAnywhere)
{
    std::mt19937 random(1);
    for (const Kind kind : {Kind::Bayer, Kind::XTrans, Kind::Monochrome, Kind::Linear}) {
        const Bytes whole = randomDng(kind, 24, 24).bytes();
        for (int i = 0; i < 60; ++i) {
            const std::size_t cut = random() % whole.size();
            SCOPED_TRACE(cut);
            checkAgainstLibRaw(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(cut)));
        }
    }
}

TEST_F(RawHostile, FlippedBytes)
{
    std::mt19937 random(7);
    for (const Kind kind : {Kind::Bayer, Kind::XTrans, Kind::Monochrome, Kind::Linear}) {
        const Bytes whole = randomDng(kind, 24, 24).bytes();
        // The sizes stay as they are: larger ones fill gigabytes that no file holds.
        for (int i = 0; i < 120; ++i) {
            const std::size_t place = 46 + random() % 600;
            Bytes file = whole;
            file[place] = static_cast<unsigned char>(file[place] ^ (1 + random() % 255));
            SCOPED_TRACE(std::to_string(int(kind)) + ", byte " + std::to_string(place));
            checkIsDecodedIfAccepted(file);
        }
    }
}

// LibRaw does not survive a pattern of 36 entries that is not called 6 x 6.
TEST_F(RawHostile, AnyChangeToTheSizeOfAPatternOfSixBySix)
{
    constexpr std::size_t repeatPatternDim = 178, end = repeatPatternDim + 12; // the entry in the directory
    const Bytes whole = randomDng(Kind::XTrans, 24, 24).bytes();
    ASSERT_EQ(whole[repeatPatternDim] | whole[repeatPatternDim + 1] << 8, 33421);
    for (std::size_t place = repeatPatternDim; place < end; ++place) {
        for (const int flip : {1, 2, 5, 64, 255}) {
            Bytes file = whole;
            file[place] = static_cast<unsigned char>(file[place] ^ flip);
            SCOPED_TRACE(std::to_string(place) + ", " + std::to_string(flip));
            expectRefused(file);
        }
    }
    EXPECT_TRUE(StoredRaw(whole).accepted);
}

TEST_F(RawHostile, PatternOfThirtySixIsDangerousInEitherByteOrderAndAnywhere)
{
    const Bytes dimLittle = {0x8D, 0x82, 3, 0, 2, 0, 0, 0, 6, 0, 6, 0};
    const Bytes dimBig = {0x82, 0x8D, 0, 3, 0, 0, 0, 2, 0, 6, 0, 6};
    const Bytes little = {0x8E, 0x82, 1, 0, 36, 0, 0, 0}, big = {0x82, 0x8E, 0, 1, 0, 0, 0, 36};
    const Bytes otherLittle = {0x09, 0xFD, 1, 0, 36, 0, 0, 0}, otherBig = {0xFD, 0x09, 0, 1, 0, 0, 0, 36};
    const auto isSafe = [](std::size_t before, std::initializer_list<Bytes> parts) {
        Bytes file(before, 0xA5);
        for (const Bytes& part : parts)
            file.insert(file.end(), part.begin(), part.end());
        return Ondrel::isSafeForLibRaw(file);
    };
    for (const std::size_t before : {0u, 1u, 5u, 11u, 12u, 4084u, 4085u, 4088u, 4091u, 4095u, 4096u, 9001u}) {
        SCOPED_TRACE(before);
        EXPECT_FALSE(isSafe(before, {little}));
        EXPECT_FALSE(isSafe(before, {big}));
        EXPECT_FALSE(isSafe(before, {dimBig, little}));
        EXPECT_FALSE(isSafe(before, {dimLittle, big}));
        EXPECT_FALSE(isSafe(before, {dimLittle, otherLittle}));
        EXPECT_FALSE(isSafe(before, {dimBig, otherBig}));
        EXPECT_TRUE(isSafe(before, {dimLittle, little}));
        EXPECT_TRUE(isSafe(before, {dimBig, big}));
        EXPECT_TRUE(isSafe(before, {dimBig, big, dimLittle, little}));
        EXPECT_FALSE(isSafe(before, {dimBig, big, little}));
        EXPECT_TRUE(isSafe(before, {Bytes(little.begin(), little.end() - 1)})) << "cut";
    }
    EXPECT_TRUE(Ondrel::isSafeForLibRaw({}));
    EXPECT_TRUE(Ondrel::isSafeForLibRaw({36, 0, 0, 0}));
    EXPECT_TRUE(Ondrel::isSafeForLibRaw({0, 0, 0, 36}));
}

TEST_F(RawHostile, ResourceThatHasBecomeInvalidIsAnEmptyImageAndALine)
{
    const StoredRaw stored(randomDng(Kind::Bayer, 24, 24).bytes());
    for (const Bytes& file : {Bytes(), randomBytes(64, 1), Bytes(5000, 0)}) {
        stored.exchange(file);
        ResourceEngine::Get().ClearCache();
        std::shared_ptr<const Image> image;
        EXPECT_EQ(standardErrorOf([&] { image = stored.image(); }), kWarning);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->width, 0u);
        EXPECT_EQ(image->height, 0u);
        EXPECT_FALSE(image->rawHasInfo);
        EXPECT_EQ(image->colorProfile, Hash());
        EXPECT_EQ(standardErrorOf([&] { EXPECT_EQ(stored.image(), image); }), ""); // it is cached
    }
    ResourceEngine::Get().ClearCache();
}

TEST_F(RawHostile, ResourceThatOpensButDoesNotUnpackIsDecodedWithoutALine)
{
    const Bytes whole = randomDng(Kind::Bayer, 40, 40).bytes();
    const StoredRaw stored(whole);
    for (const std::size_t missing : {1u, 1000u, 3000u, 3199u, 3200u}) {
        SCOPED_TRACE(missing);
        const Bytes file(whole.begin(), whole.end() - std::ptrdiff_t(missing));
        stored.exchange(file);
        Image image;
        EXPECT_EQ(standardErrorOf([&] { image = ProcessRaw(stored.id, {}); }), "");
        expectSameRaw(image, OndrelReference::processRaw(file));
    }
}

TEST_F(RawHostile, UnknownResourceIsAnEmptyImageAndALine)
{
    Image image(2, 2);
    EXPECT_EQ(standardErrorOf([&] { image = ProcessRaw(Ondrel::ResourceId(0xfffffff0), {}); }), kWarning);
    EXPECT_EQ(image.width, 0u);
}

TEST_F(RawHostile, MissingFileIsRefused)
{
    const TemporaryFolder folder;
    Ondrel::ResourceId id(5);
    EXPECT_FALSE(ResourceEngine::Get().AddRawImage(folder.path("none.dng").toStdString(), id));
    EXPECT_EQ(id.id, 5u);
}

TEST_F(RawHostile, ValidationTakesNullForTheProfile)
{
    const auto info = recordOf(randomDng(Kind::Bayer, 24, 26).bytes());
    EXPECT_TRUE(ResourceEngine::ValidateRawImage(info, nullptr));
    EXPECT_EQ(info->info.width, 24u);
    EXPECT_EQ(info->info.height, 26u);
    void* profile = nullptr;
    EXPECT_TRUE(ResourceEngine::ValidateRawImage(info, &profile));
    EXPECT_NE(Profile(profile), nullptr);
}

TEST_F(RawHostile, ThreadsWithSmallStacksValidateDecodeAndPreview)
{
    const TemporaryFolder folder;
    const Bytes file = randomDng(Kind::Bayer, 64, 48).bytes();
    writeFile(folder.path("a.dng"), file);
    const Image wanted = OndrelReference::processRaw(file);
    std::atomic<int> good{0};
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(QThread::create([&] {
            const StoredRaw stored(file);
            const auto image = stored.image();
            Image preview;
            ResourceEngine::ImportRawThumbnail(folder.path("a.dng"), preview);
            good += image && samePixels(*image, wanted);
        }));
        threads.back()->setStackSize(512 * 1024);
        threads.back()->start();
    }
    for (const auto& thread : threads)
        thread->wait();
    EXPECT_EQ(good, 4);
}

} // namespace
