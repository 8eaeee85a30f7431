// What a user does on the canvas of the editor.

#include "editorfixture.h"

#include "scene.h"
#include "sceneview.h"

#include <QApplication>
#include <QGraphicsEffect>
#include <QMouseEvent>
#include <QTest>

using namespace Host;

namespace
{

class CanvasByMouse : public Editor
{
protected:
    SceneView& view() { return window.sceneView(); }
    Scene& scene() { return window.scene(); }
    PreviewNode& item(const QString& name) { return *scene().item(id(name)); }

    // The canvas when nothing is left to be drawn.
    QImage shown()
    {
        QImage last;
        for (int i = 0; i < 50; ++i) {
            QApplication::processEvents();
            const QImage now = view().viewport()->grab().toImage();
            if (now == last)
                break;
            last = now;
        }
        return last;
    }
};

// The largest difference of a channel. Layers that are blended one by one round once more than their picture.
int difference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 255;
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            most = std::max(
                {most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return most;
}

} // namespace

TEST_F(CanvasByMouse, PicturesOfNodesShowWhatTheNodesShow)
{
    addChain();
    play("wait");
    view().resetTransform();
    view().centerOn(300, 150);
    const auto without = [this] {
        for (const auto& [node, each] : scene().nodeItems())
            each->graphicsEffect()->setEnabled(false);
        const QImage image = shown();
        for (const auto& [node, each] : scene().nodeItems())
            each->graphicsEffect()->setEnabled(true);
        return image;
    };
    const QImage first = shown();
    EXPECT_LE(difference(first, without()), 3);
    play("slide Blur radiusx 0.7\nselect Levels\nwait");
    const QImage second = shown();
    EXPECT_NE(second, first);
    EXPECT_LE(difference(second, without()), 3);
    play("set Blur radiusx 3\nselect Levels\nkey D\nwait");
    const QImage third = shown();
    EXPECT_NE(third, second);
    EXPECT_LE(difference(third, without()), 3);
}
