// The stream that libtiff reads and writes in memory, as libtiff calls it.

#include "testfiles.h"

#include <ondrel/resources/tiffmemory_p.h>

#include <cstdio>

namespace
{

using namespace OndrelTest;
using Ondrel::OwnedTiff;
using Ondrel::TiffMemory;

constexpr toff_t kFailed = toff_t(-1);

class TiffMemoryStream : public testing::Test
{
protected:
    const Bytes file = tiffFile(randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3));
    TiffMemory memory{file};
    OwnedTiff tiff = memory.open("r");

    toff_t seek(toff_t offset, int whence) const
    {
        return TIFFGetSeekProc(tiff.get())(TIFFClientdata(tiff.get()), offset, whence);
    }
    tmsize_t read(void* out, tmsize_t count) const
    {
        return TIFFGetReadProc(tiff.get())(TIFFClientdata(tiff.get()), out, count);
    }
};

TEST_F(TiffMemoryStream, HasTheSizeOfItsBytesAndNoMapping)
{
    ASSERT_NE(tiff, nullptr);
    EXPECT_EQ(TIFFGetSizeProc(tiff.get())(TIFFClientdata(tiff.get())), file.size());
    void* base = nullptr;
    toff_t size = 0;
    EXPECT_EQ(TIFFGetMapFileProc(tiff.get())(TIFFClientdata(tiff.get()), &base, &size), 0);
    EXPECT_EQ(base, nullptr);
}

TEST_F(TiffMemoryStream, SeeksFromTheStartThePositionAndTheEnd)
{
    EXPECT_EQ(seek(10, SEEK_SET), 10u);
    EXPECT_EQ(seek(5, SEEK_CUR), 15u);
    EXPECT_EQ(seek(toff_t(-5), SEEK_CUR), 10u);
    EXPECT_EQ(seek(toff_t(-4), SEEK_END), file.size() - 4);
    EXPECT_EQ(seek(file.size(), SEEK_SET), file.size());
}

TEST_F(TiffMemoryStream, ASeekFromThePositionPastTheEndFailsAndStays)
{
    EXPECT_EQ(seek(10, SEEK_SET), 10u);
    EXPECT_EQ(seek(file.size() - 9, SEEK_CUR), kFailed);
    EXPECT_EQ(seek(toff_t(-11), SEEK_CUR), kFailed);
    EXPECT_EQ(seek(toff_t(1) << 63, SEEK_CUR), kFailed);
    EXPECT_EQ(seek(0, SEEK_CUR), 10u);
    EXPECT_EQ(seek(file.size() - 10, SEEK_CUR), file.size());
}

TEST_F(TiffMemoryStream, OffsetsThatNoFileHasFail)
{
    EXPECT_EQ(seek(toff_t(1) << 63, SEEK_SET), kFailed);
    EXPECT_EQ(seek(kFailed, SEEK_SET), kFailed);
    EXPECT_EQ(seek(0, 17), kFailed);
}

TEST_F(TiffMemoryStream, ReadsEndWithTheBytes)
{
    Bytes out(file.size() + 10, 0xEE);
    seek(0, SEEK_SET);
    EXPECT_EQ(read(out.data(), tmsize_t(out.size())), tmsize_t(file.size()));
    EXPECT_EQ(Bytes(out.begin(), out.end() - 10), file);
    EXPECT_EQ(Bytes(out.end() - 10, out.end()), Bytes(10, 0xEE));
    EXPECT_EQ(read(out.data(), 1), 0);
    seek(toff_t(1) << 62, SEEK_SET);
    EXPECT_EQ(read(out.data(), 1), 0);
    seek(file.size() - 3, SEEK_SET);
    EXPECT_EQ(read(out.data(), 100), 3);
    seek(0, SEEK_SET);
    EXPECT_EQ(read(out.data(), 0), 0);
    EXPECT_EQ(read(out.data(), -1), 0);
}

TEST_F(TiffMemoryStream, ReadOnlyBytesCannotBeWritten)
{
    char byte = 1;
    EXPECT_EQ(TIFFGetWriteProc(tiff.get())(TIFFClientdata(tiff.get()), &byte, 1), -1);
}

TEST(TiffMemoryTarget, GrowsWithZerosWhereNothingWasWritten)
{
    Bytes bytes;
    TiffMemory memory(bytes);
    const OwnedTiff tiff = memory.open("wb");
    ASSERT_NE(tiff, nullptr);
    const auto client = TIFFClientdata(tiff.get());
    const std::size_t before = bytes.size();
    char text[] = "abc";
    EXPECT_EQ(TIFFGetSeekProc(tiff.get())(client, before + 5, SEEK_SET), before + 5);
    EXPECT_EQ(bytes.size(), before); // only a write makes it longer
    EXPECT_EQ(TIFFGetWriteProc(tiff.get())(client, text, 3), 3);
    ASSERT_EQ(bytes.size(), before + 8);
    EXPECT_EQ(Bytes(bytes.end() - 8, bytes.end()), (Bytes{0, 0, 0, 0, 0, 'a', 'b', 'c'}));
    EXPECT_EQ(TIFFGetSeekProc(tiff.get())(client, 0, SEEK_CUR), before + 8);
}

TEST(TiffMemoryTarget, AWriteBeyondAllMemoryFails)
{
    Bytes bytes;
    TiffMemory memory(bytes);
    const OwnedTiff tiff = memory.open("wb");
    ASSERT_NE(tiff, nullptr);
    const auto client = TIFFClientdata(tiff.get());
    char text[] = "abc";
    for (const toff_t offset : {(toff_t(1) << 63) - 1, (toff_t(1) << 63) - 3}) {
        EXPECT_EQ(TIFFGetSeekProc(tiff.get())(client, offset, SEEK_SET), offset);
        EXPECT_EQ(TIFFGetWriteProc(tiff.get())(client, text, 3), -1);
    }
    TIFFGetSeekProc(tiff.get())(client, 0, SEEK_SET);
}

} // namespace
