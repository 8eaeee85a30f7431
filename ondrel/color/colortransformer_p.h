#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/color/cmstransform.h>
#include <ondrel/color/colormanager.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/core/image.h>
#include <ondrel/core/simdcompatibility.h>

#include <QImage>
#include <QMutex>

#include <array>
#include <atomic>
#include <unordered_map>
#include <vector>

// The display conversion and its settings. Any thread. Colour management is off until the first setOutputSettings().
//
// Order of locks: ColorManager's mutex may be held when this one is taken, in setOutputSettings(). So nothing here
// calls ColorManager while it holds its own.
class ONDREL_EXPORT ColorTransformerPrivate
{
public:
    static ColorTransformerPrivate* get();

    // Drops all cached transforms and takes the display's profile, as bytes, and intent. Bytes that are no profile turn
    // the conversion off; they are not looked at if `enabled` is false.
    void setOutputSettings(bool enabled, const std::vector<unsigned char>& displayProfile,
                           unsigned int renderingIntent);

    // As ColorTransformer::toQImage(); `level` chooses the instructions of the packing (256-bit vectors from SIMD_AVX
    // on), which must be ones that the processor has. The result does not depend on it.
    QImage toQImage(const Ondrel::Image& image, bool noColorManagement, SIMDCompatibility level);

private:
    using TransformCaches =
        std::unordered_map<std::array<unsigned char, 32>, Ondrel::ColorTransformCache, Ondrel::ColorProfileHashHasher>;

    QImage toManagedQImage(const Ondrel::Image& image, SIMDCompatibility level);

    std::atomic<bool> m_enabled{false}; // written under m_mutex; read without it to choose the way of a conversion
    QMutex m_mutex;                     // guards what follows, for the whole of a managed conversion
    Ondrel::OwnedProfile m_outputProfile;
    unsigned int m_renderingIntent = 0;
    TransformCaches m_transforms; // by the hash of the source
};
