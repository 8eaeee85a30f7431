#pragma once

// A profile of which a display can be said to be, other than that of which it is taken to be.

#include <ondrel/color/colormanager.h>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>

#include <array>
#include <utility>
#include <vector>

namespace Host
{

inline QByteArray proPhotoProfile()
{
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    using Profile = Ondrel::ColorManager::ColorProfile;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB}, {Profile::BuiltIn});
    for (const auto& [name, hash] : profiles) {
        if (name.contains("ProPhoto"))
            return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
    }
    ADD_FAILURE() << "no ProPhoto RGB";
    return QByteArray();
}

} // namespace Host
