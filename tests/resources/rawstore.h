#pragma once

#include "teststore.h"

#include "tests/support/dngfile.h"
#include "tests/support/testimages.h"

#include <ondrel/resources/raw.h>

#include <memory>
#include <string>

// Camera RAW files of the tests, and the store of the process, from which alone they are decoded.
namespace OndrelTest
{

// Random samples between 0 and a little above the white level; levels and matrix like those of a camera.
DngFile randomDng(DngFile::Kind kind, std::uint32_t width, std::uint32_t height, unsigned int seed = 1);

// A resource of the store of the process, for as long as the object lives.
class StoredRaw
{
public:
    explicit StoredRaw(const Bytes& file)
        : accepted(ResourceEngine::Get().AddImageByData(ResourceEngine::FormatRAW, file, "raw", id))
    {
    }
    ~StoredRaw() { ResourceEngine::Get().RemoveResource(id); }
    StoredRaw(const StoredRaw&) = delete;
    StoredRaw& operator=(const StoredRaw&) = delete;

    // In the profile of the camera; null if it fails.
    std::shared_ptr<const Ondrel::Image> image(const Hash& profile = Ondrel::EmbeddedColorProfile) const
    {
        std::shared_ptr<const Ondrel::Image> copy;
        return ResourceEngine::Get().CopyImage(id, copy, profile, {}) ? copy : nullptr;
    }
    Ondrel::ImageInfo info() const
    {
        Ondrel::ImageInfo info;
        EXPECT_TRUE(ResourceEngine::Get().CopyImageInfo(id, info));
        return info;
    }
    // Gives the resource other bytes behind the back of the validation.
    void exchange(const Bytes& file) const;

    Ondrel::ResourceId id;
    const bool accepted;
};

// Pixels, profile and RAW description to the last bit; multipliers as floats equal.
void expectSameRaw(const Ondrel::Image& actual, const Ondrel::Image& expected);
// The same of the description on record.
void expectSameRaw(const Ondrel::ImageInfo& actual, const Ondrel::Image& expected);

// Each test must leave registry and pixel memory as they were, and the store of the process as large as it was.
class RawTest : public testing::Test
{
protected:
    RawTest();
    ~RawTest() override;

private:
    std::set<Hash> m_registered;
    std::uint64_t m_memory;
    std::size_t m_resources;
};

std::size_t resourcesOfTheProcess();

} // namespace OndrelTest
