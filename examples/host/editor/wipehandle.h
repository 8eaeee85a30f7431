#pragma once

#include <QWidget>

namespace Host
{

// The line between the two pictures of a wipe, over a view: dragged with the left button, moved by the arrow keys. With
// setGripOnly() the mouse takes it by its grip alone, so that a mode gets the rest of the line.
class WipeHandle : public QWidget
{
    Q_OBJECT
public:
    explicit WipeHandle(QWidget* view);

    void placeAt(double x, const QRect& picture); // of the view; over the part of the picture that is to be seen
    void setGripOnly(bool gripOnly) { m_gripOnly = gripOnly; }

Q_SIGNALS:
    void dragged(double x); // of the view
    void stepped(int steps);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPointF grip() const;

    bool m_gripOnly = false;
    bool m_dragging = false;
    double m_lineX = 0;     // of this widget
    double m_grabbedAt = 0; // beside the line
};

} // namespace Host
