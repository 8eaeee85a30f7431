// What a host does with a canvas of 500 nodes: a frame of 1920 x 1080 pixels at two zooms, panning, the drag of one
// node, and a new preview.

#include "benchmarks/nodes/usualnode.h"
#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/xmlnode.h>

#include <QApplication>
#include <QGraphicsEffect>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QPixmapCache>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

namespace
{

// What a host with a large canvas sets on each node: the node and all that is in it become one picture, which Qt keeps
// until something in it changes.
class Flattened : public QGraphicsEffect
{
protected:
    void draw(QPainter* painter) override
    {
        QPoint at;
        const QPixmap picture = sourcePixmap(Qt::DeviceCoordinates, &at, QGraphicsEffect::NoPad);
        const QTransform before = painter->worldTransform();
        painter->setWorldTransform(QTransform());
        painter->drawPixmap(at, picture);
        painter->setWorldTransform(before);
    }
};

constexpr int kKeptPictures = 64 * 1024; // kilobytes, for all nodes in view

constexpr int kNodes = 500;
constexpr int kColumns = 32;

// All nodes stand in rows of 32, each with the preview of a photograph.
class Canvas
{
public:
    Canvas()
    {
        const auto picture = std::make_shared<const Ondrel::Image>(OndrelBench::syntheticImage(600, 400));
        const QString xml = OndrelBench::usualNode();
        for (int i = 0; i < kNodes; ++i) {
            Ondrel::XmlNode* node = Ondrel::XmlNode::create(xml);
            m_scene.addItem(node);
            node->setHeader(QStringLiteral("Node %1").arg(i));
            node->setPos(i % kColumns * 240, i / kColumns * 420);
            node->setPreviewImage(picture);
            m_nodes.push_back(node);
        }
        m_view.setScene(&m_scene);
        m_view.setRenderHint(QPainter::Antialiasing);
        m_view.setFrameShape(QFrame::NoFrame);
        m_view.resize(1920, 1080);
        m_view.show();
        if (!QTest::qWaitForWindowExposed(&m_view))
            std::abort();
        for (Ondrel::XmlNode* node : m_nodes)
            waitForPreview(*node);
    }

    void flatten(bool flat)
    {
        QPixmapCache::setCacheLimit(kKeptPictures);
        for (Ondrel::XmlNode* node : m_nodes)
            node->setGraphicsEffect(flat ? new Flattened : nullptr);
    }

    Ondrel::XmlNode& node(int i) { return *m_nodes[std::size_t(i)]; }
    QGraphicsView& view() { return m_view; }

    void setZoom(double zoom)
    {
        m_view.resetTransform();
        m_view.scale(zoom, zoom);
        m_view.horizontalScrollBar()->setValue(m_view.horizontalScrollBar()->minimum());
        m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->minimum());
        paint();
    }

    void paint() { m_view.viewport()->repaint(); }

private:
    // It is scaled in the background.
    static void waitForPreview(const Ondrel::XmlNode& node)
    {
        for (QGraphicsItem* item : node.childItems()) {
            auto* preview = dynamic_cast<Ondrel::ImagePreviewField*>(item);
            if (preview && preview->minHeight() == 0)
                QSignalSpy(preview, SIGNAL(imageChanged())).wait(5000);
        }
    }

    QGraphicsScene m_scene;
    QGraphicsView m_view;
    std::vector<Ondrel::XmlNode*> m_nodes; // owned by the scene
};

Canvas& canvas()
{
    static auto* shared = new Canvas; // it lives until the end, as the application does
    return *shared;
}

void frame(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    for (auto _ : state)
        canvas().paint();
}

void flatFrame(benchmark::State& state, double zoom)
{
    canvas().flatten(true);
    canvas().setZoom(zoom);
    for (auto _ : state)
        canvas().paint();
    canvas().flatten(false);
}

// A frame after the canvas was moved by a few pixels, as by a hand.
void pan(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    QScrollBar& bar = *canvas().view().horizontalScrollBar();
    int step = 0;
    for (auto _ : state) {
        bar.setValue(bar.minimum() + ++step % 20 * 7);
        QCoreApplication::processEvents();
    }
}

// One move of a drag, and the repaint that follows from it.
void drag(benchmark::State& state)
{
    canvas().setZoom(1);
    Ondrel::XmlNode& node = canvas().node(kColumns + 3);
    const QPointF before = node.pos();
    int step = 0;
    for (auto _ : state) {
        ++step;
        node.setPos(before + QPointF(step % 40, step % 30));
        QCoreApplication::processEvents();
    }
    node.setPos(before);
}

void preview(benchmark::State& state)
{
    const auto image =
        std::make_shared<const Ondrel::Image>(OndrelBench::syntheticImage(OndrelBench::kWidth, OndrelBench::kHeight));
    Ondrel::ImagePreviewField field(QStringLiteral("preview"), nullptr);
    QSignalSpy changed(&field, SIGNAL(imageChanged()));
    for (auto _ : state) {
        field.setImage(image);
        if (!changed.wait())
            return state.SkipWithError("no preview came");
    }
}

} // namespace

BENCHMARK_CAPTURE(frame, one, 1.0)->Name("500 nodes, a frame at zoom 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, quarter, 0.25)->Name("500 nodes, a frame at zoom 0.25")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(flatFrame, one, 1.0)
    ->Name("500 nodes, a frame at zoom 1, nodes flattened by the host")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(flatFrame, quarter, 0.25)
    ->Name("500 nodes, a frame at zoom 0.25, nodes flattened by the host")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pan, one, 1.0)->Name("500 nodes, panned at zoom 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pan, quarter, 0.25)->Name("500 nodes, panned at zoom 0.25")->Unit(benchmark::kMillisecond);
BENCHMARK(drag)->Name("500 nodes, one dragged by a step")->Unit(benchmark::kMillisecond);
BENCHMARK(preview)->Name("Preview of 24 megapixels")->UseRealTime()->Unit(benchmark::kMillisecond);
