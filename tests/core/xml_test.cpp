#include <ondrel/core/xml.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

QDomElement element(const QString& xml)
{
    static QDomDocument document; // elements are handles into it
    document = QDomDocument();
    EXPECT_TRUE(document.setContent(xml)) << qPrintable(xml);
    return document.documentElement();
}

QDomElement withValue(const QString& value)
{
    QDomElement e = element("<e/>");
    e.setAttribute("v", value);
    return e;
}

int asInt(const QString& value)
{
    return Ondrel::AttributeAsInt(withValue(value), "v", -7);
}

float asFloat(const QString& value)
{
    return Ondrel::AttributeAsFloat(withValue(value), "v", -7.0f);
}

TEST(XmlText, JoinsDirectTextAlone)
{
    EXPECT_EQ(Ondrel::NodeTextValue(element("<e>one<!-- no -->two<i>three</i>four</e>")), "onetwofour");
    EXPECT_EQ(Ondrel::NodeTextValue(element("<e>a<![CDATA[<b>]]>c</e>")), "a<b>c");
    EXPECT_EQ(Ondrel::NodeTextValue(element("<e/>")), "");
    EXPECT_EQ(Ondrel::NodeTextValue(QDomNode()), "");
}

TEST(XmlText, IsNotTrimmed)
{
    EXPECT_EQ(Ondrel::NodeTextValue(element("<e>  one \n</e>")), "  one \n");
}

TEST(XmlAttribute, AbsentGivesTheDefault)
{
    const QDomElement e = element("<e a='x'/>");
    EXPECT_EQ(Ondrel::AttributeAsString(e, "b", "def"), "def");
    EXPECT_EQ(Ondrel::AttributeAsInt(e, "b", 5), 5);
    EXPECT_EQ(Ondrel::AttributeAsFloat(e, "b", 0.5f), 0.5f);
    EXPECT_TRUE(Ondrel::AttributeAsGradient(e, "b").isEmpty());
    EXPECT_EQ(Ondrel::AttributeAsString(QDomNode(), "b", "def"), "def");
}

TEST(XmlAttribute, NamesAreMatchedExactly)
{
    const QDomElement e = element("<e Value='x'/>");
    EXPECT_EQ(Ondrel::AttributeAsString(e, "value", "def"), "def");
    EXPECT_EQ(Ondrel::AttributeAsString(e, "Value", "def"), "x");
}

TEST(XmlAttribute, PresentButEmptyIsTheEmptyText)
{
    const QDomElement e = element("<e a=''/>");
    EXPECT_EQ(Ondrel::AttributeAsString(e, "a", "def"), "");
    EXPECT_EQ(Ondrel::AttributeAsLowerString(e, "a", "def"), "");
}

TEST(XmlAttribute, LoweringAppliesToTheDefaultToo)
{
    const QDomElement e = element("<e a='MiXed'/>");
    EXPECT_EQ(Ondrel::AttributeAsLowerString(e, "a", "DEF"), "mixed");
    EXPECT_EQ(Ondrel::AttributeAsLowerString(e, "b", "DEF"), "def");
}

TEST(XmlInt, TheWholeTextMustBeANumber)
{
    EXPECT_EQ(asInt("12"), 12);
    EXPECT_EQ(asInt("-12"), -12);
    EXPECT_EQ(asInt("+12"), 12);
    EXPECT_EQ(asInt("0012"), 12);
    for (const char* text : {" 12", "12 ", "12px", "0x10", "", "1.0", "1e3", "--1", "1,000", "nan"})
        EXPECT_EQ(asInt(text), -7) << text;
}

TEST(XmlInt, ValuesOutsideTheTypeFail)
{
    EXPECT_EQ(asInt("2147483647"), 2147483647);
    EXPECT_EQ(asInt("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(asInt("2147483648"), -7);
    EXPECT_EQ(asInt("-2147483649"), -7);
}

TEST(XmlFloat, TheWholeTextMustBeANumber)
{
    EXPECT_EQ(asFloat("0.5"), 0.5f);
    EXPECT_EQ(asFloat("-2.5e3"), -2500.0f);
    EXPECT_EQ(asFloat("7"), 7.0f);
    for (const char* text : {"1,5", " 0.5", "0.5 ", "0.5f", "", "0x10", "1e", "."})
        EXPECT_EQ(asFloat(text), -7.0f) << text;
}

TEST(XmlFloat, NotANumberAndInfinityAreAccepted)
{
    EXPECT_TRUE(std::isnan(asFloat("nan")));
    EXPECT_TRUE(std::isnan(asFloat("NAN")));
    EXPECT_TRUE(std::isnan(asFloat("-nan")));
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(asFloat("inf"), infinity);
    EXPECT_EQ(asFloat("INF"), infinity);
    EXPECT_EQ(asFloat("-infinity"), -infinity);
    EXPECT_EQ(asFloat("INFINITY"), infinity);
}

TEST(XmlFloat, OverflowFailsAndUnderflowIsZero)
{
    EXPECT_EQ(asFloat("1e39"), -7.0f);
    EXPECT_EQ(asFloat("1e-50"), 0.0f);
}

TEST(XmlNumber, TheTemplateServesBothTypes)
{
    EXPECT_EQ(Ondrel::AttributeAsT<int>(withValue("3"), "v", 1), 3);
    EXPECT_EQ(Ondrel::AttributeAsT<float>(withValue("3.5"), "v", 1.0f), 3.5f);
}

using Stops = QVector<QPair<double, QColor>>;

Stops gradient(const QString& value)
{
    return Ondrel::AttributeAsGradient(withValue(value), "v");
}

TEST(XmlGradient, ColoursAreSpacedEvenly)
{
    const Stops expected = {{0.0, QColor("#000000")}, {0.5, QColor("#ff0000")}, {1.0, QColor("#ffffff")}};
    EXPECT_EQ(gradient("#000000,#ff0000,#ffffff"), expected);
    const Stops four = gradient("red,green,blue,white");
    ASSERT_EQ(four.size(), 4);
    EXPECT_EQ(four[1].first, 1.0 / 3.0);
    EXPECT_EQ(four[2].first, 2.0 / 3.0);
    EXPECT_EQ(four[3].first, 1.0);
}

TEST(XmlGradient, OneColourGivesTwoStops)
{
    const Stops expected = {{0.0, QColor("red")}, {1.0, QColor("red")}};
    EXPECT_EQ(gradient("red"), expected);
}

TEST(XmlGradient, ColoursThatDoNotExistAreDroppedBeforeSpacing)
{
    const Stops expected = {{0.0, QColor("red")}, {1.0, QColor("blue")}};
    EXPECT_EQ(gradient("red,nosuchcolour,blue"), expected);
    EXPECT_EQ(gradient("#ff,red,rgb(1,2,3),,blue"), expected);
    EXPECT_TRUE(gradient("nosuchcolour").isEmpty());
    EXPECT_TRUE(gradient("").isEmpty());
    EXPECT_TRUE(gradient(",,").isEmpty());
}

TEST(XmlGradient, AlphaAndTransparentAreColours)
{
    const Stops stops = gradient("#80ff0000,transparent");
    ASSERT_EQ(stops.size(), 2);
    EXPECT_EQ(stops[0].second, QColor(255, 0, 0, 128));
    EXPECT_EQ(stops[1].second.alpha(), 0);
}

TEST(XmlElement, HasOneTextChildAndNoParent)
{
    QDomDocument document;
    for (const QString& text : {QString("words"), QString("")}) {
        const QDomElement e = Ondrel::TextElement(document, "field", text);
        EXPECT_EQ(e.tagName(), "field");
        EXPECT_EQ(e.childNodes().size(), 1);
        EXPECT_TRUE(e.firstChild().isText());
        EXPECT_EQ(e.text(), text);
        EXPECT_TRUE(e.parentNode().isNull());
    }
    EXPECT_FALSE(document.hasChildNodes());
}

} // namespace
