#pragma once

#include <lcms2.h>

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>
#include <string>
#include <vector>

// Profiles that the tests make with Little CMS itself, and small helpers around them.
namespace OndrelTest
{

using Hash = std::array<unsigned char, 32>;
using Bytes = std::vector<unsigned char>;

struct CloseProfile {
    void operator()(void* profile) const;
};
using Profile = std::unique_ptr<void, CloseProfile>;

// An RGB profile with sRGB primaries and the given gamma. Without a description if `description` is empty.
Profile rgbProfile(double gamma, const std::string& description);
Profile flatProfile(); // RGB; tells no values below a quarter apart, so that converting to and fro loses them
Profile greyProfile();
Profile labProfile();
Profile cmykProfile(); // a device link's space is CMYK: it registers, and fits no RGB transform

// A profile of any device colour space with a table to Lab for each intent, from which transforms can be built; to it,
// none can.
Profile tableProfile(cmsColorSpaceSignature space);

// The profile as it comes back from its saved bytes, in which numbers are rounded: what the registry hands out.
Profile reopened(const Profile& profile);

// The bytes of a fresh handle, as Little CMS saves them.
Bytes savedBytes(void* profile);

QByteArray toByteArray(const Hash& hash);
Hash wordHash(const char* word);

// All output to standard out while body() runs.
template <typename Body>
std::string captureStandardOutput(Body body);

} // namespace OndrelTest

#include <gtest/gtest.h>

template <typename Body>
std::string OndrelTest::captureStandardOutput(Body body)
{
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}
