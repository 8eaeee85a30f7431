#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/resources/chromaticityprofile_p.h>
#include <ondrel/resources/raw.h>

#include <Eigen/Dense>
#include <libraw/libraw.h>

namespace
{

using Matrix = Eigen::Matrix3d;

std::array<unsigned char, 32> linearHash()
{
    const Ondrel::OwnedProfile profile(Ondrel::CreateLinear_sRGBColorProfile());
    return Ondrel::ColorManager::buildColorProfileHash(profile.get());
}

Matrix transposedCameraMatrix(const libraw_data_t& data)
{
    const auto& rows = data.idata.dng_version != 0 ? data.color.dng_color[0].colormatrix : data.color.cam_xyz;
    Matrix transposed;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            transposed(column, row) = static_cast<double>(rows[row][column]);
    return transposed;
}

// The sum is rounded to float, which the hashes of the profiles depend on.
cmsCIExyY chromaticity(const Matrix& primaries, int row)
{
    const double x = primaries(row, 0), y = primaries(row, 1), z = primaries(row, 2);
    const auto sum = static_cast<double>(static_cast<float>(x + y + z));
    return {x / sum, y / sum, 1.0};
}

} // namespace

namespace Ondrel
{

const std::array<unsigned char, 32> DefaultRawColorProfileHash = linearHash();

} // namespace Ondrel

void* GetRawColorProfile(const LibRaw& raw)
{
    cmsCIExyY white;
    cmsWhitePointFromTemp(&white, 6503.6);
    Matrix inverse;
    double determinant = 0.0;
    bool isInvertible = false;
    transposedCameraMatrix(raw.imgdata).computeInverseAndDetWithCheck(inverse, determinant, isInvertible, 1e-12);
    if (!isInvertible)
        return nullptr;
    const cmsCIExyYTRIPLE primaries = {chromaticity(inverse, 0), chromaticity(inverse, 1), chromaticity(inverse, 2)};
    const cmsFloat64Number gammaAndScale[2] = {1.0, 0.0};
    const Ondrel::OwnedToneCurve linear(cmsBuildParametricToneCurve(nullptr, 1, gammaAndScale));
    cmsToneCurve* const curves[3] = {linear.get(), linear.get(), linear.get()};
    return Ondrel::createChromaticityProfile(white, primaries, curves, "RAW Image RGB").release();
}
