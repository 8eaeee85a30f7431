// Values that no one entered, and work that is no longer wanted.

#include "essentials.h"

#include <ondrel/core/color.h>
#include <ondrel/nodes/xmlnode.h>
#include <ondrel/resources/resourceid.h>

#include <QGraphicsScene>
#include <QPointF>
#include <QSet>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <thread>

using namespace OndrelTest;
using Ondrel::Image;

namespace
{

constexpr int kHuge = 2000; // elements of a list

QVariantList manyOf(const QVariant& element, int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list.append(element);
    return list;
}

QVariantList hostileValues()
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinite = std::numeric_limits<double>::infinity();
    QVariantList values = {QVariant(),
                           QString(),
                           "nan",
                           "inf",
                           "-inf",
                           "1e300",
                           "-1e300",
                           "1e-300",
                           "text",
                           "-1",
                           "0",
                           "99999999999999999999",
                           nan,
                           infinite,
                           1e300,
                           -5,
                           QByteArray("short"),
                           QByteArray(32, '\xff'),
                           QPointF(nan, infinite),
                           QVariantMap{{"points", 5}},
                           QVariant::fromValue(Ondrel::ResourceId(77777777u)),
                           Ondrel::Color(1, 2, 3, 4)};
    values.append(QVariant(manyOf(QPointF(nan, -infinite), 4)));
    values.append(QVariant(manyOf(QPointF(1e300, -1e300), 3)));
    values.append(QVariant(manyOf(QVariant(manyOf(QPointF(1e300, nan), 400)), 4)));
    values.append(QVariant(manyOf("text", 4)));
    const QVariantList none;
    values.append(QVariant(none));
    values.append(QVariant(manyOf(QVariant(none), 1)));
    values.append(QVariant(manyOf(QPointF(0.25, 3), 1)));
    values.append(QVariant(manyOf(QVariant(manyOf(QPointF(40000, 7), 1)), 4)));
    values.append(QVariant(manyOf(QVariant(manyOf(QPointF(infinite, -infinite), 2)), 1)));
    values.append(QVariant(manyOf(QPointF(5, 6), kHuge)));
    values.append(QVariant(manyOf(QVariant(manyOf(QPointF(7, 8), kHuge)), 4)));
    values.append(QVariant(manyOf(QVariantMap{{"position", "0.5"}, {"color", "1"}}, kHuge)));
    values.append(QVariant(manyOf(QVariantMap{{"points", none}}, kHuge)));
    values.append(QString("0,").repeated(kHuge));
    values.append(QString("9").repeated(kHuge));
    for (const QVariant& size : {QVariant(nan), QVariant("1e300"), QVariant(-1e300), QVariant(QVariantList())}) {
        values.append(QVariant(QVariantList{QVariantMap{
            {"size", size},
            {"hardness", size},
            {"position", size},
            {"color", size},
            {"points", QVariantList{QPointF(1e300, 5), QPointF(-1e300, nan), QPointF(-1e300, 4), QPointF(3, 3)}}}}));
    }
    return values;
}

// One value each of the node replaced; pictures stay small.
QVariantMap withValue(const QString& name, const QVariant& value)
{
    QVariantMap values = {{"width", "16"}, {"height", "16"}, {"angle", "10"}, {"layer_order", "0,1"}};
    values.insert(name, value);
    return values;
}

void expectSane(const Host::NodeType& type, const QString& input, const QVariant& value)
{
    const QString file = type.id.section('/', 1);
    const Image image = picture(16, 12);
    Inputs inputs = inputOf(image);
    inputs.insert("layer0", inputs.value("image"));
    inputs.insert("layer1", inputs.value("image"));
    const QVariantMap values = withValue(input, value);
    const Sizes sizes = sizesOf(file, values, {{"image", QSize(16, 12)}, {"layer0", QSize(16, 12)}});
    for (const double scale : {1.0, 0.01}) {
        const Host::Result result = evaluate(file, inputs, values, scale);
        for (auto output = result.outputs.begin(); output != result.outputs.end(); ++output) {
            ASSERT_TRUE(output->image) << qPrintable(file + ' ' + input);
            EXPECT_TRUE(output->image->data) << qPrintable(file + ' ' + input);
            EXPECT_EQ(output->fullSize, sizes.value(output.key())) << qPrintable(file + ' ' + input);
        }
        EXPECT_TRUE(result.error.isEmpty() || result.outputs.isEmpty());
    }
    for (const Ondrel::TransformMap& map : mapsOf(file, values, {{"image", QSize(16, 12)}})) {
        EXPECT_TRUE(map.transform.allFinite()) << qPrintable(file + ' ' + input);
        EXPECT_FALSE(map.rect.isInvalid());
    }
}

TEST(EssentialsHostile, NoValueOfAnyInputCrashesANode)
{
    const QVariantList hostile = hostileValues();
    for (const Host::NodeType* const type : essentials().all()) {
        QStringList inputs;
        for (const Host::InputInfo& input : type->inputs)
            inputs.append(input.name);
        if (!type->entry.variablePrefix.isEmpty())
            inputs.append({"opacity0", "opacity1"});
        for (const QString& input : inputs) {
            for (const QVariant& value : hostile)
                expectSane(*type, input, value);
        }
    }
}

// As a document shows them: by items in a scene.
TEST(EssentialsHostile, NoValueOfAnyInputCrashesAnItem)
{
    const QVariantList hostile = hostileValues();
    for (const Host::NodeType* const type : essentials().all()) {
        QGraphicsScene scene;
        Ondrel::Node* const own = type->entry.behaviour->createItem(type->fileText);
        const std::unique_ptr<Ondrel::Node> item(own ? own : Ondrel::XmlNode::create(type->fileText));
        ASSERT_TRUE(item) << qPrintable(type->id);
        scene.addItem(item.get());
        for (unsigned long i = 0; i < item->inputFieldCount(); ++i) {
            const QVariant before = item->inputValue(int(i));
            for (const QVariant& value : hostile) {
                item->setInputValue(i, value);
                item->inputValue(int(i));
            }
            item->setInputValue(i, before);
        }
    }
}

TEST(EssentialsHostile, WithoutAPictureEveryNodeSaysSo)
{
    for (const Host::NodeType* const type : essentials().all()) {
        const QString file = type->id.section('/', 1);
        const Host::Result result = evaluate(file, {}, {{"width", "4"}, {"height", "4"}});
        const bool mayWork = file == "gradient" || file == "histogram";
        EXPECT_NE(result.error.isEmpty(), !mayWork) << qPrintable(file);
        mapsOf(file, {}, {});
    }
}

TEST(EssentialsHostile, AnAbsurdSizeIsRefusedBeforeMemoryIsAskedFor)
{
    const QVariantMap values = {
        {"unit", "Pixels"}, {"aspect", "Ignore"}, {"pixelwidth", "15000"}, {"pixelheight", "15000"}};
    EXPECT_EQ(sizesOf("resize", values, {{"image", QSize(4, 4)}}).value("image"), QSize(15000, 15000));
    const QVariantMap far = {{"x", "30000"}, {"y", "30000"}};
    EXPECT_FALSE(evaluate("translate", inputOf(picture(4, 4)), far).error.isEmpty());
}

TEST(EssentialsCancel, WorkThatIsNotWantedAnyMoreIsNotDone)
{
    const int word = 1;
    const Image image = picture(2000, 1500);
    for (const Host::NodeType* const type : essentials().all()) {
        const QString file = type->id.section('/', 1);
        Inputs inputs = inputOf(image);
        inputs.insert("layer0", inputs.value("image"));
        const auto start = std::chrono::steady_clock::now();
        evaluate(file, inputs, {{"radius", "10"}, {"width", "15000"}, {"height", "1000"}}, 1, {&word});
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << qPrintable(file);
    }
}

TEST(EssentialsCancel, TakesEffectInTheMiddleOfALongFilter)
{
    const Inputs inputs = inputOf(picture(6000, 4000));
    for (const char* const file : {"median", "erodedilate"}) {
        std::atomic<int> word{0};
        std::thread owner([&word] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            word = 1;
        });
        const auto start = std::chrono::steady_clock::now();
        evaluate(file, inputs, {{"radius", "10"}}, 1, {reinterpret_cast<const int*>(&word)});
        const auto took = std::chrono::steady_clock::now() - start;
        owner.join();
        EXPECT_LT(took, std::chrono::milliseconds(1500)) << file;
    }
}

} // namespace
