#pragma once

#include <lcms2.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

// Owners for what Little CMS hands out. None of its close functions is called with null: some of them abort.

namespace Ondrel
{

struct CloseProfile {
    void operator()(void* profile) const noexcept { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void* transform) const noexcept { cmsDeleteTransform(transform); }
};
struct DeleteContext {
    void operator()(cmsContext context) const noexcept { cmsDeleteContext(context); }
};
struct FreeToneCurve {
    void operator()(cmsToneCurve* curve) const noexcept { cmsFreeToneCurve(curve); }
};
struct FreeMLU {
    void operator()(cmsMLU* mlu) const noexcept { cmsMLUfree(mlu); }
};

using OwnedProfile = std::unique_ptr<void, CloseProfile>;
using OwnedTransform = std::unique_ptr<void, DeleteTransform>;
using OwnedContext = std::unique_ptr<std::remove_pointer_t<cmsContext>, DeleteContext>;
using OwnedToneCurve = std::unique_ptr<cmsToneCurve, FreeToneCurve>;
using OwnedMLU = std::unique_ptr<cmsMLU, FreeMLU>;

// Null if the bytes are no profile. Little CMS keeps a copy of them.
inline OwnedProfile openProfile(const unsigned char* data, std::size_t size)
{
    if (!data || size == 0 || size > std::numeric_limits<cmsUInt32Number>::max())
        return nullptr;
    return OwnedProfile(cmsOpenProfileFromMem(data, static_cast<cmsUInt32Number>(size)));
}

inline OwnedProfile openProfile(const std::vector<unsigned char>& data)
{
    return openProfile(data.data(), data.size());
}

} // namespace Ondrel
