// What goes along with the work of the editor: animations, the histogram, files that are dropped.

#include "editorfixture.h"

#include "histogramdock.h"
#include "imagepane.h"
#include "pictures.h"
#include "scene.h"

#include "../../examples/mode/canvasview.h"

#include <ondrel/widgets/histogramwidget.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <map>

using namespace Host;

namespace
{

class Following : public Editor
{
protected:
    int runningTimers(const QString& name)
    {
        int running = 0;
        for (const QTimer* const timer : window.scene().item(id(name))->findChildren<QTimer*>())
            running += timer->isActive() ? 1 : 0;
        return running;
    }
    Ondrel::HistogramWidget& histogram()
    {
        return *window.findChild<HistogramDock*>()->findChild<Ondrel::HistogramWidget*>();
    }
    // The dock's, and one that counts the picture itself.
    static QImage drawn(Ondrel::HistogramWidget& widget)
    {
        QImage picture(widget.size(), QImage::Format_RGB32);
        picture.fill(Qt::darkGray);
        widget.render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
        return picture;
    }
    QImage shownHistogram() { return drawn(histogram()); }
    QImage histogramOf(const QString& name)
    {
        Ondrel::HistogramWidget fresh(nullptr);
        fresh.resize(histogram().size());
        fresh.setPalette(histogram().palette());
        bool isCounted = false;
        QObject::connect(&fresh, QOverload<>::of(&Ondrel::HistogramWidget::histogramBuilt), [&] { isCounted = true; });
        fresh.update(freshPicture(id(name)).image);
        EXPECT_TRUE(QTest::qWaitFor([&] { return isCounted; }));
        return drawn(fresh);
    }
};

} // namespace

TEST_F(Following, NodeIsDrawnAnewWhileItIsBusyAndRestsAfterwards)
{
    addChain();
    settle();
    const PreviewNode& blur = *window.scene().item(id("Blur"));
    const QRectF header =
        blur.mapRectToScene(QRectF(0, 0, blur.rect().width(), double(Node::headerHeight()))).adjusted(5, 5, -5, -5);
    int drawn = 0;
    QObject::connect(&window.scene(), &QGraphicsScene::changed, &window, [&](const QList<QRectF>& areas) {
        drawn += std::any_of(areas.begin(), areas.end(), [&](const QRectF& area) { return area.intersects(header); });
    });
    EXPECT_EQ(runningTimers("Blur"), 0);
    window.scene().setBusy(id("Blur"), true);
    EXPECT_EQ(runningTimers("Blur"), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawn >= 4; })) << drawn;
    window.scene().setBusy(id("Blur"), false);
    EXPECT_EQ(runningTimers("Blur"), 0);
    QTest::qWait(20); // what was asked for already
    drawn = 0;
    QTest::qWait(300);
    EXPECT_EQ(drawn, 0);
}

TEST_F(Following, NodesAreBusyWhileTheyAreComputedAndNoTimerIsLeft)
{
    addChain();
    settle();
    QStringList begun, ended;
    QObject::connect(&window.pictures().evaluator(), &Evaluator::nodeBusy, &window, [&](NodeId node, bool isBusy) {
        (isBusy ? begun : ended).append(graph().node(node)->name);
        EXPECT_EQ(runningTimers(graph().node(node)->name), isBusy ? 1 : 0);
    });
    play("show Levels\nset Blur radiusx 9\nwait");
    EXPECT_TRUE(begun.contains("Blur") && begun.contains("Levels"));
    begun.sort();
    ended.sort();
    EXPECT_EQ(begun, ended);
    for (const char* const name : {"photo", "Blur", "Levels"})
        EXPECT_EQ(runningTimers(name), 0) << name;
}

TEST_F(Following, HistogramIsThatOfTheShownPicture)
{
    addChain();
    play("set Levels gain 40\nshow photo\nselect Levels\nkey 2\nwait");
    const QImage photo = histogramOf("photo"), levels = histogramOf("Levels");
    ASSERT_NE(photo, levels);
    EXPECT_EQ(shownHistogram(), photo);
    play("key S\nwait"); // the secondary in its place
    EXPECT_EQ(shownHistogram(), levels);
    play("key S\nwait");
    EXPECT_EQ(shownHistogram(), photo);
    play("key B\nwait"); // beside it
    EXPECT_EQ(shownHistogram(), photo);
    play("key B\nshow Levels\nwait");
    EXPECT_EQ(shownHistogram(), levels);
    play("set Levels gain 200\nwait");
    EXPECT_EQ(shownHistogram(), histogramOf("Levels"));
    EXPECT_NE(shownHistogram(), levels);
}

// Two levels of grey, one in a quarter of the picture.
TEST_F(Following, HistogramHasABarForEachLevelOfAKnownPicture)
{
    QImage grey(64, 64, QImage::Format_RGB888);
    grey.fill(QColor(64, 64, 64));
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x)
            grey.setPixelColor(x, y, QColor(192, 192, 192));
    }
    ASSERT_TRUE(grey.save(path("grey.png")));
    play("import " + path("grey.png") + " 0 300\nshow grey\nwait");
    const std::shared_ptr<const Ondrel::Image> image = window.imagePane().shownPicture().image;
    ASSERT_TRUE(image);
    std::map<int, int> counts;
    for (unsigned int i = 0; i < image->width * image->height; ++i)
        ++counts[image->data[i * 4] >> 8];
    EXPECT_EQ(counts, (std::map<int, int>{{64, 3072}, {192, 1024}}));
    const QImage shown = shownHistogram();
    const auto barAt = [&](double part) { // how many pixels of the column differ from an empty one
        const int x = int(part * shown.width()), empty = int(0.5 * shown.width());
        int most = 0;
        for (int column = x - 3; column <= x + 3; ++column) {
            int differing = 0;
            for (int y = 0; y < shown.height(); ++y)
                differing += shown.pixel(column, y) != shown.pixel(empty, y) ? 1 : 0;
            most = std::max(most, differing);
        }
        return most;
    };
    EXPECT_GT(barAt(64.5 / 256), barAt(192.5 / 256));
    EXPECT_GT(barAt(192.5 / 256), shown.height() / 2); // the scale is logarithmic
    EXPECT_LE(barAt(0.75 - 0.1), 1);                   // the base line
}

TEST_F(Following, FilesDroppedOnThePictureAreImported)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("photo.png"))});
    QWidget* const view = window.imagePane().view().viewport();
    QDragEnterEvent enter(QPoint(60, 40), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPoint(60, 40), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view, &drop);
    settle();
    ASSERT_NE(id("photo 2"), 0u);
    const auto area = [this](const char* name) {
        const PreviewNode& node = *window.scene().item(id(name));
        return node.mapRectToScene(node.rect());
    };
    EXPECT_FALSE(area("photo 2").intersects(area("photo"))); // the picture says no place on the canvas
}
