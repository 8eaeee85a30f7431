#pragma once

#include "testfiles.h"

#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/rawdecoder_p.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

// Stores of the tests' own, and what surrounds them.
namespace OndrelTest
{

// A store with its members in the open. It takes its profiles out of the registry when it goes.
struct FreshStore : ResourceEngine {
    using ResourceEngine::cachedImages;
    using ResourceEngine::nextId;
    using ResourceEngine::resources;
    using ResourceEngine::sizeCache;
    using ResourceEngine::usedColorProfiles;

    ~FreshStore() { removeAll(); }
    void removeAll();
};

using ResourceMap = std::unordered_map<unsigned int, std::shared_ptr<ResourceEngine::ImageInfo>>;

// The hashes of all registered profiles.
std::set<Hash> registeredProfiles();
bool isRegistered(const Hash& hash);
// The entry's own handle, null if there is none: another one shows that an entry was made anew.
const void* registeredHandle(const Hash& hash);

// The hash under which a profile with these bytes is registered: that of the bytes that a fresh handle saves.
Hash hashOf(const Bytes& icc);

// `image` converted by Little CMS alone between two registered profiles, as colours are for a wanted profile.
Ondrel::Image convertedBetween(const Ondrel::Image& image, const Hash& from, const Hash& to);

// Small random RGBA or RGB files with this profile embedded; without one if it is empty.
Bytes pngWith(const Bytes& icc, unsigned int seed = 1);
Bytes jpegWith(const Bytes& icc, unsigned int seed = 1);
Bytes tiffWith(const Bytes& icc, unsigned int seed = 1);

// A PNG file with an sRGB chunk.
Bytes sRGBPng(unsigned int seed = 1);

// The bytes of an RGB profile that no other gamma has.
Bytes iccOfGamma(double gamma);

// Each test gets a store, and must leave registry and pixel memory as they were.
class StoreTest : public testing::Test
{
protected:
    StoreTest();
    ~StoreTest() override; // after the images of the derived test

    // Adds bytes that must be accepted.
    Ondrel::ResourceId add(const Bytes& file, const std::string& name = "name");
    // CopyImage into an empty holder, without a way to cancel. Null if it fails.
    std::shared_ptr<const Ondrel::Image> copy(Ondrel::ResourceId id,
                                              const Hash& profile = Ondrel::EmbeddedColorProfile);
    std::size_t size(Ondrel::ResourceId id) { return store.SumMemorySizes({id}); }
    // A record for the manual mode.
    static std::shared_ptr<ResourceEngine::ImageInfo> record(const Bytes& file, ResourceEngine::Format format);

    FreshStore store;

private:
    std::set<Hash> m_registered;
    std::uint64_t m_memory;
};

// Stands in for the RAW decoder as long as it lives. Unless told otherwise it takes every file for one of 3 x 2 pixels
// without a profile, and decodes it to opaque white.
class ScriptedRawDecoder
{
public:
    ScriptedRawDecoder();
    ~ScriptedRawDecoder();
    ScriptedRawDecoder(const ScriptedRawDecoder&) = delete;
    ScriptedRawDecoder& operator=(const ScriptedRawDecoder&) = delete;

    std::function<bool(const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile)> validate;
    std::function<Ondrel::Image(Ondrel::ResourceId id, const Ondrel::RunStatus& status)> process;

private:
    Ondrel::RawDecoder m_before;
};

// A point at which one thread stops until another lets it go on.
class Gate
{
public:
    void stopHere()
    {
        m_reached.set_value();
        m_opened.get_future().wait();
    }
    void waitUntilReached() { m_reached.get_future().wait(); }
    void open() { m_opened.set_value(); }

private:
    std::promise<void> m_reached, m_opened;
};

// True as soon as the call has returned; false if it seems to be stuck.
template <typename Result>
bool returns(const std::future<Result>& call)
{
    return call.wait_for(std::chrono::seconds(60)) == std::future_status::ready;
}

} // namespace OndrelTest
