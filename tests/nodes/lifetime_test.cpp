// Nodes, scenes and views go in every order, with work under way, popups open and buttons pressed.

#include "xmlsupport.h"

#include "tests/support/testimages.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/curvesfield.h>
#include <ondrel/nodes/fields/histogramfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/layouts.h>
#include <ondrel/nodes/variableinputnode.h>
#include <ondrel/widgets/colorpushbutton.h>

#include <QComboBox>
#include <QMenu>
#include <QThreadPool>

namespace
{

using namespace OndrelTest;
using Ondrel::HistogramWidget;

const QString kEverything =
    "<node><input><i name=\"in\"/><i type=\"preview\"/><i type=\"slider\">S</i><i type=\"rangeslider\">R</i>"
    "<i name=\"list\" type=\"combobox\" choices=\"a,b\"/><i name=\"film\" type=\"combobox\" style=\"thumbnails\" "
    "choices=\"a,b\"/><i name=\"color\" type=\"color\"/><i type=\"colorprofile\"/><i type=\"resource\"/>"
    "<i type=\"hidden\"/><i type=\"label\">L</i><i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i/></fieldset>"
    "<fieldset choice=\"b\"><i type=\"slider\"/></fieldset></i></input><output><o name=\"image\"/></output></node>";

// A node of every field, shown, with its preview, histogram and curves at work.
struct Workplace {
    Workplace()
        : image(randomImage(700, 500, 5).toPtr())
        , scene(new QGraphicsScene)
        , view(new QGraphicsView(scene))
        , node(loadNode(kEverything).release())
    {
        auto* histogram = new Ondrel::HistogramField("histogram", HistogramWidget::All, HistogramWidget::Linear, node);
        auto* curves = new Ondrel::CurvesField("curves", node);
        node->inputFields.push_back(histogram);
        node->inputFields.push_back(curves);
        node->fieldTypes.resize(node->inputFields.size());
        scene->addItem(node);
        view->resize(400, 600);
        view->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(view));
        for (int i = 0; i < 3; ++i)
            node->setPreviewImage(image);
        histogram->setImage(image);
        curves->setImage(*image);
    }
    ~Workplace()
    {
        delete view;
        delete node;
        delete scene;
        settle();
    }
    // The jobs finish, and find nobody.
    static void settle()
    {
        QThreadPool::globalInstance()->waitForDone();
        QApplication::sendPostedEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
    void remove(char what)
    {
        if (what == 'n')
            delete node;
        else if (what == 's')
            delete scene;
        else if (what == 'v')
            delete view;
        else
            settle();
    }
    template <typename Field>
    Field* field(const QString& name) const
    {
        return node->field<Field>(static_cast<std::size_t>(node->inputIndexOfFieldByName(name)));
    }

    std::shared_ptr<const Ondrel::Image> image;
    QPointer<QGraphicsScene> scene;
    QPointer<QGraphicsView> view;
    QPointer<TestXml> node;
};

// Everything that may happen before the end.
using Happening = void (*)(Workplace&);
const Happening kHappenings[] = {
    [](Workplace&) {},
    [](Workplace& place) { widgetOf<QComboBox>(*place.field<Ondrel::ComboBoxInputField>("list"))->showPopup(); },
    [](Workplace& place) {
        auto* field = place.field<Ondrel::ComboBoxInputField>("film");
        widgetOf<QComboBox>(*field)->showPopup();
        place.node->setRequestedThumbnail("film", 0, place.image);
        place.node->setRequestedThumbnail("film", 1, nullptr);
    },
    [](Workplace& place) {
        widgetOf<Ondrel::ColorPushButton>(*place.field<Ondrel::ColorField>("color"))->displayColorPicker();
    },
    [](Workplace& place) {
        const QPoint point = place.view->mapFromScene(place.node->mapToScene(QPointF(100, 8)));
        QTest::mousePress(place.view->viewport(), Qt::LeftButton, {}, point);
        place.node->setLoading(true);
        place.node->setDebugText("debug");
        place.node->setFocus();
    },
    [](Workplace& place) {
        const QPointF center = place.node->inputFields[0]->anchor()->sceneBoundingRect().center();
        QTest::mousePress(place.view->viewport(), Qt::LeftButton, {}, place.view->mapFromScene(center));
        place.node->focusNextPrevChild(true, nullptr, nullptr);
    },
};

TEST(Lifetime, NodesScenesAndViewsGoInAnyOrder)
{
    for (const Happening happening : kHappenings)
        for (const char* order : {"nsv", "nvs", "snv", "svn", "vns", "vsn", "wnsv", "wsv", "wvns"}) {
            Workplace place;
            happening(place);
            for (const char* what = order; *what; ++what)
                place.remove(*what);
            EXPECT_TRUE(place.node.isNull() && place.scene.isNull() && place.view.isNull());
        }
    EXPECT_EQ(TestXml::alive, 0);
}

TEST(Lifetime, NodesMayLeaveTheirSceneAndComeBack)
{
    Workplace place;
    place.scene->removeItem(place.node);
    Workplace::settle();
    QGraphicsScene other;
    other.addItem(place.node);
    place.node->setPreviewImage(place.image);
    Workplace::settle();
    EXPECT_EQ(place.node->scene(), &other);
    other.removeItem(place.node);
    place.remove('s');
    EXPECT_FALSE(place.node.isNull());
}

TEST(Lifetime, AHostMayDeleteANodeWhenItsPreviewArrives)
{
    Workplace place;
    QObject::connect(place.node->previewField, &Ondrel::ImagePreviewField::imageChanged, place.node.data(),
                     [&place] { delete place.node; });
    EXPECT_TRUE(QTest::qWaitFor([&place] { return place.node.isNull(); }));
}

TEST(Lifetime, AHostMayDeleteANodeLaterFromAnySignal)
{
    for (int signal = 0; signal < 3; ++signal) {
        Workplace place;
        TestXml* const node = place.node;
        if (signal == 0)
            QObject::connect(node, SIGNAL(updated(Node*)), node, SLOT(deleteLater()));
        else if (signal == 1)
            QObject::connect(node, SIGNAL(moved(Node*, bool)), node, SLOT(deleteLater()));
        else
            QObject::connect(node, SIGNAL(selected(Node*)), node, SLOT(deleteLater()));
        const QPoint point = place.view->mapFromScene(node->mapToScene(QPointF(100, 8)));
        QTest::mouseClick(place.view->viewport(), Qt::LeftButton, {}, point);
        node->setInputValue(2, "7");
        node->layout();
        Workplace::settle();
        EXPECT_TRUE(place.node.isNull());
    }
}

TEST(Lifetime, ANodeMayOutliveItsLayout)
{
    TestNode node;
    {
        Ondrel::GridLayout layout;
        layout.addInputField(node.addInput("in"), 0, 0, 1, 1);
        node.setNodeLayout(&layout);
        node.setNodeLayout(nullptr);
    }
    node.layout();
    // And the other way round.
    Ondrel::VerticalLayout layout;
    {
        TestNode other;
        other.setNodeLayout(&layout);
    }
}

TEST(Lifetime, VariableInputsGoWithTheirNodeWhileTheyAreConnected)
{
    struct Layers : Ondrel::VariableInputNode {
        Layers()
            : VariableInputNode(nullptr, true, "layer", "Free", "Layer", InsertAtEnd)
        {
        }
    };
    QGraphicsScene scene;
    auto* node = new Layers;
    scene.addItem(node);
    node->setPreviewImage(randomImage(300, 300, 1).toPtr());
    node->setInputValue(1, "0,1,2");
    Ondrel::Anchor* const anchor = node->inputAnchorOfFieldByName("layer1");
    anchor->setConnected(true);
    delete node;
    Workplace::settle();
    EXPECT_TRUE(scene.items().isEmpty());
}

} // namespace
