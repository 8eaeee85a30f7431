#pragma once

#include <ondrel/nodes/modeinterface.h>

#include <optional>

// A mode whose subject is the picture of the edited node, wherever that lies on the one in view. Arrow keys nudge by a
// pixel of it, by ten with Shift; Escape gives up what has begun, and so does leaving the mode.
class PictureMode : public Ondrel::ModeInterface
{
public:
    using ModeInterface::ModeInterface;
    void hide(bool closing) override;
    void viewKeyPressEvent(QKeyEvent* event) override;
    void viewDrawOverCanvas(QPainter* painter, const QRectF& rect) final;

protected:
    virtual bool nudge(int dx, int dy); // false if there is nothing to nudge
    virtual void giveUp() = 0;
    virtual void draw(QPainter& painter) = 0; // in pixels of the view, once ready()

    bool ready() const { return transformSeries.pathCount() > 0 && !displaySize.isEmpty(); }
    QSize pictureSize() const { return transformSeries.baseSize(); }
    QTransform pictureToView() const;
    std::optional<QPointF> pictureAt(const QPointF& viewPoint) const;
};
