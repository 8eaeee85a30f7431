// The same canvas by another library of node editors: 500 nodes, each with a picture, six sliders and two combo boxes
// in the widget that it embeds.

#include <benchmark/benchmark.h>

#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

#include <nodes/DataModelRegistry>
#include <nodes/FlowScene>
#include <nodes/FlowView>
#include <nodes/Node>
#include <nodes/NodeData>
#include <nodes/NodeDataModel>

#include <memory>

namespace
{

class Model : public QtNodes::NodeDataModel
{
public:
    Model()
        : m_controls(new QWidget)
    {
        auto* column = new QVBoxLayout(m_controls);
        auto* picture = new QLabel;
        QPixmap thumbnail(182, 121);
        thumbnail.fill(Qt::darkGreen);
        picture->setPixmap(thumbnail);
        column->addWidget(picture);
        for (int i = 0; i < 6; ++i)
            column->addWidget(new QSlider(Qt::Horizontal));
        for (int i = 0; i < 2; ++i) {
            auto* choices = new QComboBox;
            choices->addItems({QStringLiteral("Normal"), QStringLiteral("Multiply"), QStringLiteral("Screen")});
            column->addWidget(choices);
        }
    }
    QString caption() const override { return QStringLiteral("Node"); }
    QString name() const override { return QStringLiteral("Node"); }
    unsigned int nPorts(QtNodes::PortType) const override { return 1; }
    std::unique_ptr<QtNodes::NodeDataModel> clone() const override { return std::make_unique<Model>(); }
    std::shared_ptr<QtNodes::NodeDataType> dataType(QtNodes::PortType, QtNodes::PortIndex) const override
    {
        return std::make_shared<QtNodes::NodeDataType>(QStringLiteral("image"), QStringLiteral("Image"));
    }
    using NodeDataModel::setInData;
    void setInData(std::shared_ptr<QtNodes::NodeData>, QtNodes::PortIndex) override {}
    std::shared_ptr<QtNodes::NodeData> outData(QtNodes::PortIndex) override { return nullptr; }
    QWidget* embeddedWidget() override { return m_controls; }

private:
    QWidget* m_controls; // the scene's, once it is embedded
};

struct Canvas {
    Canvas()
        : scene(std::make_shared<QtNodes::DataModelRegistry>())
        , view(&scene)
    {
        for (int i = 0; i < 500; ++i)
            scene.createNode(std::make_unique<Model>()).nodeGraphicsObject().setPos(i % 32 * 240, i / 32 * 420);
        view.resize(1920, 1080);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view))
            std::abort();
    }
    QtNodes::FlowScene scene;
    QtNodes::FlowView view;
};

void frame(benchmark::State& state, double zoom)
{
    static auto* canvas = new Canvas; // it lives until the end, as the application does
    canvas->view.resetTransform();
    canvas->view.scale(zoom, zoom);
    canvas->view.centerOn(960 / zoom, 540 / zoom);
    for (auto _ : state)
        canvas->view.viewport()->repaint();
}

} // namespace

BENCHMARK_CAPTURE(frame, one, 1.0)->Name("500 nodes, a frame at zoom 1/libqnodeeditor")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, quarter, 0.25)
    ->Name("500 nodes, a frame at zoom 0.25/libqnodeeditor")
    ->Unit(benchmark::kMillisecond);
