#pragma once

#include "../../mode/cropmode.h"

#include <array>

namespace Essentials
{

// Edits the node's left, top, width and height.
class CropNodeMode : public CropMode
{
    Q_OBJECT
public:
    using CropMode::CropMode;
    void canvasGeometryChanged(const QSize& displaySize, const QSize& realSize,
                               const Ondrel::TransformSeries& series) override;
    void nodeInputChanged(unsigned long fieldIndex, const QVariant& value) override;
    bool previewMode() const override { return true; } // all of the picture is shown while it is cut

protected:
    void tellFrame() override;

private:
    void takeValues();

    std::array<int, 4> m_values = {0, 0, 0, 0}; // as the node has them: a length of 0 goes to the edge
};

} // namespace Essentials
