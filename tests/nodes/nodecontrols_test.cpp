// Controls at work inside a node: the mouse, the keyboard and their labels.

#include "xmlsupport.h"

#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/curvesfield.h>
#include <ondrel/nodes/fields/iconpushbuttonfield.h>
#include <ondrel/nodes/fields/pushbuttonfield.h>
#include <ondrel/nodes/fields/sliderfield.h>

#include <QComboBox>

namespace
{

using namespace OndrelTest;

class NodeControls : public testing::Test
{
protected:
    void show(const QString& entries)
    {
        node = loadInputs(entries).release();
        graph.add(node, {20, 20});
        QApplication::processEvents();
        node->log.take();
    }
    // The index of the input whose control has the focus; -1 for none.
    int focused() const
    {
        QGraphicsItem* const item = graph.scene.focusItem();
        for (std::size_t i = 0; i < node->inputFields.size(); ++i)
            if (item && item->parentItem() == node->inputFields[i])
                return static_cast<int>(i);
        return -1;
    }
    bool tab(bool next)
    {
        const int current = focused();
        const auto* field = current < 0 ? nullptr : node->inputFields[static_cast<std::size_t>(current)];
        return node->focusNextPrevChild(next, field, graph.scene.focusItem());
    }
    // The inputs that Tab visits, each once, until it leaves the node.
    std::vector<int> visited(bool next)
    {
        std::vector<int> order;
        for (int steps = 0; tab(next); ++steps) {
            if (order.empty() || order.back() != focused())
                order.push_back(focused());
            if (steps == 50) {
                ADD_FAILURE() << "Tab never leaves the node";
                break;
            }
        }
        return order;
    }

    GraphView graph;
    TestXml* node = nullptr;
};

TEST_F(NodeControls, ADragOnASliderChangesItAndLeavesTheNodeAlone)
{
    show("<i type=\"slider\" min=\"0\" max=\"1000\" value=\"0\">Radius</i>");
    auto* field = node->field<Ondrel::SliderInputField>(0);
    const QRectF slider = field->mapRectToScene(field->rect());
    const double y = slider.bottom() - 4; // on the bar
    graph.press({slider.left() + 20, y});
    for (int x = 30; x <= 100; x += 10)
        graph.move({slider.left() + x, y});
    graph.release({slider.left() + 100, y});
    EXPECT_GT(field->value().toInt(), 300);
    const QStringList raised = node->log.take();
    EXPECT_GE(raised.size(), 2);
    for (const QString& signal : raised)
        EXPECT_EQ(signal, "updated");
    EXPECT_FALSE(node->isSelected());
    EXPECT_EQ(node->pos(), QPointF(20, 20));
}

TEST_F(NodeControls, TabVisitsThemFromTopToBottomAndBack)
{
    show(
        "<i name=\"in\"/><i type=\"slider\">S</i><i type=\"preview\"/><i type=\"rangeslider\">R</i>"
        "<i type=\"label\">L</i><i type=\"combobox\" choices=\"a,b\">C</i><i type=\"color\">F</i><i type=\"hidden\"/>");
    EXPECT_EQ(visited(true), (std::vector<int>{1, 3, 5, 6}));
    EXPECT_EQ(focused(), 6);
    EXPECT_EQ(visited(false), (std::vector<int>{5, 3, 1}));
}

TEST_F(NodeControls, TabVisitsAllPartsOfARangeSlider)
{
    show("<i type=\"rangeslider\">R</i>");
    for (const bool next : {true, false}) {
        for (int stop = 0; stop < 4; ++stop)
            EXPECT_TRUE(tab(next)) << stop;
        EXPECT_FALSE(tab(next));
        graph.scene.clearFocus();
    }
}

TEST_F(NodeControls, TabPassesOverSetsThatAreNotChosen)
{
    show("<i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i type=\"slider\"/></fieldset><fieldset choice=\"b\">"
         "<i type=\"slider\"/></fieldset></i><i type=\"combobox\" choices=\"x\"/>");
    EXPECT_EQ(visited(true), (std::vector<int>{0, 1, 3}));
    node->setInputValue(0, "b");
    EXPECT_EQ(visited(false), (std::vector<int>{2, 0}));
}

TEST_F(NodeControls, AClickOnABoxStaysWithIt)
{
    show("<i type=\"combobox\" choices=\"a,b\">Mode</i>");
    auto* field = node->field<Ondrel::ComboBoxInputField>(0);
    graph.click(proxyOf(*field)->sceneBoundingRect().center());
    EXPECT_FALSE(node->isSelected());
    widgetOf<QComboBox>(*field)->hidePopup();
    EXPECT_EQ(node->log.take(), QStringList());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(NodeControls, AClickOnTheLabelOfABoxSelectsTheNode)
{
    show("<i type=\"combobox\" choices=\"a,b\">Mode</i>");
    graph.click(node->inputFields[0]->mapToScene(QPointF(5, 8)));
    EXPECT_EQ(node->log.take(), QStringList({"selected", "moveComplete"}));
}

TEST_F(NodeControls, ControlsStandInOneColumn)
{
    show("<i type=\"color\">A very long label</i><i type=\"combobox\">x</i><i name=\"in\">An even longer label that "
         "is not a control's</i><i type=\"slider\">Slider</i><i type=\"colorprofile\">yy</i>");
    const double column = fieldTextWidth("A very long label") + 4.0;
    for (const std::size_t i : {0U, 1U, 4U}) {
        const auto& field = *node->inputFields[i];
        EXPECT_EQ(proxyOf(field)->pos(), QPointF(column, 0)) << i;
        EXPECT_EQ(field.rect().width(), node->rect().width() - 18) << i;
        EXPECT_EQ(proxyOf(field)->widget()->width(), static_cast<int>(field.rect().width() - column)) << i;
    }
    EXPECT_EQ(proxyOf(*node->inputFields[3])->pos(), QPointF(0, 0));
    EXPECT_EQ(proxyOf(*node->inputFields[3])->widget()->width(), static_cast<int>(node->rect().width() - 18));
}

TEST(ControlLabels, AreDrawnInTheMiddleOfTheControl)
{
    const QString label = "Label";
    Ondrel::ColorField color("a", nullptr, label, true);
    Ondrel::ComboBoxInputField box("b", nullptr, label, {"x"}, 0, Ondrel::ComboBoxInputField::List);
    Ondrel::PushButtonInputField button("c", nullptr, label, "Go");
    Ondrel::IconPushButtonInputField icon("d", nullptr, "", "");
    Ondrel::CurvesField curves("e", nullptr);
    for (Ondrel::InputField* field :
         std::initializer_list<Ondrel::InputField*>{&color, &box, &button, &icon, &curves}) {
        field->setDisplayName(label);
        field->setSize(200, 24, 0);
        // In the middle of the control's height.
        const QImage expected = painted({220, 260}, [&](QPainter& painter) {
            painter.setFont(fieldFont());
            painter.setPen(QColor(201, 198, 198));
            painter.drawText(QRectF(0, 0, 200, field->minHeight()), Qt::AlignLeft | Qt::AlignVCenter, label);
        });
        EXPECT_EQ(paintedItem(*field, {220, 260}), expected) << qPrintable(field->name());
    }
}

} // namespace
