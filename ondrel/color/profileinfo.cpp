#include <ondrel/color/profileinfo_p.h>

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace Ondrel
{
namespace
{

constexpr int kMaximumDepth = 64;

void appendFiles(const QString& directory, int depth, QSet<QString>& visited, QStringList& files)
{
    const QString canonical = QFileInfo(directory).canonicalFilePath();
    if (canonical.isEmpty() || depth > kMaximumDepth || visited.contains(canonical))
        return;
    visited.insert(canonical);
    const QStringList entries = QDir(directory).entryList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        const QString path = directory + QLatin1Char('/') + entry;
        const QFileInfo info(path);
        if (info.isDir())
            appendFiles(path, depth + 1, visited, files);
        else if (info.isFile())
            files.append(path);
    }
}

QString typeWord(ColorManager::ColorProfile::Type type)
{
    switch (type) {
    case ColorManager::ColorProfile::BuiltIn:
        return QStringLiteral("Built-in");
    case ColorManager::ColorProfile::System:
        return QStringLiteral("System");
    case ColorManager::ColorProfile::User:
        return QStringLiteral("User");
    case ColorManager::ColorProfile::Embedded:
        return QStringLiteral("Embedded");
    }
    return {};
}

} // namespace

QString readProfileInfo(const std::vector<unsigned char>& data, cmsInfoType info)
{
    const OwnedProfile profile = openProfile(data);
    if (!profile)
        return {};
    std::array<char, 512> text{};
    cmsGetProfileInfoASCII(profile.get(), info, "en", "US", text.data(), 511);
    return QString::fromUtf8(text.data());
}

QString nameWithoutDescription(const std::array<unsigned char, 32>& hash, ColorManager::ColorProfile::Type type)
{
    const auto end = std::find(hash.begin(), hash.end(), static_cast<unsigned char>(0));
    const QByteArray bytes(reinterpret_cast<const char*>(hash.data()), static_cast<int>(end - hash.begin()));
    return QString::fromLatin1(bytes) + QStringLiteral(" (") + typeWord(type) + QLatin1Char(')');
}

QStringList profileFilesBelow(const QString& directory)
{
    QSet<QString> visited;
    QStringList files;
    appendFiles(directory, 0, visited, files);
    return files;
}

} // namespace Ondrel
