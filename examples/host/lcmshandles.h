#pragma once

#include <lcms2.h>

#include <memory>

namespace Host
{

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

// Owners of handles of Little CMS, whose own types say nothing of what they are.
using Profile = std::unique_ptr<void, CloseProfile>;
using Transform = std::unique_ptr<void, DeleteTransform>;

} // namespace Host
