// The editor with 500 nodes of the essentials plug-in in 25 chains: what follows from one event of a user, on the
// canvas of 1920 x 1080 pixels and, for the slider, in the whole window. All nodes have their previews.

#include "canvascommands.h"
#include "editorwindow.h"
#include "pictures.h"
#include "scene.h"
#include "sceneview.h"

#include "examples/common/darkpalette.h"

#include <ondrel/core/platform.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <cstdlib>
#include <memory>

namespace
{

using namespace Host;

constexpr int kChains = 25;
constexpr int kLength = 20;
constexpr double kFitAll = 0; // instead of a zoom

NodeTypes loadedTypes()
{
    NodeTypes types;
    const QStringList problems = loadPlugins(ONDREL_BENCH_PLUGINS, types);
    if (!problems.isEmpty())
        std::abort();
    return types;
}

Graph largeGraph(const NodeTypes& types)
{
    const char* const links[] = {"gaussianblur", "levels", "unsharpmask", "median", "mirror", "curves", "erodedilate"};
    Document document(types);
    for (int chain = 0; chain < kChains; ++chain) {
        NodeId last = document.addNode("essentials/gradient", {0, chain * 560.0});
        document.setValue(last, "width", QString::number(300 + chain)); // no two chains share their work
        document.setValue(last, "height", QString("200"));
        for (int i = 1; i < kLength; ++i) {
            const NodeId next = document.addNode(QString("essentials/") + links[i % 7], {i * 280.0, chain * 560.0});
            if (!document.addConnection({last, "image", next, "image"}).isEmpty())
                std::abort();
            last = next;
        }
    }
    return document.graph();
}

class LargeCanvas
{
public:
    LargeCanvas()
        : m_types(loadedTypes())
        , m_window(m_types)
    {
        m_window.document().load(largeGraph(m_types));
        m_window.scene().show(m_window.document().graph().nodes.rbegin()->first, PreviewNode::EmblemPrimary);
        m_window.show();
        view().setParent(nullptr); // it is the size of the canvas that counts
        view().resize(1920, 1080);
        view().show();
        if (!QTest::qWaitForWindowExposed(&view()) || !QTest::qWaitFor([this] { return m_window.isSettled(); }, 300000))
            std::abort();
    }

    EditorWindow& window() { return m_window; }
    SceneView& view() { return m_window.sceneView(); }
    NodeId node(int i) const { return NodeId(i + 1); }

    void setZoom(double zoom)
    {
        if (zoom == kFitAll) {
            m_window.canvasCommands().fitAll();
        } else {
            view().resetTransform();
            view().scale(zoom, zoom);
            view().centerOn(950 / zoom, 530 / zoom);
        }
        settle();
    }

    // Until nothing is left to be drawn.
    void settle()
    {
        for (int i = 0; i < 30; ++i) {
            view().viewport()->repaint();
            QTest::qWait(1);
        }
    }

    void mouse(QEvent::Type type, const QPoint& at, Qt::MouseButtons held)
    {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, at, isMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(view().viewport(), &event);
        QCoreApplication::processEvents();
    }

private:
    NodeTypes m_types;
    EditorWindow m_window;
};

LargeCanvas& canvas()
{
    static auto* shared = new LargeCanvas; // it lives until the end, as the application does
    return *shared;
}

void frame(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    for (auto _ : state)
        canvas().view().viewport()->repaint();
}

// By a few pixels, as by a hand.
void pan(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    QScrollBar& bar = *canvas().view().horizontalScrollBar();
    const int before = bar.value();
    int step = 0;
    for (auto _ : state) {
        bar.setValue(before + ++step % 20 * 7);
        QCoreApplication::processEvents();
    }
    bar.setValue(before);
}

void zoom(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    QWidget* const viewport = canvas().view().viewport();
    int step = 0;
    for (auto _ : state) {
        const int turn = ++step % 20 < 10 ? 30 : -30;
        QWheelEvent event(QPointF(900, 500), viewport->mapToGlobal(QPoint(900, 500)), QPoint(), QPoint(0, turn),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &event);
        QCoreApplication::processEvents();
    }
}

void drag(benchmark::State& state, double zoom)
{
    canvas().setZoom(zoom);
    const QPointF grip = canvas().window().scene().item(canvas().node(kLength + 3))->scenePos() + QPointF(60, 10);
    const QPoint start = canvas().view().mapFromScene(grip);
    canvas().mouse(QEvent::MouseMove, start, Qt::NoButton);
    canvas().mouse(QEvent::MouseButtonPress, start, Qt::LeftButton);
    int step = 0;
    for (auto _ : state) {
        ++step;
        canvas().mouse(QEvent::MouseMove, start + QPoint(20 + step % 40, step % 30), Qt::LeftButton);
    }
    canvas().mouse(QEvent::MouseButtonRelease, start + QPoint(20, 20), Qt::NoButton);
    canvas().window().document().undoStack().undo();
}

// What the window does for one value of a node in view with 17 others behind it, while their pictures are computed
// beside it.
void slider(benchmark::State& state)
{
    canvas().setZoom(1);
    int step = 0;
    for (auto _ : state) {
        canvas().window().document().setValue(canvas().node(kLength + 2), "radius", QString::number(1 + ++step % 20),
                                              1);
        QCoreApplication::processEvents();
    }
}

} // namespace

BENCHMARK_CAPTURE(frame, one, 1.0)->Name("Editor, 500 nodes, a frame at zoom 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, quarter, 0.25)->Name("Editor, 500 nodes, a frame at zoom 0.25")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, all, kFitAll)->Name("Editor, 500 nodes, a frame of them all")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pan, one, 1.0)->Name("Editor, 500 nodes, panned at zoom 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pan, all, kFitAll)->Name("Editor, 500 nodes, panned with all in view")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(zoom, one, 1.0)->Name("Editor, 500 nodes, zoomed by a step near 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(zoom, half, 0.45)
    ->Name("Editor, 500 nodes, zoomed by a step near 0.45")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(zoom, all, kFitAll)
    ->Name("Editor, 500 nodes, zoomed by a step with all in view")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drag, one, 1.0)->Name("Editor, 500 nodes, one dragged at zoom 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drag, all, kFitAll)
    ->Name("Editor, 500 nodes, one dragged with all in view")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(slider)->Name("Editor, 500 nodes, a slider moved by a step")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    PlatformPrivate::setup(argc, &argv);
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-bench");
    QApplication::setPalette(Common::darkPalette(QColor(50, 49, 49)));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
