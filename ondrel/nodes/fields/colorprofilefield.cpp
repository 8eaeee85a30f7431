#include <ondrel/color/colormanager.h>
#include <ondrel/nodes/fields/colorprofilefield.h>

#include <QSignalBlocker>

#include <algorithm>

namespace Ondrel
{
namespace
{

QByteArray bytesOf(const std::array<unsigned char, 32>& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

} // namespace

ColorProfileField::ColorProfileField(const QString& name, QGraphicsItem* parent, const QString& displayName,
                                     const QString& firstEntryName, const QByteArray& firstEntryHash)
    : ComboBoxInputField(name, parent, displayName, QStringList(), 0, List)
    , m_firstEntryName(firstEntryName)
    , m_firstEntryHash(firstEntryHash)
{
}

QByteArray ColorProfileField::hashValue() const
{
    const int index = currentIndex();
    return index >= 0 && std::size_t(index) < m_hashes.size() ? m_hashes[std::size_t(index)] : QByteArray();
}

bool ColorProfileField::choose(const QByteArray& hash)
{
    const auto found = std::find(m_hashes.begin(), m_hashes.end(), hash);
    if (found == m_hashes.end())
        return false;
    setCurrentIndex(int(found - m_hashes.begin()));
    return true;
}

void ColorProfileField::setValueByHash(const QByteArray& hash)
{
    if (!choose(hash))
        choose(m_firstEntryName.isEmpty() ? bytesOf(DefaultColorProfileHash) : m_firstEntryHash);
}

void ColorProfileField::updateColorProfiles(std::vector<std::pair<QString, std::array<unsigned char, 32>>>& profiles)
{
    const QByteArray chosen = hashValue();
    m_hashes.clear();
    QStringList names;
    if (!m_firstEntryName.isEmpty()) {
        names.append(m_firstEntryName);
        m_hashes.push_back(m_firstEntryHash);
    }
    for (const auto& [name, hash] : profiles) {
        names.append(name);
        m_hashes.push_back(bytesOf(hash));
    }
    setChoices(names);
    const QSignalBlocker blocker(this);
    setValueByHash(chosen);
}

} // namespace Ondrel
