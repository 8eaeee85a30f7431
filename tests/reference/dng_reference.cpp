#include "dng_reference.h"

#include "raw_reference.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/raw.h>

#include <lcms2.h>

#include <algorithm>
#include <map>

namespace OndrelReference
{
namespace
{

using Ondrel::Image;

// The numbers of a TIFF directory by their tags; rationals are two each.
class Tags
{
public:
    explicit Tags(const std::vector<unsigned char>& file)
        : m_file(file)
    {
        const std::size_t place = number(4, 4), count = number(place, 2);
        for (std::size_t i = 0; i < count; ++i)
            readEntry(place + 2 + 12 * i);
    }
    bool has(unsigned int tag) const { return m_numbers.count(tag) != 0; }
    const std::vector<unsigned int>& all(unsigned int tag) const { return m_numbers.at(tag); }
    unsigned int first(unsigned int tag) const { return m_numbers.at(tag).at(0); }
    double rational(unsigned int tag, std::size_t index) const
    {
        return double(static_cast<std::int32_t>(all(tag).at(2 * index))) / all(tag).at(2 * index + 1);
    }
    unsigned int number(std::size_t place, std::size_t size) const
    {
        unsigned int value = 0;
        for (std::size_t i = size; i-- > 0;)
            value = value << 8 | m_file.at(place + i);
        return value;
    }

private:
    void readEntry(std::size_t place)
    {
        const unsigned int type = number(place + 2, 2);
        const std::size_t isPair = type == 5 || type == 10, size = type == 3 ? 2 : type <= 2 ? 1 : 4;
        const std::size_t count = number(place + 4, 4) * (isPair ? 2 : 1);
        const std::size_t data = count * size <= 4 ? place + 8 : number(place + 8, 4);
        std::vector<unsigned int>& numbers = m_numbers[number(place, 2)];
        for (std::size_t i = 0; i < count; ++i)
            numbers.push_back(number(data + i * size, size));
    }

    const std::vector<unsigned char>& m_file;
    std::map<unsigned int, std::vector<unsigned int>> m_numbers;
};

// LibRaw's word for a TIFF orientation.
int flipOf(unsigned int orientation)
{
    constexpr int kFlips[] = {0, 0, 1, 3, 2, 4, 6, 7, 5};
    return kFlips[orientation];
}

} // namespace

DngNumbers::DngNumbers(const std::vector<unsigned char>& file)
{
    const Tags tags(file);
    width = tags.first(256);
    height = tags.first(257);
    orientation = tags.first(274);
    channels = tags.first(277);
    if (tags.has(33422)) {
        patternSide = tags.first(33421);
        pattern = tags.all(33422);
    }
    if (tags.has(50712))
        table = tags.all(50712);
    blackSide = tags.has(50713) ? tags.first(50713) : 1;
    blacks = tags.all(50714);
    white = tags.first(50717);
    hasMatrix = tags.has(50721);
    for (std::size_t i = 0; i < 9 && hasMatrix; ++i)
        matrix[i / 3][i % 3] = float(tags.rational(50721, i));
    for (std::size_t i = 0; i < 3 && tags.has(50728); ++i)
        neutral[i] = tags.rational(50728, i);
    for (std::size_t i = 0; i < std::size_t(width) * height * channels; ++i)
        samples.push_back(static_cast<std::uint16_t>(tags.number(tags.first(273) + 2 * i, 2)));
}

unsigned int DngNumbers::colorAt(std::uint32_t x, std::uint32_t y) const
{
    return patternSide ? pattern.at(y % patternSide * patternSide + x % patternSide) : 0;
}

unsigned int DngNumbers::darkest() const
{
    return *std::min_element(blacks.begin(), blacks.end());
}

// Each sample at its colour, behind the linearisation table. The black level is subtracted where there is one channel;
// LibRaw leaves those of three channels in, and their white level as it is.
Image DngNumbers::unscaled() const
{
    Image image(width, height);
    image.FastFill(0);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            for (std::uint32_t c = 0; c < channels; ++c) {
                const std::size_t pixel = std::size_t(y) * width + x;
                unsigned int value = samples.at(pixel * channels + c);
                if (!table.empty())
                    value = table[std::min<std::size_t>(value, table.size() - 1)];
                const unsigned int black = blackSide == 2 ? blacks.at(y % 2 * 2 + x % 2) : blacks.at(0);
                if (channels == 1)
                    value = value > black ? value - black : 0;
                image.data[4 * pixel + (channels == 1 ? colorAt(x, y) : c)] = static_cast<std::uint16_t>(value);
            }
    return image;
}

Image DngNumbers::decoded() const
{
    const int flip = flipOf(orientation);
    Image image = unscaled();
    scaleColors(0, channels == 1 ? white - darkest() : white, image);
    image = turned(image, flip);
    for (std::size_t i = 0; i < samples.size() && channels == 1 && !patternSide; ++i)
        image.data[4 * i + 1] = image.data[4 * i + 2] = image.data[4 * i];
    image.rawHasInfo = true;
    image.rawRotation = rawRotation(flip);
    image.rawIsMosaic = patternSide != 0;
    for (unsigned int field = 0; field < 16 && patternSide == 2; ++field)
        image.rawFilters |= colorAt(field & 1, field >> 1) << (2 * field);
    if (patternSide == 6) {
        image.rawFilters = 9; // as LibRaw names X-Trans
        for (unsigned int i = 0; i < 36; ++i)
            image.rawXTrans[i / 6][i % 6] = static_cast<unsigned char>(pattern[i]);
    }
    image.colorProfile = Ondrel::DefaultRawColorProfileHash;
    if (void* const profile = rawColorProfile(matrix)) {
        std::vector<unsigned char> bytes;
        Ondrel::GetICCProfileData(profile, bytes);
        cmsCloseProfile(profile);
        image.colorProfile = Ondrel::ColorManager::buildColorProfileHash(bytes);
    }
    return image;
}

} // namespace OndrelReference
