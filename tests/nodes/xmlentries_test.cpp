// The entries of node files, type by type.

#include "xmlsupport.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/color.h>
#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/colorprofilefield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/fields/labelfield.h>
#include <ondrel/nodes/fields/rangesliderfield.h>
#include <ondrel/nodes/fields/resourcefield.h>
#include <ondrel/nodes/fields/sliderfield.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/thumbnailcombobox.h>

namespace
{

using namespace OndrelTest;
using Ondrel::PrecisionRangeSlider;
using Ondrel::PrecisionSlider;
using RangeValue = PrecisionRangeSlider::RangeValue;

// A node of one entry in a scene, and the control of its field.
template <typename Field, typename Widget = QWidget>
struct Entry {
    explicit Entry(const QString& entry)
    {
        auto made = loadInputs(entry);
        if (!made || made->inputFields.size() != 1)
            return;
        node = made.release();
        graph.add(node, {20, 20});
        field = node->field<Field>(0);
        if (field && proxyOf(*field))
            widget = widgetOf<Widget>(*field);
    }
    GraphView graph;
    TestXml* node = nullptr;
    Field* field = nullptr;
    Widget* widget = nullptr;
};

TEST(XmlEntry, WithoutATypeIsAnAnchoredInput)
{
    const auto node =
        loadInputs("<field name=\"SOURCE\"> Source </field><x/><!-- remark --><y Type=\"slider\" type=\"\"/>"
                   "<y TYPE=\"slider\">A<b>no</b><![CDATA[B]]></y>");
    ASSERT_EQ(node->inputFieldCount(), 5U);
    const QStringList names{"source", "", "", "", ""}, texts{" Source ", "", "", "", "AB"};
    for (unsigned long i = 0; i < 5; ++i) {
        EXPECT_EQ(node->fieldTypes[i], "");
        EXPECT_EQ(node->inputNameOfFieldByIndex(i), names[static_cast<int>(i)]);
        EXPECT_EQ(node->inputDisplayNameOfFieldByIndex(i), texts[static_cast<int>(i)]);
        ASSERT_NE(node->inputAnchorOfFieldByIndex(i), nullptr);
        EXPECT_EQ(node->inputAnchorOfFieldByIndex(i)->direction(), Ondrel::Anchor::Input);
        EXPECT_FALSE(node->inputValue(static_cast<int>(i)).isValid());
    }
}

TEST(XmlEntry, Label)
{
    Entry<Ondrel::LabelField> entry("<i name=\"Remark\" type=\"LABEL\">A remark</i>");
    ASSERT_NE(entry.field, nullptr);
    EXPECT_EQ(entry.field->name(), "remark");
    EXPECT_EQ(entry.field->displayName(), "A remark");
    EXPECT_EQ(entry.field->anchor(), nullptr);
    EXPECT_EQ(entry.node->fieldTypes, std::vector<QString>{"label"});
    EXPECT_FALSE(entry.node->inputValue(0).isValid());
}

TEST(XmlEntry, PreviewIsTheBuiltInField)
{
    const auto node = loadInputs("<i type=\"slider\"/><i name=\"other\" type=\"Preview\">Text</i>");
    ASSERT_EQ(node->inputFieldCount(), 2U);
    EXPECT_EQ(node->inputFields[1], node->previewField);
    EXPECT_EQ(node->inputNameOfFieldByIndex(1), "preview") << "the entry's name is ignored";
    EXPECT_EQ(node->inputDisplayNameOfFieldByIndex(1), "");
    EXPECT_FALSE(node->inputValue(1).isValid());

    const auto twice = loadInputs("<i type=\"preview\"/><i type=\"preview\"/>");
    ASSERT_EQ(twice->inputFieldCount(), 2U);
    EXPECT_EQ(twice->inputFields[0], twice->inputFields[1]);
    twice->layout();
}

TEST(XmlEntry, SliderReadsItsNumbersAsText)
{
    Entry<Ondrel::SliderInputField, PrecisionSlider> entry(
        "<i name=\"Radius\" type=\"Slider\" min=\"-10\" max=\"250\" value=\"17\">Radius</i>");
    ASSERT_NE(entry.widget, nullptr);
    EXPECT_EQ(entry.field->name(), "radius");
    EXPECT_EQ(entry.field->displayName(), "Radius");
    EXPECT_EQ(entry.field->value(), "17");
    EXPECT_EQ(entry.node->fieldTypes, std::vector<QString>{"slider"});
    const PrecisionSlider reference("Radius", "-10", "250", "17", PrecisionSlider::Integer, PrecisionSlider::Range,
                                    nullptr);
    EXPECT_EQ(entry.widget->minimumSizeHint(), reference.minimumSizeHint());
    // The range is kept.
    entry.widget->setRange("300", "400");
    EXPECT_EQ(entry.field->value(), "300");
}

TEST(XmlEntry, SliderHasDefaults)
{
    Entry<Ondrel::SliderInputField, PrecisionSlider> entry("<i type=\"slider\">Radius</i>");
    PrecisionSlider reference("Radius", "0", "100", "50", PrecisionSlider::Integer, PrecisionSlider::Range, nullptr);
    ASSERT_NE(entry.widget, nullptr);
    EXPECT_EQ(entry.field->value(), "50");
    entry.field->setValue("3.7");
    EXPECT_EQ(entry.field->value(), "3") << "an integer slider";
    entry.field->setValue("50");
    reference.setFixedSize(entry.widget->size());
    EXPECT_EQ(entry.widget->grab().toImage(), reference.grab().toImage());
    // A value outside of the range is brought into it by the slider.
    EXPECT_EQ(loadInputs("<i type=\"slider\" value=\"200\"/>")->inputValue(0), QVariant(QString("100")));
    EXPECT_EQ(loadInputs("<i type=\"slider\" min=\"60\"/>")->inputValue(0), QVariant(QString("60")));
}

TEST(XmlEntry, SliderModes)
{
    const struct {
        const char* attribute;
        const char* value;
    } cases[] = {{"", "0"},
                 {"mode=\"integer\"", "0"},
                 {"mode=\"INTEGER\"", "0"},
                 {"mode=\"double\"", "0.25"},
                 {"mode=\"float\"", "0.25"},
                 {"mode=\"\"", "0.25"},
                 {"mode=\" integer\"", "0.25"},
                 {"Mode=\"double\"", "0"}};
    for (const auto& c : cases) {
        const auto node = loadInputs(QString("<i type=\"slider\" value=\"0.25\" %1/>").arg(c.attribute));
        EXPECT_EQ(node->inputValue(0), QVariant(QString(c.value))) << c.attribute;
    }
}

TEST(XmlEntry, SliderStyles)
{
    const struct {
        const char* attribute;
        PrecisionSlider::DisplayStyle style;
    } cases[] = {{"", PrecisionSlider::Range},
                 {"style=\"Range\"", PrecisionSlider::Range},
                 {"style=\"arrows\"", PrecisionSlider::Arrows},
                 {"style=\"\"", PrecisionSlider::Arrows},
                 {"style=\"list\"", PrecisionSlider::Arrows}};
    for (const auto& c : cases) {
        Entry<Ondrel::SliderInputField, PrecisionSlider> entry(
            QString("<i type=\"slider\" postfix=\" pixels\" %1>Radius</i>").arg(c.attribute));
        ASSERT_NE(entry.widget, nullptr);
        PrecisionSlider reference("Radius", "0", "100", "50", PrecisionSlider::Integer, c.style, nullptr);
        reference.setPostfix(" pixels");
        EXPECT_EQ(entry.widget->minimumSizeHint(), reference.minimumSizeHint()) << c.attribute;
        reference.setFixedSize(entry.widget->size());
        EXPECT_EQ(entry.widget->grab().toImage(), reference.grab().toImage()) << c.attribute;
    }
}

TEST(XmlEntry, SliderGradients)
{
    const auto look = [](const char* attribute) {
        Entry<Ondrel::SliderInputField, PrecisionSlider> entry(
            QString("<i type=\"slider\" %1>Radius</i>").arg(attribute));
        return entry.widget->grab().toImage();
    };
    const auto reference = [](const QVector<QPair<double, QColor>>& stops) {
        Entry<Ondrel::SliderInputField, PrecisionSlider> entry("<i type=\"slider\">Radius</i>");
        entry.widget->setGradient(stops);
        return entry.widget->grab().toImage();
    };
    const QImage plain = look("");
    EXPECT_NE(look("groovegradient=\"red,blue\""), plain);
    EXPECT_EQ(look("groovegradient=\"red,blue\""), reference({{0, Qt::red}, {1, Qt::blue}}));
    EXPECT_EQ(look("groovegradient=\"red,nosuchcolour,#0000ff\""), reference({{0, Qt::red}, {1, Qt::blue}}));
    EXPECT_EQ(look("groovegradient=\"red\""), reference({{0, Qt::red}, {1, Qt::red}}));
    EXPECT_EQ(look("groovegradient=\"nosuchcolour\""), plain) << "no stop, no gradient";
    EXPECT_EQ(look("groovegradient=\"\""), plain);
    EXPECT_EQ(look("bargradient=\"red,blue\""), plain) << "a slider has no bar";
}

TEST(XmlEntry, RangeSlider)
{
    Entry<Ondrel::RangeSliderInputField, PrecisionRangeSlider> entry(
        "<i name=\"Levels\" type=\"RangeSlider\" min=\"10\" max=\"255\" left=\"20\" right=\"200\" value=\"7\" "
        "postfix=\"px\" mode=\"double\">Levels</i>");
    ASSERT_NE(entry.widget, nullptr);
    EXPECT_EQ(entry.field->name(), "levels");
    EXPECT_EQ(entry.field->displayName(), "Levels");
    EXPECT_EQ(entry.node->fieldTypes, std::vector<QString>{"rangeslider"});
    EXPECT_EQ(entry.field->value().left, "20");
    EXPECT_EQ(entry.field->value().right, "200");

    Entry<Ondrel::RangeSliderInputField, PrecisionRangeSlider> plain("<i type=\"rangeslider\">Levels</i>");
    EXPECT_EQ(plain.field->value().left, "0");
    EXPECT_EQ(plain.field->value().right, "100");
    PrecisionRangeSlider reference("Levels", "0", "100", "0", "100", nullptr);
    reference.setStyleSheet(plain.widget->styleSheet());
    reference.setFixedSize(plain.widget->size());
    EXPECT_EQ(plain.widget->grab().toImage(), reference.grab().toImage());
}

TEST(XmlEntry, RangeSliderGradients)
{
    const auto look = [](const char* attributes) {
        Entry<Ondrel::RangeSliderInputField, PrecisionRangeSlider> entry(
            QString("<i type=\"rangeslider\" left=\"20\" right=\"70\" %1>Levels</i>").arg(attributes));
        return entry.widget->grab().toImage();
    };
    const QImage plain = look(""), groove = look("groovegradient=\"red,blue\""), bar = look("bargradient=\"red,blue\"");
    EXPECT_NE(groove, plain);
    EXPECT_NE(bar, plain);
    EXPECT_NE(bar, groove);
    EXPECT_EQ(look("groovegradient=\"x\" bargradient=\",\""), plain);
}

TEST(XmlEntry, ComboBox)
{
    Entry<Ondrel::ComboBoxInputField, Ondrel::ListComboBox> entry(
        "<i name=\"Blend\" type=\"ComboBox\" choices=\"Normal,Screen,--, Multiply,,x\" initial=\"3\">Mode</i>");
    ASSERT_NE(entry.widget, nullptr);
    EXPECT_EQ(entry.field->name(), "blend");
    EXPECT_EQ(entry.field->displayName(), "Mode");
    EXPECT_EQ(entry.node->fieldTypes, std::vector<QString>{"combobox"});
    EXPECT_EQ(entry.field->values(), (std::vector<QVariant>{"Normal", "Screen", "", " Multiply", "", "x"}));
    EXPECT_EQ(entry.field->currentIndex(), 3) << "a separator occupies an index";
    EXPECT_EQ(entry.node->inputValue(0), QVariant(QString(" Multiply")));
    EXPECT_EQ(entry.widget->itemText(4), "");
}

TEST(XmlEntry, ComboBoxWithoutChoicesHasAnEmptyOne)
{
    for (const char* xml : {"<i type=\"combobox\"/>", "<i type=\"combobox\" choices=\"\"/>"}) {
        const auto node = loadInputs(xml);
        EXPECT_EQ(node->field<Ondrel::ComboBoxInputField>(0)->values(), std::vector<QVariant>{QString()});
        EXPECT_EQ(node->inputValue(0), QVariant(QString("")));
    }
}

TEST(XmlEntry, ComboBoxInitialIndex)
{
    const struct {
        const char* initial;
        int index;
    } cases[] = {{"0", 0},   {"2", 2}, {"+1", 1}, {"3", 0},   {"-1", 0},
                 {"two", 0}, {"", 0},  {" 1", 0}, {"1.0", 0}, {"0x1", 0}};
    for (const auto& c : cases) {
        const auto node = loadInputs(QString("<i type=\"combobox\" choices=\"a,b,c\" initial=\"%1\"/>").arg(c.initial));
        EXPECT_EQ(node->field<Ondrel::ComboBoxInputField>(0)->currentIndex(), c.index) << c.initial;
    }
}

TEST(XmlEntry, ComboBoxStyles)
{
    const struct {
        const char* style;
        bool list;
    } cases[] = {{"", true}, {"style=\"List\"", true}, {"style=\"thumbnails\"", false}, {"style=\"\"", false}};
    for (const auto& c : cases) {
        Entry<Ondrel::ComboBoxInputField> entry(QString("<i type=\"combobox\" choices=\"a,--,b\" %1/>").arg(c.style));
        ASSERT_NE(entry.widget, nullptr);
        EXPECT_EQ(qobject_cast<Ondrel::ListComboBox*>(entry.widget) != nullptr, c.list) << c.style;
        EXPECT_EQ(qobject_cast<Ondrel::ThumbnailComboBox*>(entry.widget) != nullptr, !c.list) << c.style;
        EXPECT_EQ(entry.field->values()[1], QVariant(QString(c.list ? "" : "--")));
    }
}

TEST(XmlEntry, ComboBoxAsksTheHostForItsThumbnails)
{
    Entry<Ondrel::ComboBoxInputField, Ondrel::ThumbnailComboBox> entry(
        "<i name=\"film\" type=\"combobox\" style=\"thumbnails\" choices=\"a,b\"/>");
    ASSERT_NE(entry.widget, nullptr);
    QStringList asked;
    QObject::connect(entry.node,
                     QOverload<Ondrel::PreviewNode*, const QString&, const std::vector<QVariant>&>::of(
                         &Ondrel::PreviewNode::thumbnailsRequested),
                     entry.node,
                     [&](Ondrel::PreviewNode* sender, const QString& name, const std::vector<QVariant>& values) {
                         EXPECT_EQ(sender, entry.node);
                         asked << name;
                         for (const QVariant& value : values)
                             asked << value.toString();
                     });
    entry.widget->showPopup();
    EXPECT_EQ(asked, QStringList({"film", "a", "b"}));
    entry.widget->hidePopup();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(XmlEntry, Color)
{
    const struct {
        const char* value;
        Ondrel::Color color;
    } cases[] = {{"", {0, 0, 0, 65535}},
                 {"value=\"1,2,3\"", {1, 2, 3, 65535}},
                 {"value=\"1,2,3,4\"", {1, 2, 3, 4}},
                 {"value=\"nonsense\"", {0, 0, 0, 65535}},
                 {"value=\"\"", {0, 0, 0, 65535}}};
    for (const auto& c : cases) {
        const auto node = loadInputs(QString("<i name=\"Tint\" type=\"Color\" %1>Tint</i>").arg(c.value));
        auto* field = node->field<Ondrel::ColorField>(0);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->name(), "tint");
        EXPECT_EQ(field->displayName(), "Tint");
        EXPECT_EQ(field->color(), c.color) << c.value;
        EXPECT_EQ(node->inputValue(0), QVariant(c.color));
        EXPECT_EQ(node->inputValue(0).userType(), qMetaTypeId<Ondrel::Color>());
        EXPECT_EQ(node->fieldTypes[0], "color");
    }
}

TEST(XmlEntry, ColorProfileListsWhatTheRegistryHas)
{
    const auto node = loadInputs("<i name=\"Profile\" type=\"ColorProfile\">Profile</i>");
    auto* field = node->field<Ondrel::ColorProfileField>(0);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->name(), "profile");
    EXPECT_EQ(field->displayName(), "Profile");
    EXPECT_EQ(node->fieldTypes[0], "colorprofile");
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    using Profile = Ondrel::ColorManager::ColorProfile;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB},
                                                           {Profile::BuiltIn, Profile::System, Profile::User});
    ASSERT_FALSE(profiles.empty());
    std::vector<QVariant> names;
    for (const auto& profile : profiles)
        names.emplace_back(profile.first);
    EXPECT_EQ(field->values(), names);
    const auto& hash = Ondrel::DefaultColorProfileHash;
    EXPECT_EQ(node->inputValue(0).toByteArray(), QByteArray(reinterpret_cast<const char*>(hash.data()), 32));
    EXPECT_EQ(node->inputValue(0).type(), QVariant::ByteArray);
}

TEST(XmlEntry, ResourceAndHidden)
{
    const auto node = loadInputs("<i name=\"Mask\" type=\"Resource\">Mask</i><i name=\"State\" type=\"Hidden\">x</i>");
    auto* resource = node->field<Ondrel::ResourceField>(0);
    auto* hidden = node->field<Ondrel::HiddenField>(1);
    ASSERT_TRUE(resource && hidden);
    EXPECT_EQ(resource->name(), "mask");
    EXPECT_EQ(resource->displayName(), "") << "their text is not read";
    EXPECT_EQ(hidden->name(), "state");
    EXPECT_EQ(hidden->displayName(), "");
    EXPECT_EQ(node->inputValue(0).userType(), qMetaTypeId<Ondrel::ResourceId>());
    EXPECT_EQ(node->inputValue(0).value<Ondrel::ResourceId>(), resource->resource());
    EXPECT_FALSE(node->inputValue(1).isValid());
    node->layout();
    EXPECT_EQ(node->rect().height(), node->headerSize().height());
}

TEST(XmlEntry, ControlsReportTheirChanges)
{
    // A slider is the only control of these that a user can change without a window of its own.
    Entry<Ondrel::SliderInputField, PrecisionSlider> slider("<i type=\"slider\"/>");
    slider.node->log.take();
    slider.widget->setValue(QString("7"));
    EXPECT_EQ(slider.node->log.take(), QStringList({"updated"}));
    Entry<Ondrel::RangeSliderInputField, PrecisionRangeSlider> range("<i type=\"rangeslider\"/>");
    range.node->log.take();
    range.widget->setValue("7", "9");
    EXPECT_EQ(range.node->log.take(), QStringList({"updated"}));
    Entry<Ondrel::ComboBoxInputField, QComboBox> box("<i type=\"combobox\" choices=\"a,b\"/>");
    box.node->log.take();
    box.widget->setCurrentIndex(1);
    EXPECT_EQ(box.node->log.take(), QStringList({"updated"}));
    Entry<Ondrel::ColorField, QWidget> color("<i type=\"color\"/>");
    color.node->log.take();
    QMetaObject::invokeMethod(color.field, "valueChanged");
    EXPECT_EQ(color.node->log.take(), QStringList({"updated"}));
    Entry<Ondrel::ColorProfileField, QComboBox> profile("<i type=\"colorprofile\"/>");
    profile.node->log.take();
    profile.field->setChoices({"a", "b"});
    profile.widget->setCurrentIndex(1);
    EXPECT_EQ(profile.node->log.take(), QStringList({"updated"}));
}

} // namespace
