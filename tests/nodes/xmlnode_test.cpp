// Node files as documents: what is a node, what is not, and what is said about it.

#include "xmlsupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>

#include <QDomDocument>

namespace
{

using namespace OndrelTest;
using Ondrel::XmlNode;

const std::string kUnparsable = "Unable to parse node XML:\n";
const std::string kInvalid = "Failed to create node type because of invalid XML:\n";

std::string malformed(int number)
{
    return "Failed to create node type because of malformed input field " + std::to_string(number) + " in XML:\n";
}

void expectFailure(const QString& xml, const std::string& message)
{
    const Loaded loaded = load(xml);
    EXPECT_EQ(loaded.node, nullptr);
    EXPECT_EQ(loaded.errors, message + xml.toStdString() + "\n");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(TestXml::alive, 0);
}

TEST(XmlNode, HasAHeaderAloneIfTheFileIsEmpty)
{
    const auto node = loadNode("<node><input/><output/></node>");
    EXPECT_EQ(node->inputFieldCount(), 0U);
    EXPECT_EQ(node->outputFieldCount(), 0U);
    EXPECT_EQ(node->parentItem(), nullptr);
    EXPECT_EQ(node->scene(), nullptr);
    node->layout();
    EXPECT_EQ(node->rect().height(), node->headerSize().height());
    EXPECT_EQ(node->rect().width(), 200);
    EXPECT_EQ(node->name(), QString());
    EXPECT_EQ(node->id(), 0U);
}

TEST(XmlNode, KeepsItsPreviewFieldButDoesNotCountIt)
{
    const auto node = loadNode("<node><input/><output/></node>");
    EXPECT_EQ(node->previewField->parentItem(), node.get());
    EXPECT_TRUE(node->previewField->isVisible());
    EXPECT_EQ(node->previewField->pos(), QPointF(0, 0));
    EXPECT_EQ(node->inputIndexOfFieldByName("preview"), -1);
    XmlNode bare(nullptr);
    EXPECT_EQ(bare.inputFieldCount(), 0U);
    EXPECT_EQ(bare.outputFieldCount(), 0U);
}

TEST(XmlNode, BuildsWhatTheFileSays)
{
    const auto node =
        loadNode("<node><input><field name=\"source\"/><field type=\"preview\"/><field name=\"radius\" type=\"slider\" "
                 "min=\"0\" max=\"250\" value=\"10\" postfix=\"px\">Radius</field><field name=\"method\" "
                 "type=\"fieldsetcombobox\" initial=\"1\"><label>Method</label><fieldset choice=\"Fast\"/><fieldset "
                 "choice=\"Mask\"><field name=\"mask\">Mask</field></fieldset></field></input><output><field "
                 "name=\"image\">Image</field></output></node>");
    ASSERT_EQ(node->outputFieldCount(), 1U);
    EXPECT_EQ(node->outputNameOfFieldByIndex(0), "image");
    EXPECT_EQ(node->outputDisplayNameOfFieldByIndex(0), "Image");
    ASSERT_NE(node->outputAnchorOfFieldByIndex(0), nullptr);
    EXPECT_EQ(node->outputAnchorOfFieldByIndex(0)->direction(), Ondrel::Anchor::Output);
    ASSERT_EQ(node->inputFieldCount(), 5U);
    const QStringList names{"source", "preview", "radius", "method", "mask"};
    const QStringList texts{"", "", "Radius", "Method", "Mask"};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(node->inputNameOfFieldByIndex(static_cast<unsigned long>(i)), names[i]);
        EXPECT_EQ(node->inputDisplayNameOfFieldByIndex(static_cast<unsigned long>(i)), texts[i]);
        EXPECT_EQ(node->inputAnchorOfFieldByIndex(static_cast<unsigned long>(i)) != nullptr, i == 0 || i == 4);
    }
    EXPECT_EQ(node->inputAnchorOfFieldByIndex(0)->direction(), Ondrel::Anchor::Input);
    EXPECT_EQ(node->fieldTypes, (std::vector<QString>{"", "preview", "slider", "combobox", ""}));
    EXPECT_EQ(node->inputFields[1], node->previewField);
    EXPECT_EQ(node->inputValue(2), QVariant(QString("10")));
    EXPECT_EQ(node->inputValue(3), QVariant(QString("Mask")));
    EXPECT_TRUE(node->inputFields[4]->isVisible());
    for (const auto* field : node->inputFields)
        EXPECT_EQ(field->parentItem(), node.get());
}

TEST(XmlNode, IsMadeByCreateToo)
{
    const std::unique_ptr<XmlNode> node(XmlNode::create("<node><input><field name=\"a\"/></input><output/></node>"));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->inputFieldCount(), 1U);
    testing::internal::CaptureStderr();
    EXPECT_EQ(XmlNode::create("<node></node>"), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), kInvalid + "<node></node>\n");
}

TEST(XmlNode, TakesAnyRootWithTwoChildren)
{
    EXPECT_EQ(loadNode("<anything><output><o/></output><input><i/><i/></input></anything>")->inputFieldCount(), 2U);
    EXPECT_EQ(loadNode("<node><input><i/></input><help/></node>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<node><a/><b/></node>")->inputFieldCount(), 0U);
    EXPECT_EQ(loadNode("<node><Input><i/></Input><output/></node>")->inputFieldCount(), 0U) << "case counts";
    EXPECT_EQ(loadNode("<node>text<input><i/></input></node>")->inputFieldCount(), 1U) << "text is a child";
    EXPECT_EQ(loadNode("<node><![CDATA[x]]><input><i/></input></node>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<node><!-- remark --><input><i/></input></node>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<!DOCTYPE node>\n<node><input><i/></input><output/></node>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<node title=\"Blur\"><input><i/></input><output/></node>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<node><input><i/></input><output/></node><!-- behind -->")->inputFieldCount(), 1U);
}

TEST(XmlNode, OfTwoChildrenOfOneNameTakesTheLater)
{
    const auto node =
        loadNode("<node><input><i name=\"a\"/></input><input><i name=\"b\"/><i name=\"c\"/></input></node>");
    EXPECT_EQ(node->inputFieldCount(), 2U);
    EXPECT_EQ(node->inputNameOfFieldByIndex(0), "b");
    EXPECT_EQ(node->outputFieldCount(), 0U);
}

TEST(XmlNode, MayBeIndented)
{
    const auto node = loadNode("\n  <node>\n  <input>\n    <i name=\"a\"/>\n\t<i name=\"b\"/>\n  </input>\n"
                               "  <output>\n  </output>\n</node>\n");
    EXPECT_EQ(node->inputFieldCount(), 2U);
    EXPECT_EQ(node->outputFieldCount(), 0U);
}

TEST(XmlNode, NeedsExactlyTwoChildren)
{
    for (const char* xml :
         {"<node></node>", "<node/>", "<node><input/></node>", "<node><input/><output/><input/></node>",
          "<node><!-- remark --><input/><output/></node>", "<node>x<input/><output/></node>"})
        expectFailure(xml, kInvalid);
}

TEST(XmlNode, NothingMayStandBeforeTheRoot)
{
    for (const char* xml :
         {"<?xml version=\"1.0\"?><node><input/><output/></node>",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<node><input/><output/></node>",
          "<!-- remark --><node><input/><output/></node>", "<?target data?><node><input/><output/></node>"})
        expectFailure(xml, kInvalid);
}

TEST(XmlNode, MustBeWellFormed)
{
    for (const char* xml : {"", "text", "<node>", "<node><input/><output/>", "<node><input/></output></node>",
                            "<node a=b><input/><output/></node>", "<a/><b/>"})
        expectFailure(xml, kUnparsable);
    expectFailure(QString::fromUtf8("<n\u00f6de \u2014"), kUnparsable);
}

// `levels` elements inside one another, the root and `input` among them.
QString nested(int levels)
{
    QString xml = "<node><output/><input>";
    for (int i = 2; i < levels; ++i)
        xml += "<x>";
    for (int i = 2; i < levels; ++i)
        xml += "</x>";
    return xml + "</input></node>";
}

TEST(XmlNode, MayBeNested256ElementsDeep)
{
    EXPECT_EQ(loadNode(nested(256))->inputFieldCount(), 1U);
    expectFailure(nested(257), kUnparsable);
    expectFailure(nested(30000), kUnparsable);
    // An unclosed tower is refused before anyone climbs it.
    expectFailure(QString("<x>").repeated(100000), kUnparsable);
    // An element written as one tag is a level as well.
    expectFailure(nested(256).replace("<x></x>", "<x><y/></x>"), kUnparsable);
    EXPECT_EQ(loadNode(nested(255).replace("<x></x>", "<x><y/></x>"))->inputFieldCount(), 1U);
}

TEST(XmlNode, CountsElementsOnlyForTheDepth)
{
    const QString tower = QString("<x>").repeated(400);
    EXPECT_EQ(loadInputs("<i><!-- " + tower + " --></i>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadInputs("<i><![CDATA[" + tower + "]]></i>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadInputs(QString("<i a=\"/>>\" b='\">'/>").repeated(600))->inputFieldCount(), 600U);
    EXPECT_EQ(loadInputs(QString("<i a='>'></i>").repeated(600))->inputFieldCount(), 600U);
    EXPECT_EQ(loadInputs("<i><?target " + tower + "?></i>")->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode("<!DOCTYPE node [ <!ELEMENT node ANY> ]><node><input><i>" + QString("<x/>").repeated(400) +
                       "</i></input><output/></node>")
                  ->inputFieldCount(),
              1U);
}

// An entry in which entities build a tower of this many hundred elements.
QString towerOfEntities(int hundreds)
{
    QString entities = "<!ENTITY e0 \"<x></x>\">";
    for (int i = 1; i <= hundreds; ++i)
        entities += QString("<!ENTITY e%1 \"%2&e%3;%4\">")
                        .arg(i)
                        .arg(QString("<x>").repeated(100))
                        .arg(i - 1)
                        .arg(QString("</x>").repeated(100));
    return QString("<!DOCTYPE node [%1]><node><input><i>&e%2;</i></input><output/></node>").arg(entities).arg(hundreds);
}

TEST(XmlNode, CountsElementsInEntities)
{
    EXPECT_EQ(loadNode(towerOfEntities(1))->inputFieldCount(), 1U);
    EXPECT_EQ(loadNode(towerOfEntities(2))->inputFieldCount(), 1U);
    expectFailure(towerOfEntities(3), kUnparsable);
    expectFailure(towerOfEntities(50), kUnparsable);
}

TEST(XmlNode, SurvivesEntitiesThatGrow)
{
    QString entities = "<!ENTITY e0 \"&lt;x&gt;\">";
    for (int i = 1; i < 30; ++i)
        entities += QString("<!ENTITY e%1 \"&e%2;&e%2;&e%2;&e%2;\">").arg(i).arg(i - 1);
    const Loaded loaded = load("<!DOCTYPE node [" + entities + "]><node><input><i>&e29;</i></input><output/></node>");
    EXPECT_TRUE(loaded.node == nullptr || loaded.node->inputFieldCount() == 1);
}

TEST(XmlNode, RefusesUnknownTypesByTheNumberOfTheEntry)
{
    expectFailure("<node><input><i type=\"nonsense\"/></input><output/></node>", malformed(0));
    expectFailure("<node><input><i/><!-- remark --><i type=\"curves\"/></input><output/></node>", malformed(2));
    expectFailure("<node><input><i/><i type=\"slider \"/></input><output/></node>", malformed(1));
    // A box counts once, however many fields it holds, and for all the fields in it.
    expectFailure("<node><input><i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i/><i/><i/></fieldset></i>"
                  "<i type=\"nonsense\"/></input><output><o/></output></node>",
                  malformed(1));
    expectFailure("<node><input><i/><i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i/><i/></fieldset>"
                  "<fieldset choice=\"b\"><i type=\"slider\"/><i type=\"nonsense\"/></fieldset></i>"
                  "</input><output/></node>",
                  malformed(1));
    expectFailure("<node><input><i type=\"fieldsetcombobox\"><fieldset><i type=\"fieldsetcombobox\"/></fieldset></i>"
                  "</input><output/></node>",
                  malformed(0));
}

TEST(XmlNode, TextThatIsNoAsciiIsPrintedAsUtf8)
{
    expectFailure(QString::fromUtf8("<node><input><i type=\"\u00e4\">\u2014</i></input><output/></node>"),
                  malformed(0));
}

TEST(XmlNode, NodesThatFailAreDeletedLater)
{
    const Loaded loaded = load("<node><input><i type=\"slider\"/><i type=\"nonsense\"/></input><output/></node>");
    EXPECT_EQ(loaded.node, nullptr);
    EXPECT_EQ(TestXml::alive, 1);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(TestXml::alive, 0);
}

TEST(XmlNode, CreatesOutputsThenInputsThenHidesThenAsksForProfiles)
{
    const Loaded loaded = load("<node><input><i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i name=\"one\"/>"
                               "</fieldset><fieldset choice=\"b\"><i name=\"two\"/></fieldset></i></input>"
                               "<output><o name=\"out\"/></output></node>");
    ASSERT_NE(loaded.node, nullptr);
    EXPECT_EQ(loaded.node->log.take(), QStringList({"unavailable two", "moved", "profiles"}));
    EXPECT_EQ(load("<node><input/><output/></node>").node->log.take(), QStringList({"moved", "profiles"}));
}

TEST(XmlNode, ReadsOutputs)
{
    const auto node = loadNode("<node><input/><output><o name=\"IMAGE\"> Image </o><!-- remark --><o Name=\"x\" "
                               "type=\"nonsense\">A<b>no</b>B<!-- no --><![CDATA[C]]></o></output></node>");
    ASSERT_EQ(node->outputFieldCount(), 3U);
    EXPECT_EQ(node->outputNameOfFieldByIndex(0), "image");
    EXPECT_EQ(node->outputDisplayNameOfFieldByIndex(0), " Image ");
    EXPECT_EQ(node->outputNameOfFieldByIndex(1), "");
    EXPECT_EQ(node->outputDisplayNameOfFieldByIndex(1), "");
    EXPECT_EQ(node->outputNameOfFieldByIndex(2), "") << "a capitalised attribute is absent";
    EXPECT_EQ(node->outputDisplayNameOfFieldByIndex(2), "ABC");
    for (unsigned long i = 0; i < 3; ++i) {
        ASSERT_NE(node->outputAnchorOfFieldByIndex(i), nullptr);
        EXPECT_EQ(node->outputAnchorOfFieldByIndex(i)->direction(), Ondrel::Anchor::Output);
    }
}

TEST(XmlNode, ParsesSingleEntriesWithoutListingThem)
{
    XmlNode node(nullptr);
    QDomDocument document;
    ASSERT_TRUE(document.setContent(QString("<x><i name=\"A\" type=\"Slider\">Text</i><i type=\"nonsense\"/></x>")));
    const QDomNode first = document.documentElement().firstChild();
    Ondrel::InputField* const field = XmlNode::parseInputField(&node, first);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->name(), "a");
    EXPECT_EQ(field->parentItem(), &node);
    EXPECT_EQ(node.inputFieldCount(), 0U);
    EXPECT_EQ(XmlNode::parseInputField(&node, first.nextSibling()), nullptr);
}

} // namespace
