#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

namespace
{

using namespace OndrelTest;

Bytes fileWith(const JpegMarkers& markers, J_COLOR_SPACE space = JCS_YCbCr)
{
    return jpegFile(randomJpeg(5, 4, space), markers);
}

// Reads a file with these parts of a profile, each with its number and the total.
struct Part {
    unsigned int number, total;
    Bytes bytes;
};
ReadResult readParts(const std::vector<Part>& parts)
{
    return readJpeg(fileWith([&](jpeg_compress_struct* jpeg) {
        for (const Part& part : parts)
            writeIccMarker(jpeg, part.number, part.total, part.bytes);
    }));
}

// The profile of a file that loads: that of the handle and of the image.
Hash profileOf(const ReadResult& result)
{
    EXPECT_TRUE(result.ok);
    EXPECT_NE(result.profile, nullptr);
    EXPECT_EQ(hashOf(result.profile), result.image.colorProfile);
    return result.image.colorProfile;
}

class JpegProfile : public testing::Test
{
protected:
    const Profile profile = rgbProfile(1.7, "Embedded");
    const Bytes icc = savedBytes(profile.get());
    const Bytes first = Bytes(icc.begin(), icc.begin() + 200);
    const Bytes second = Bytes(icc.begin() + 200, icc.end());

    void expectOwn(const std::vector<Part>& parts) { EXPECT_EQ(profileOf(readParts(parts)), hashOf(profile)); }
    void expectSrgb(const std::vector<Part>& parts)
    {
        EXPECT_EQ(profileOf(readParts(parts)), Ondrel::DefaultColorProfileHash);
    }
};

TEST_F(JpegProfile, WithoutOneIsSrgb)
{
    expectSrgb({});
}

TEST_F(JpegProfile, IsTheImagesAndIsHandedOver)
{
    const ReadResult result = readParts({{1, 1, icc}});
    EXPECT_EQ(profileOf(result), hashOf(profile));
    EXPECT_EQ(savedBytes(result.profile.get()), icc);
}

TEST_F(JpegProfile, IsPutTogetherByNumber)
{
    expectOwn({{1, 2, first}, {2, 2, second}});
    expectOwn({{2, 2, second}, {1, 2, first}});
    expectOwn({{1, 3, first}, {3, 3, second}, {2, 3, {}}});
}

TEST_F(JpegProfile, MayComeInAsManyPartsAsAByteCounts)
{
    const ReadResult result = readJpeg(fileWith([&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, icc, 255); }));
    EXPECT_EQ(profileOf(result), hashOf(profile));
}

TEST_F(JpegProfile, IncompletePartsGiveSrgb)
{
    expectSrgb({{1, 2, first}});
    expectSrgb({{2, 2, second}});
    expectSrgb({{1, 2, icc}});
}

TEST_F(JpegProfile, PartsThatDisagreeOnTheTotalGiveSrgb)
{
    expectSrgb({{1, 2, first}, {2, 3, second}});
    expectSrgb({{1, 1, icc}, {2, 2, {}}});
}

TEST_F(JpegProfile, RepeatedPartsGiveSrgb)
{
    expectSrgb({{1, 2, first}, {2, 2, second}, {2, 2, second}});
    expectSrgb({{1, 1, icc}, {1, 1, icc}});
    expectSrgb({{1, 2, first}, {1, 2, second}});
}

TEST_F(JpegProfile, NumbersOutsideTheTotalGiveSrgb)
{
    expectSrgb({{0, 1, icc}});
    expectSrgb({{0, 0, icc}});
    expectSrgb({{1, 0, icc}});
    expectSrgb({{2, 1, icc}});
    expectSrgb({{0, 2, {}}, {1, 2, first}, {2, 2, second}});
    expectSrgb({{1, 2, first}, {2, 2, second}, {3, 2, {}}});
    expectSrgb({{255, 1, icc}});
    expectSrgb({{255, 255, icc}});
}

TEST_F(JpegProfile, PartsWithoutContentGiveSrgb)
{
    expectSrgb({{1, 1, {}}});
    expectSrgb({{1, 2, {}}, {2, 2, {}}});
}

TEST_F(JpegProfile, AThousandPartsGiveSrgb)
{
    std::vector<Part> parts;
    for (unsigned int i = 0; i < 1000; ++i)
        parts.push_back({i % 256, 255, Bytes(60000, 1)});
    expectSrgb(parts);
}

TEST_F(JpegProfile, OtherMarkersOfTheSameKindAreIgnored)
{
    const ReadResult result = readJpeg(fileWith([&](jpeg_compress_struct* jpeg) {
        const unsigned char other[] = "MPF stands in markers of this kind too";
        jpeg_write_marker(jpeg, JPEG_APP0 + 2, other, sizeof other);
        const unsigned char tooShort[] = "ICC_PROFILE\0"; // thirteen bytes: the name and the number, no total
        jpeg_write_marker(jpeg, JPEG_APP0 + 2, tooShort, 13);
        writeIccMarker(jpeg, 1, 1, icc);
        writeExif(jpeg, {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 1, 1, 7, 7});
    }));
    EXPECT_EQ(profileOf(result), hashOf(profile));
}

TEST_F(JpegProfile, CompletePartsThatAreNoProfileAreRefused)
{
    for (const Bytes& noise : {Bytes(1, 0), Bytes(500, 3), randomBytes(60000, 1), first}) {
        const ReadResult result = readParts({{1, 1, noise}});
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.profile, nullptr);
    }
}

TEST_F(JpegProfile, AnotherColorSpaceThanTheFilesIsRefused)
{
    const auto reads = [](J_COLOR_SPACE space, const Profile& embedded) {
        const ReadResult result =
            readJpeg(fileWith([&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(embedded.get())); }, space));
        EXPECT_EQ(result.ok || result.profile == nullptr, true);
        return result.ok;
    };
    EXPECT_FALSE(reads(JCS_YCbCr, greyProfile()));
    EXPECT_FALSE(reads(JCS_YCbCr, labProfile()));
    EXPECT_FALSE(reads(JCS_RGB, tableProfile(cmsSigCmykData)));
    EXPECT_FALSE(reads(JCS_GRAYSCALE, rgbProfile(1.0, "RGB")));
    EXPECT_FALSE(reads(JCS_CMYK, rgbProfile(1.0, "RGB")));
    EXPECT_FALSE(reads(JCS_CMYK, greyProfile()));
    EXPECT_TRUE(reads(JCS_RGB, tableProfile(cmsSigRgbData)));
}

TEST_F(JpegProfile, TheIntentIsPerceptual)
{
    const Profile table = tableProfile(cmsSigRgbData); // has another table for each intent
    const Bytes file = fileWith([&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(table.get())); });
    const JpegRows rows = decodeJpeg(file);
    EXPECT_TRUE(samePixels(readJpeg(file, Hash{}).image,
                           transformed(rows.samples, 5, 4, TYPE_RGB_8, reopened(table).get(), sRGB().get())));
}

TEST_F(JpegProfile, AProfileThatGivesNoTransformIsRefusedWhereOneIsNeeded)
{
    // RGB by its header, without any tag to convert by.
    const Profile hollow(cmsCreateProfilePlaceholder(nullptr));
    cmsSetColorSpace(hollow.get(), cmsSigRgbData);
    cmsSetPCS(hollow.get(), cmsSigXYZData);
    cmsSetDeviceClass(hollow.get(), cmsSigDisplayClass);
    const Bytes file = fileWith([&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(hollow.get())); });
    EXPECT_TRUE(readJpeg(file).ok); // nothing is converted
    const ReadResult converted = readJpeg(file, proPhoto());
    EXPECT_FALSE(converted.ok);
    EXPECT_EQ(converted.profile, nullptr);
}

TEST_F(JpegProfile, IsClosedWhenNobodyAsksForIt)
{
    const Bytes file = fileWith([&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, icc); });
    Ondrel::Image image;
    EXPECT_TRUE(ResourceEngine::ReadJPEG(recordOf(file), image, nullptr, Ondrel::EmbeddedColorProfile));
    EXPECT_EQ(image.colorProfile, hashOf(profile));
}

} // namespace
