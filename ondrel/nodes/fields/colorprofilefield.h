#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fields/comboboxfield.h>

#include <QByteArray>
#include <QString>

#include <array>
#include <utility>
#include <vector>

namespace Ondrel
{

// A combo box of colour profiles, which are named by their hashes (see ColorManager). It is empty until
// updateColorProfiles() fills it.
class ONDREL_EXPORT ColorProfileField : public ComboBoxInputField
{
    Q_OBJECT
public:
    // An entry before all profiles, with a hash that means what its owner likes; none if the name is empty.
    ColorProfileField(const QString& name, QGraphicsItem* parent, const QString& displayName,
                      const QString& firstEntryName, const QByteArray& firstEntryHash);

    // 32 bytes; empty if nothing is chosen.
    QByteArray hashValue() const;

    // Chooses the profile; if it is not listed the first entry, or without one the default profile. If that is not
    // listed either, the choice stays.
    void setValueByHash(const QByteArray& hash);

    // Replaces the list, with setValueByHash() of the profile that was chosen. currentIndexChanged() is not emitted.
    void updateColorProfiles(std::vector<std::pair<QString, std::array<unsigned char, 32>>>& profiles);

private:
    bool choose(const QByteArray& hash);

    QString m_firstEntryName;
    QByteArray m_firstEntryHash;
    std::vector<QByteArray> m_hashes; // one for each item
};

} // namespace Ondrel
