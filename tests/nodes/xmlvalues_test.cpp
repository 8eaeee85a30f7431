// Reading and writing the values of nodes from files.

#include "tests/support/testprofiles.h"
#include "xmlsupport.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/color.h>
#include <ondrel/nodes/fields/colorprofilefield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Color;
using Ondrel::ColorManager;
using Ondrel::ColorProfileField;
using Ondrel::ResourceId;
using RangeValue = Ondrel::PrecisionRangeSlider::RangeValue;

const QStringList kOnce{"updated"}, kTwice{"updated", "updated"};

RangeValue range(const QVariant& value)
{
    EXPECT_EQ(value.userType(), qMetaTypeId<RangeValue>());
    return value.value<RangeValue>();
}

TEST(XmlValue, SliderIsTextAndReportsItsOwnChangeToo)
{
    const auto node = loadInputs("<i type=\"slider\"/>");
    EXPECT_EQ(node->inputValue(0), QVariant(QString("50")));
    EXPECT_EQ(node->inputValue(0).type(), QVariant::String);
    node->setInputValue(0, "7");
    EXPECT_EQ(node->inputValue(0), QVariant(QString("7")));
    EXPECT_EQ(node->log.take(), kTwice);
    node->setInputValue(0, "7");
    EXPECT_EQ(node->log.take(), kOnce) << "nothing changed";
    node->setInputValue(0, 9);
    EXPECT_EQ(node->inputValue(0), QVariant(QString("9")));
    EXPECT_EQ(node->log.take(), kTwice);
}

TEST(XmlValue, SliderInDoubleModeKeepsItsText)
{
    const auto node = loadInputs("<i type=\"slider\" mode=\"double\" value=\"0.5\"/>");
    node->setInputValue(0, "0.1");
    EXPECT_EQ(node->inputValue(0), QVariant(QString("0.1")));
}

TEST(XmlValue, RangeSliderIsAPairOfTexts)
{
    const auto node = loadInputs("<i type=\"rangeslider\" left=\"10\" right=\"20\"/>");
    EXPECT_EQ(range(node->inputValue(0)).left, "10");
    EXPECT_EQ(range(node->inputValue(0)).right, "20");
    node->setInputValue(0, QVariant::fromValue(RangeValue{"30", "40"}));
    EXPECT_EQ(range(node->inputValue(0)).left, "30");
    EXPECT_EQ(range(node->inputValue(0)).right, "40");
    EXPECT_EQ(node->log.take(), kTwice);
    // What cannot be converted counts as two empty texts.
    const auto expected = loadInputs("<i type=\"rangeslider\" left=\"\" right=\"\"/>");
    node->setInputValue(0, QString("nonsense"));
    EXPECT_EQ(node->log.take().last(), "updated");
    EXPECT_EQ(range(node->inputValue(0)).left.toLongLong(), 0);
    EXPECT_EQ(range(node->inputValue(0)).right.toLongLong(), 0);
}

TEST(XmlValue, ComboBoxIsTheShownTextAndChangesInSilence)
{
    const auto node = loadInputs("<i type=\"combobox\" choices=\"a,b,c,b\"/>");
    auto* field = node->field<Ondrel::ComboBoxInputField>(0);
    EXPECT_EQ(node->inputValue(0), QVariant(QString("a")));
    node->setInputValue(0, "b");
    EXPECT_EQ(field->currentIndex(), 1) << "the first of that text";
    EXPECT_EQ(node->log.take(), kOnce);
    for (const QVariant& unknown : {QVariant("B"), QVariant("nothing"), QVariant(), QVariant(2)}) {
        node->setInputValue(0, unknown);
        EXPECT_EQ(node->inputValue(0), QVariant(QString("b")));
        EXPECT_EQ(node->log.take(), kOnce);
    }
}

TEST(XmlValue, ColorIsAColorAndChangesInSilence)
{
    const auto node = loadInputs("<i type=\"color\" value=\"1,2,3\"/>");
    EXPECT_EQ(node->inputValue(0).userType(), qMetaTypeId<Color>());
    EXPECT_EQ(node->inputValue(0).value<Color>(), Color(1, 2, 3, 65535));
    node->setInputValue(0, Color(4, 5, 6, 7));
    EXPECT_EQ(node->inputValue(0).value<Color>(), Color(4, 5, 6, 7));
    EXPECT_EQ(node->log.take(), kOnce);
    for (const QVariant& other : {QVariant(), QVariant(5), QVariant(QSize(1, 2))}) {
        node->setInputValue(0, Color(4, 5, 6, 7));
        node->setInputValue(0, other);
        EXPECT_EQ(node->inputValue(0).value<Color>(), Color(0, 0, 0, 65535)) << "opaque black";
        EXPECT_EQ(node->log.take(), kTwice);
    }
}

TEST(XmlValue, ResourceIsAnIdAndChangesInSilence)
{
    const auto node = loadInputs("<i type=\"resource\"/>");
    const QVariant own = node->inputValue(0);
    EXPECT_EQ(own.userType(), qMetaTypeId<ResourceId>());
    EXPECT_NE(own.value<ResourceId>(), ResourceId());
    node->setInputValue(0, QVariant::fromValue(ResourceId(77)));
    EXPECT_EQ(node->inputValue(0).value<ResourceId>(), ResourceId(77));
    EXPECT_EQ(node->log.take(), kOnce);
    for (const QVariant& other : {QVariant(), QVariant("text")}) {
        node->setInputValue(0, QVariant::fromValue(ResourceId(77)));
        node->setInputValue(0, other);
        EXPECT_EQ(node->inputValue(0).value<ResourceId>(), ResourceId());
        EXPECT_EQ(node->log.take(), kTwice);
    }
}

TEST(XmlValue, HiddenIsWhateverWasStored)
{
    const auto node = loadInputs("<i type=\"hidden\"/>");
    EXPECT_FALSE(node->inputValue(0).isValid());
    for (const QVariant& value : {QVariant("text"), QVariant(QSize(1, 2)), QVariant()}) {
        node->setInputValue(0, value);
        EXPECT_EQ(node->inputValue(0), value);
        EXPECT_EQ(node->log.take(), kOnce);
    }
}

TEST(XmlValue, OtherFieldsHaveNone)
{
    const auto node = loadInputs("<i/><i type=\"label\">Text</i><i type=\"preview\"/>");
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(node->inputValue(i).isValid());
        node->setInputValue(static_cast<unsigned long>(i), "text");
        EXPECT_FALSE(node->inputValue(i).isValid());
        EXPECT_EQ(node->log.take(), kOnce);
    }
}

TEST(XmlValue, AnIndexBeyondTheFieldsDoesNothingButReport)
{
    const auto node = loadInputs("<i type=\"slider\"/>");
    for (const int index : {-1, 1, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_FALSE(node->inputValue(index).isValid()) << index;
    for (const unsigned long index : {1UL, 100UL, std::numeric_limits<unsigned long>::max()}) {
        node->setInputValue(index, "7");
        EXPECT_EQ(node->log.take(), kOnce) << index;
    }
    EXPECT_EQ(node->inputValue(0), QVariant(QString("50")));
}

TEST(XmlValue, InputValueChangedReportsAndDoesNothingElse)
{
    const auto node = loadInputs("<i type=\"slider\"/>");
    node->inputValueChanged();
    EXPECT_EQ(node->log.take(), kOnce);
    EXPECT_GE(node->metaObject()->indexOfSlot("inputValueChanged()"), 0);
    EXPECT_GE(node->metaObject()->indexOfSlot("comboBoxFieldSetValueChanged()"), 0);
}

// --- Colour profiles -----------------------------------------------------------------------------------------------

// Two profiles in the registry besides those that are always there: one that a user added, one from an image.
class XmlColorProfile : public testing::Test
{
protected:
    XmlColorProfile()
    {
        user = add(2.6, "A profile of the user", ColorManager::ColorProfile::System);
        embedded = add(2.7, "A profile of an image", ColorManager::ColorProfile::Embedded);
        node = loadInputs("<i/><i type=\"colorprofile\"/><i type=\"colorprofile\"/>");
    }
    ~XmlColorProfile() override
    {
        ColorManager::removeColorProfile(user, ColorManager::ColorProfile::System);
        ColorManager::removeColorProfile(embedded, ColorManager::ColorProfile::Embedded);
    }
    static Hash add(double gamma, const std::string& name, ColorManager::ColorProfile::Type type)
    {
        Hash hash{};
        EXPECT_TRUE(ColorManager::addColorProfile(savedBytes(rgbProfile(gamma, name).get()), type, &hash));
        return hash;
    }
    QByteArray chosen(int index = 1) { return node->inputValue(index).toByteArray(); }

    Hash user{}, embedded{};
    const QByteArray standard = toByteArray(Ondrel::DefaultColorProfileHash);
    std::unique_ptr<TestXml> node;
};

TEST_F(XmlColorProfile, IsItsHashAndReportsItsOwnChangeToo)
{
    EXPECT_EQ(chosen(), standard);
    node->setInputValue(1, toByteArray(user));
    EXPECT_EQ(chosen(), toByteArray(user));
    EXPECT_EQ(node->log.take(), kTwice);
    node->setInputValue(1, toByteArray(user));
    EXPECT_EQ(node->log.take(), kOnce);
    EXPECT_EQ(chosen(2), standard);
}

TEST_F(XmlColorProfile, FallsBackToTheDefaultOne)
{
    for (const QVariant& unknown :
         {QVariant(), QVariant("nonsense"), QVariant(QByteArray(32, 'x')), QVariant(toByteArray(embedded))}) {
        node->setInputValue(1, toByteArray(user));
        node->setInputValue(1, unknown);
        EXPECT_EQ(chosen(), standard);
    }
}

TEST_F(XmlColorProfile, NeverOffersThoseOfImages)
{
    const auto names = node->field<ColorProfileField>(1)->values();
    EXPECT_NE(std::find(names.begin(), names.end(), QVariant("A profile of the user")), names.end());
    EXPECT_EQ(std::find(names.begin(), names.end(), QVariant("A profile of an image")), names.end());
}

TEST_F(XmlColorProfile, FollowsTheRegistryInSilence)
{
    node->setInputValue(1, toByteArray(user));
    node->log.take();
    const Hash more = add(2.8, "A newer profile", ColorManager::ColorProfile::System);
    const auto names = [this] { return node->field<ColorProfileField>(2)->values(); };
    EXPECT_NE(names().front(), QVariant("A newer profile"));
    node->availableColorProfilesChanged();
    EXPECT_EQ(node->log.take(), QStringList({"profiles"})) << "no value has changed";
    EXPECT_EQ(chosen(), toByteArray(user));
    EXPECT_EQ(chosen(2), standard);
    EXPECT_EQ(names().front(), QVariant("A newer profile"));
    ColorManager::removeColorProfile(more, ColorManager::ColorProfile::System);
    ColorManager::removeColorProfile(user, ColorManager::ColorProfile::System);
    node->availableColorProfilesChanged();
    EXPECT_EQ(chosen(), standard) << "the chosen one is gone";
    EXPECT_EQ(node->log.take(), QStringList({"profiles"}));
}

} // namespace
