// The time to make a node from its text, to lay one out, and to paint one.

#include "benchmarks/nodes/usualnode.h"

#include <ondrel/nodes/xmlnode.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>

#include <memory>

namespace
{

// Twenty fields: ten anchored inputs and ten with a control.
QString tallNode()
{
    QString inputs;
    for (int i = 0; i < 10; ++i)
        inputs += QString("<i name='a%1'>Input %1</i><i name='s%1' type='slider'>Slider %1</i>").arg(i);
    return "<node><input>" + inputs + "</input><output/></node>";
}

void createNode(benchmark::State& state)
{
    const QString xml = OndrelBench::usualNode();
    for (auto _ : state) {
        const std::unique_ptr<Ondrel::XmlNode> node(Ondrel::XmlNode::create(xml));
        benchmark::DoNotOptimize(node.get());
    }
}

void createNodeInScene(benchmark::State& state)
{
    const QString xml = OndrelBench::usualNode();
    QGraphicsScene scene;
    for (auto _ : state) {
        const std::unique_ptr<Ondrel::XmlNode> node(Ondrel::XmlNode::create(xml));
        scene.addItem(node.get());
    }
}

void layoutNode(benchmark::State& state)
{
    QGraphicsScene scene;
    Ondrel::XmlNode* node = Ondrel::XmlNode::create(tallNode());
    scene.addItem(node);
    for (auto _ : state)
        node->layout();
}

void paintNode(benchmark::State& state)
{
    QGraphicsScene scene;
    Ondrel::XmlNode* node = Ondrel::XmlNode::create("<node><input/><output><o>Image</o></output></node>");
    node->setHeader("Gaussian Blur");
    scene.addItem(node);
    QImage image(240, 120, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (auto _ : state)
        scene.render(&painter, QRectF(0, 0, 240, 120), QRectF(-20, -20, 240, 120));
}

} // namespace

BENCHMARK(createNode)->Name("XmlNode, 10 inputs, created")->Unit(benchmark::kMillisecond);
BENCHMARK(createNodeInScene)->Name("XmlNode, 10 inputs, created and put into a scene")->Unit(benchmark::kMillisecond);
BENCHMARK(layoutNode)->Name("Node::layout, 20 fields")->Unit(benchmark::kMillisecond);
BENCHMARK(paintNode)->Name("Node with one output, painted")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
