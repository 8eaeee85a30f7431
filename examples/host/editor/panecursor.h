#pragma once

#include <QPointF>
#include <QWidget>

#include <optional>

class QKeyEvent;

namespace Host
{

class ImagePane;

// A cross over the view of a picture, for those without a mouse: the arrow keys move it by a pixel of the view, or of
// the picture where that is larger, by ten with Shift, and the colour below it is read out. Escape ends it. A mode has
// these keys for itself. With Ctrl the arrow keys move the picture, also in a mode. The view's.
class PaneCursor : public QWidget
{
    Q_OBJECT
public:
    explicit PaneCursor(ImagePane& pane);

    const std::optional<QPointF>& position() const { return m_position; } // in the scene of the view; none while hidden

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private Q_SLOTS:
    void follow(); // the picture

private:
    bool press(const QKeyEvent& event);
    void move(QPointF direction);
    void end();

    ImagePane& m_pane;
    std::optional<QPointF> m_position;
};

} // namespace Host
