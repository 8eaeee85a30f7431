#include "profiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <QFile>

using Profile = Ondrel::ColorManager::ColorProfile;

QByteArray toByteArray(const ProfileHash& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

std::vector<std::pair<QString, ProfileHash>> allProfiles()
{
    std::vector<std::pair<QString, ProfileHash>> list;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(
        list, {Profile::RGB, Profile::CMYK, Profile::Lab},
        {Profile::BuiltIn, Profile::System, Profile::User, Profile::Embedded});
    return list;
}

QString profileName(const ProfileHash& hash)
{
    for (const auto& [name, known] : allProfiles())
        if (known == hash)
            return name;
    return "none";
}

bool findProfile(const QString& text, ProfileHash& hash)
{
    if (text.isEmpty() || text == "embedded" || text == "none") {
        hash = text == "none" ? Ondrel::NoneColorProfile : Ondrel::EmbeddedColorProfile;
        return true;
    }
    for (const auto& [name, known] : allProfiles()) {
        if (name.compare(text, Qt::CaseInsensitive) == 0) {
            hash = known;
            return true;
        }
    }
    QFile file(text);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    return Ondrel::ColorManager::addColorProfile({bytes.begin(), bytes.end()}, Profile::Embedded, &hash);
}
