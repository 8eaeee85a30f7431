#pragma once

#include "../../mode/picturemode.h"

#include <ondrel/core/color.h>

#include <QPolygonF>

#include <optional>

namespace Essentials
{

// Paints strokes with the left button. The keys [ and ] make the brush smaller and larger, with Shift softer and
// harder; Escape gives a stroke up. Without a mouse, the arrow keys move the brush by four pixels of the view, by forty
// with Shift, and Space puts it down and lifts it. Each stroke is one change of the node's value.
class PaintMode : public PictureMode
{
    Q_OBJECT
public:
    using PictureMode::PictureMode;
    int brushSize() const { return m_size; } // the diameter, in pixels of the picture
    double hardness() const { return m_tenths / 10.0; }

    void createDockWidgets(std::vector<QDockWidget*>& widgets) override;
    QWidget* createStatusBarWidget() override;
    void nodeInputChanged(unsigned long fieldIndex, const QVariant& value) override;
    void viewMousePressEvent(QMouseEvent* event) override;
    void viewMouseMoveEvent(QMouseEvent* event) override;
    void viewMouseReleaseEvent(QMouseEvent* event) override;
    void viewMouseLeaveEvent(QEvent* event) override;
    void viewKeyPressEvent(QKeyEvent* event) override;
    bool isPaintingMode() const override { return true; }
    QString modeName() const override;

protected:
    bool nudge(int dx, int dy) override;
    void giveUp() override;
    void draw(QPainter& painter) override;

Q_SIGNALS:
    void brushChanged();

private Q_SLOTS:
    void chooseColor(const Ondrel::Color& color);

private:
    void setBrush(int size, int tenths);
    double brushInView() const; // its radius
    void placeCursor();
    void showCursor();
    void lowerOrLift();
    void finishStroke();
    void drawBrush(QPainter& painter, const QPointF& at) const;

    QVariantList m_strokes;           // all of the node's
    QPolygonF m_points;               // of the stroke that is being painted, in the picture
    std::optional<QPointF> m_pointer; // the mouse, in the view
    std::optional<QPointF> m_cursor;  // what the keys move, in the picture; until the mouse moves
    bool m_isLowered = false;         // by a key
    Ondrel::Color m_color = Ondrel::Color(65535, 52428, 0, 65535);
    int m_size = 40;
    int m_tenths = 5; // of hardness
};

} // namespace Essentials
