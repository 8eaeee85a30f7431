#pragma once

#include <ondrel/ondrel_export.h>

#include <QElapsedTimer>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Ondrel
{

// Pixels of three 16-bit samples between the display's RGB and Lab, encoded as Little CMS does. The transforms are
// built anew after a pause of more than ten seconds, so that a change of the display's profile arrives without a signal
// and a drag does not build any. User-interface thread only.
class ONDREL_EXPORT LabConverter
{
public:
    using Pixel = std::array<std::uint16_t, 3>;

    LabConverter();
    ~LabConverter();

    // To be called before each use by hand of the user.
    void prepare();

    // False, with `out` as it was, if Little CMS has no transform for the display's profile.
    bool toLab(const Pixel* rgb, Pixel* lab, std::size_t count) const;
    bool toRgb(const Pixel* lab, Pixel* rgb, std::size_t count) const;

    // How often the transforms were built.
    int builds() const { return m_builds; }

private:
    struct Transforms;

    std::unique_ptr<Transforms> m_transforms;
    QElapsedTimer m_timer;
    int m_builds = 0;
};

} // namespace Ondrel
