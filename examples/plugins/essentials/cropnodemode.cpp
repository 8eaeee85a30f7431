#include "cropnodemode.h"

#include <algorithm>

namespace Essentials
{
namespace
{

constexpr unsigned long kLeft = 2; // among the fields of nodes/crop.xml; top, width and height follow

int lengthOf(int wanted, int start, int whole)
{
    return wanted == 0 ? whole - start : std::min(wanted, whole - start);
}

} // namespace

void CropNodeMode::canvasGeometryChanged(const QSize& newDisplaySize, const QSize& newRealSize,
                                         const Ondrel::TransformSeries& series)
{
    const QSize before = pictureSize();
    CropMode::canvasGeometryChanged(newDisplaySize, newRealSize, series);
    if (pictureSize() != before)
        takeValues();
}

void CropNodeMode::nodeInputChanged(unsigned long fieldIndex, const QVariant& value)
{
    if (fieldIndex < kLeft || fieldIndex >= kLeft + m_values.size())
        return;
    m_values[fieldIndex - kLeft] = value.toInt();
    takeValues();
}

void CropNodeMode::takeValues()
{
    const QSize size = pictureSize();
    if (size.isEmpty())
        return;
    const int left = std::clamp(m_values[0], 0, size.width() - 1), top = std::clamp(m_values[1], 0, size.height() - 1);
    const int width = lengthOf(m_values[2], left, size.width()), height = lengthOf(m_values[3], top, size.height());
    const Rect taken(QPoint(left, top), QSize(std::max(1, width), std::max(1, height)));
    if (!(frame() == taken))
        showFrame(taken);
}

void CropNodeMode::tellFrame()
{
    m_values = {frame().left(), frame().top(), frame().width(), frame().height()};
    for (unsigned long i = 0; i + 1 < m_values.size(); ++i)
        Q_EMIT inputValueChangedNoUpdate(kLeft + i, QString::number(m_values[i]));
    Q_EMIT inputValueChanged(kLeft + 3, QString::number(m_values[3]));
}

} // namespace Essentials
