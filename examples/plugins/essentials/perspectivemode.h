#pragma once

#include "../../mode/picturemode.h"

#include <array>
#include <optional>

namespace Essentials
{

// Moves the four corners of the node's picture. Drag one with the left button; Escape gives the drag up. Space chooses
// a corner, with Shift the one before, which the arrow keys move by a pixel, by ten with Shift.
class PerspectiveMode : public PictureMode
{
    Q_OBJECT
public:
    using PictureMode::PictureMode;
    std::optional<QPointF> cornerInView(std::size_t corner) const; // nothing before the geometry is known

    void nodeInputChanged(unsigned long fieldIndex, const QVariant& value) override;
    void viewMousePressEvent(QMouseEvent* event) override;
    void viewMouseMoveEvent(QMouseEvent* event) override;
    void viewMouseReleaseEvent(QMouseEvent* event) override;
    void viewKeyPressEvent(QKeyEvent* event) override;
    bool previewMode() const override { return m_growing; }
    QWidget* createStatusBarWidget() override;
    QString modeName() const override;

protected:
    bool nudge(int dx, int dy) override;
    void giveUp() override;
    void draw(QPainter& painter) override;

private:
    using Points = std::array<QPointF, 4>;   // in fractions of the picture: top left, and on clockwise
    void showCorners(const Points& corners); // without telling the host
    QTransform resultToView() const;
    void tell();

    Points m_corners = {QPointF(0, 0), QPointF(1, 0), QPointF(1, 1), QPointF(0, 1)};
    Points m_applied = m_corners; // those that the node has
    std::optional<Points> m_beforeDrag;
    std::size_t m_corner = 0; // the chosen one
    bool m_growing = false;   // the result is as large as its corners want: there is no fixed ground under them
};

} // namespace Essentials
