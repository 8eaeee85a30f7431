#include <ondrel/core/histogrambins_p.h>
#include <ondrel/core/image.h>
#include <ondrel/core/parallel_p.h>
#include <ondrel/core/pixelsinblock_p.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

namespace Ondrel
{
namespace
{

enum Channel : std::size_t { Luminance, Lightness, Red, Green, Blue, ChannelCount };

using Lists = std::array<unsigned int*, ChannelCount>;

// The definition of a sample's bin.
struct ExactBins {
    explicit ExactBins(unsigned int bins)
        : scale((bins - 1) / 65535.0)
    {
    }
    std::size_t truncated(unsigned int v) const { return static_cast<std::size_t>(v * scale); }
    // Not std::lround(): the sum itself rounds. NOLINTNEXTLINE(bugprone-incorrect-roundings)
    std::size_t rounded(unsigned int v) const { return static_cast<std::size_t>(v * scale + 0.5); }

    double scale;
};

// The same in fixed point with 32 fractional bits, for vectors. Not every number of bins allows it.
struct FixedBins {
    explicit FixedBins(unsigned int bins)
        : factor(static_cast<std::uint32_t>((bins - 1) / 65535.0 * 4294967296.0) + 1)
    {
    }
    std::size_t truncated(unsigned int v) const { return std::uint64_t{v} * factor >> 32; }
    std::size_t rounded(unsigned int v) const { return (std::uint64_t{v} * factor + (std::uint64_t{1} << 31)) >> 32; }

    bool equals(const ExactBins& exact) const
    {
        bool equal = true;
        for (unsigned int v = 0; v <= 65535; ++v)
            equal &= truncated(v) == exact.truncated(v) && rounded(v) == exact.rounded(v);
        return equal;
    }

    std::uint32_t factor;
};

// The channels that a loop counts.
template <bool WithLuminance, bool WithLightness, bool WithColors>
struct Counting {
    static void count(const std::uint16_t* pixels, std::size_t count, const Lists& lists, const Lists&,
                      std::size_t lastBin, const ExactBins& bins)
    {
        for (const std::uint16_t* pixel = pixels; pixel != pixels + 4 * count; pixel += 4) {
            if constexpr (WithLuminance)
                ++lists[Luminance][std::min(lastBin, bins.truncated(luminanceOf(pixel)))];
            if constexpr (WithLightness)
                ++lists[Lightness][bins.rounded(lightnessOf(pixel))];
            if constexpr (WithColors) {
                for (std::size_t c = 0; c < 3; ++c)
                    ++lists[Red + c][bins.truncated(pixel[c])];
            }
        }
    }

    static void count(const std::uint16_t* pixels, std::size_t count, const Lists& even, const Lists& odd, std::size_t,
                      const FixedBins& bins)
    {
        alignas(64) std::uint16_t buffer[kPiece * 4];
        for (std::size_t done = 0; done < count; done += kPiece, pixels += 4 * kPiece) {
            const std::size_t length = std::min(kPiece, count - done);
            if constexpr (WithLuminance) {
                binsOfPixels(pixels, length, bins.factor, FourthBin::Luminance, buffer);
                addBins<Luminance, WithColors && !WithLightness>(buffer, length, even, odd);
            }
            if constexpr (WithLightness || !WithLuminance) {
                binsOfPixels(pixels, length, bins.factor, FourthBin::Lightness, buffer);
                addBins<WithLightness ? Lightness : ChannelCount, WithColors>(buffer, length, even, odd);
            }
        }
    }

private:
    static constexpr std::size_t kPiece = 1024; // pixels whose bins stay in the first-level cache

    // Pixels go to two sets of lists in turn: neighbours often fall into one bin, and would wait for each other's
    // store.
    template <Channel fourth, bool colors>
    static void addBins(const std::uint16_t* bins, std::size_t count, const Lists& even, const Lists& odd)
    {
        const auto addOne = [](const std::uint16_t* bin, const Lists& lists) {
            if constexpr (colors) {
                for (std::size_t c = 0; c < 3; ++c)
                    ++lists[Red + c][bin[c]];
            }
            if constexpr (fourth != ChannelCount)
                ++lists[fourth][bin[3]];
        };
        std::size_t i = 0;
        for (; i + 1 < count; i += 2) {
            addOne(bins + 4 * i, even);
            addOne(bins + 4 * i + 4, odd);
        }
        if (i < count)
            addOne(bins + 4 * i, even);
    }
};

template <typename Body>
void withConstant(bool value, Body body)
{
    if (value)
        body(std::true_type());
    else
        body(std::false_type());
}

// Counters of all channels for a few shares of the pixels, so that threads need no lock.
class Counters
{
public:
    Counters(std::size_t pixels, std::array<bool, ChannelCount> channels, std::size_t bins)
        : m_channels(channels)
        , m_bins(bins)
        , m_pixels(pixels)
        , m_shares(bins <= kManyBins && pixels >= kManyPixels ? 16 : 1)
        , m_sets(bins <= kManyBins ? 2 : 1)
        , m_counters(m_shares * m_sets * stride())
    {
    }

    template <typename Bins>
    void count(const std::uint16_t* samples, Bins bins)
    {
        withConstant(m_channels[Luminance], [&](auto luminance) {
            withConstant(m_channels[Lightness], [&](auto lightness) {
                withConstant(m_channels[Red], [&](auto colors) {
                    parallelRanges(m_shares, 1, [&](std::size_t firstShare, std::size_t lastShare) {
                        for (std::size_t share = firstShare; share < lastShare; ++share) {
                            const std::size_t first = m_pixels * share / m_shares;
                            const std::size_t last = m_pixels * (share + 1) / m_shares;
                            Counting<luminance, lightness, colors>::count(samples + first * 4, last - first,
                                                                          lists(share, 0), lists(share, m_sets - 1),
                                                                          m_bins - 1, bins);
                        }
                    });
                });
            });
        });
    }

    void addTo(std::vector<unsigned int>& result, Channel channel)
    {
        result.assign(m_bins, 0);
        for (std::size_t share = 0; share < m_shares; ++share) {
            for (std::size_t set = 0; set < m_sets; ++set) {
                const unsigned int* list = lists(share, set)[channel];
                for (std::size_t bin = 0; bin < m_bins; ++bin)
                    result[bin] += list[bin];
            }
        }
    }

    static constexpr std::size_t kManyBins = 4096;
    static constexpr std::size_t kManyPixels = std::size_t{1} << 18;

private:
    std::size_t stride() const
    {
        return m_bins * static_cast<std::size_t>(std::count(m_channels.begin(), m_channels.end(), true));
    }

    Lists lists(std::size_t share, std::size_t set)
    {
        unsigned int* next = m_counters.data() + (share * m_sets + set) * stride();
        Lists result{};
        for (std::size_t channel = 0; channel < ChannelCount; ++channel) {
            if (m_channels[channel]) {
                result[channel] = next;
                next += m_bins;
            }
        }
        return result;
    }

    std::array<bool, ChannelCount> m_channels;
    std::size_t m_bins;
    std::size_t m_pixels;
    std::size_t m_shares;
    std::size_t m_sets;
    std::vector<unsigned int> m_counters;
};

} // namespace

void Image::BuildHistogram(Histogram& histogram, bool luminance, bool lightness, bool red, bool green, bool blue,
                           unsigned int bins) const
{
    const std::array<std::vector<unsigned int>*, ChannelCount> results = {
        &histogram.luminance, &histogram.lightness, &histogram.red, &histogram.green, &histogram.blue};
    const std::array<bool, ChannelCount> wanted = {luminance, lightness, red, green, blue};
    for (std::vector<unsigned int>* result : results)
        result->clear();
    if (width == 0 || height == 0 || bins == 0)
        return;

    const bool colors = red || green || blue; // they come together at little cost
    const std::size_t pixels = pixelsInBlock(*this);
    Counters counters(pixels, {luminance, lightness, colors, colors, colors}, bins);
    const ExactBins exact(bins);
    // The comparison pays only for a large image.
    const bool tryFixed = bins <= Counters::kManyBins && pixels >= Counters::kManyPixels;
    const FixedBins fixed(tryFixed ? bins : 1);
    if (tryFixed && fixed.equals(exact))
        counters.count(data, fixed);
    else
        counters.count(data, exact);
    for (std::size_t channel = 0; channel < ChannelCount; ++channel) {
        if (wanted[channel])
            counters.addTo(*results[channel], static_cast<Channel>(channel));
    }
}

} // namespace Ondrel
