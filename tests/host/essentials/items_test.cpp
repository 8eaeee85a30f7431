// What the plug-in tells a host about its nodes, and the items that it makes itself.

#include "essentials.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/variableinputnode.h>
#include <ondrel/nodes/xmlnode.h>
#include <ondrel/widgets/histogramwidget.h>

#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QPointF>
#include <QSet>
#include <QSignalSpy>

using namespace OndrelTest;

namespace
{

std::unique_ptr<Ondrel::Node> itemOf(const QString& file)
{
    const Host::NodeType& type = nodeType(file);
    Ondrel::Node* const own = type.entry.behaviour->createItem(type.fileText);
    return std::unique_ptr<Ondrel::Node>(own ? own : Ondrel::XmlNode::create(type.fileText));
}

TEST(EssentialsNodes, AreAllThere)
{
    QStringList titles;
    for (const Host::NodeType* const type : essentials().all())
        titles.append(type->title);
    EXPECT_EQ(titles.join(", "),
              "Colour Profile, Crop, Curves, Erode/Dilate, Gaussian Blur, Gradient, Histogram, Image, Levels, Median, "
              "Merge, Mirror, Output, Paint, Perspective, RAW Image, Resize, Rotate, Soft Proof, Split Channels, "
              "Translate, Unsharp Mask");
}

TEST(EssentialsNodes, HaveEverythingThatASearchShows)
{
    for (const Host::NodeType* const type : essentials().all()) {
        EXPECT_FALSE(type->category.isEmpty()) << qPrintable(type->id);
        EXPECT_FALSE(type->keywords.isEmpty()) << qPrintable(type->id);
        EXPECT_FALSE(type->help.isEmpty()) << qPrintable(type->id);
        EXPECT_EQ(type->title, type->entry.nodeName);
        QSet<QString> names;
        for (const Host::InputInfo& input : type->inputs)
            names.insert(input.name);
        EXPECT_EQ(std::size_t(names.size()), type->inputs.size()) << qPrintable(type->id);
    }
}

TEST(EssentialsNodes, AnItemHasTheInputsAndOutputsThatTheHostKnows)
{
    for (const Host::NodeType* const type : essentials().all()) {
        const auto item = itemOf(type->id.section('/', 1));
        ASSERT_TRUE(item) << qPrintable(type->id);
        for (const Host::InputInfo& input : type->inputs)
            EXPECT_GE(item->inputIndexOfFieldByName(input.name), 0) << qPrintable(type->id + ' ' + input.name);
        for (const Host::OutputInfo& output : type->outputs)
            EXPECT_GE(item->outputIndexOfFieldByName(output.name), 0) << qPrintable(type->id + ' ' + output.name);
    }
}

TEST(EssentialsNodes, AnItemBeginsWithTheDefaultsThatTheHostKnows)
{
    for (const Host::NodeType* const type : essentials().all()) {
        const auto item = itemOf(type->id.section('/', 1));
        for (const Host::InputInfo& input : type->inputs) {
            const QVariant value = item->inputValue(item->inputIndexOfFieldByName(input.name));
            if (input.kind == "slider" || input.kind == "combobox") {
                EXPECT_EQ(value.toString(), input.initial.toString()) << qPrintable(type->id + ' ' + input.name);
            }
        }
    }
}

TEST(EssentialsCurvesItem, KeepsTheValueOfItsEditor)
{
    QGraphicsScene scene;
    const auto item = itemOf("curves");
    scene.addItem(item.get());
    const auto index = item->inputIndexOfFieldByName("curves");
    EXPECT_EQ(item->inputValue(index), nodeType("curves").input("curves")->initial);
    const QVariantList bent = {QPointF(0, 100), QPointF(30000, 50000), QPointF(65535, 60000)};
    const QVariantList straight = {QPointF(0, 0), QPointF(65535, 65535)};
    const QVariant value = QVariantList{QVariant(bent), QVariant(straight), QVariant(straight), QVariant(bent)};
    QSignalSpy updated(item.get(), SIGNAL(updated(Node*)));
    item->setInputValue(static_cast<unsigned long>(index), value);
    EXPECT_EQ(item->inputValue(index), value);
    EXPECT_EQ(updated.count(), 1);
    EXPECT_FALSE(item->inputValue(-1).isValid());
    static_cast<Ondrel::PreviewNode&>(*item).setInputImage(picture(20, 20).toPtr());
    static_cast<Ondrel::PreviewNode&>(*item).setInputImage(nullptr);
}

TEST(EssentialsHistogramItem, ShowsThePictureAtItsInput)
{
    QGraphicsScene scene;
    const auto item = itemOf("histogram");
    scene.addItem(item.get());
    Ondrel::HistogramWidget* histogram = nullptr;
    for (QGraphicsItem* const child : scene.items()) {
        if (child->isWidget() && static_cast<QGraphicsWidget*>(child)->inherits("QGraphicsProxyWidget")) {
            auto* const widget = static_cast<QGraphicsProxyWidget*>(child)->widget();
            histogram = histogram ? histogram : qobject_cast<Ondrel::HistogramWidget*>(widget);
        }
    }
    ASSERT_TRUE(histogram);
    QSignalSpy built(histogram, SIGNAL(histogramBuilt()));
    static_cast<Ondrel::PreviewNode&>(*item).setInputImage(picture(64, 64).toPtr());
    EXPECT_TRUE(built.count() > 0 || built.wait(10000));
    item->setInputValue(static_cast<unsigned long>(item->inputIndexOfFieldByName("channel")), "Red");
    EXPECT_EQ(item->inputValue(item->inputIndexOfFieldByName("channel")), QVariant("Red"));
}

TEST(EssentialsMergeItem, HasAnOpacityForEachLayer)
{
    QGraphicsScene scene;
    const auto item = itemOf("merge");
    scene.addItem(item.get());
    item->setInputValue(static_cast<unsigned long>(item->inputIndexOfFieldByName("layer_order")), "4,2");
    const auto opacity = item->inputIndexOfFieldByName("opacity4");
    ASSERT_GE(opacity, 0);
    EXPECT_EQ(item->inputValue(opacity), QVariant("100"));
    QSignalSpy updated(item.get(), SIGNAL(updated(Node*)));
    item->setInputValue(static_cast<unsigned long>(opacity), "40");
    EXPECT_EQ(item->inputValue(opacity), QVariant("40"));
    EXPECT_EQ(updated.count(), 1);
    EXPECT_GE(item->inputIndexOfFieldByName("layer2"), 0);
    EXPECT_TRUE(nodeType("merge").input("opacity4"));
    EXPECT_EQ(nodeType("merge").input("layer4")->dataType, "image");
}

} // namespace
