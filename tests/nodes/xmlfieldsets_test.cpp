// Boxes whose choices bring fields of their own.

#include "xmlsupport.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/widgets/listcombobox.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ComboBoxInputField;

// Inputs: 0 the box, 1 "blur" and 2 a slider for Fast, 3 "mask" and 4 "other" for Mask, 5 behind the box.
const QString kBox =
    "<i name=\"Method\" type=\"FieldSetComboBox\" initial=\"0\">ignored<label>Method</label>"
    "<fieldset choice=\"Fast\"><i name=\"blur\">Blur</i><i name=\"radius\" type=\"Slider\"/></fieldset>"
    "<fieldset choice=\"Mask\"><i name=\"mask\"/><i name=\"other\"/></fieldset>"
    "<fieldset choice=\"Plain\"/></i><i name=\"last\"/>";

// Which of the inputs are visible, as a row of digits.
QString visible(const TestXml& node)
{
    QString result;
    for (const auto* field : node.inputFields)
        result += field->isVisible() ? '1' : '0';
    return result;
}

class FieldSets : public testing::Test
{
protected:
    FieldSets()
    {
        auto made = loadInputs(kBox);
        node = made.release();
        graph.add(node, {20, 20});
        box = node->field<ComboBoxInputField>(0);
        node->log.take();
    }
    double rows(int anchored, double more = 0) const
    {
        return node->headerSize().height() + anchored * (plainFieldHeight() + 5.0) + more;
    }
    double boxRow() const { return box->minHeight() + 5; }

    GraphView graph;
    TestXml* node = nullptr;
    ComboBoxInputField* box = nullptr;
};

TEST_F(FieldSets, NumberTheirFieldsBehindTheBox)
{
    ASSERT_EQ(node->inputFieldCount(), 6U);
    const QStringList names{"method", "blur", "radius", "mask", "other", "last"};
    for (unsigned long i = 0; i < 6; ++i)
        EXPECT_EQ(node->inputNameOfFieldByIndex(i), names[static_cast<int>(i)]);
    EXPECT_EQ(node->fieldTypes, (std::vector<QString>{"combobox", "", "slider", "", "", ""}));
    const std::vector<std::vector<unsigned long>> sets{{1, 2}, {3, 4}, {}};
    EXPECT_EQ(node->fieldSets, (std::map<unsigned long, std::vector<std::vector<unsigned long>>>{{0, sets}}));
    EXPECT_EQ(box->displayName(), "Method");
    EXPECT_EQ(box->values(), (std::vector<QVariant>{"Fast", "Mask", "Plain"}));
    EXPECT_NE(widgetOf<Ondrel::ListComboBox>(*box), nullptr);
    EXPECT_EQ(node->inputValue(0), QVariant(QString("Fast")));
}

TEST_F(FieldSets, ShowTheChosenOneAlone)
{
    EXPECT_EQ(visible(*node), "111001");
    EXPECT_EQ(node->rect().height(), rows(2, boxRow() + node->inputFields[2]->minHeight() + 5));
    node->setInputValue(0, "Mask");
    EXPECT_EQ(visible(*node), "100111");
    EXPECT_EQ(node->rect().height(), rows(3, boxRow()));
    node->setInputValue(0, "Plain");
    EXPECT_EQ(visible(*node), "100001");
    EXPECT_EQ(node->rect().height(), rows(1, boxRow()));
}

TEST_F(FieldSets, AUsersChoiceIsReportedInOrder)
{
    auto* widget = widgetOf<QComboBox>(*box);
    widget->setCurrentIndex(1);
    EXPECT_EQ(node->log.take(), QStringList({"begin", "unavailable blur", "moved", "updated", "end"}));
    EXPECT_EQ(visible(*node), "100111");
    widget->setCurrentIndex(2);
    EXPECT_EQ(node->log.take(), QStringList({"begin", "unavailable blur", "unavailable mask", "unavailable other",
                                             "moved", "updated", "end"}))
        << "hidden ones are reported at every change";
    widget->setCurrentIndex(2);
    EXPECT_EQ(node->log.take(), QStringList()) << "no change";
}

TEST_F(FieldSets, ASetValueIsReportedWithoutBeginAndEnd)
{
    node->setInputValue(0, "Mask");
    EXPECT_EQ(node->log.take(), QStringList({"unavailable blur", "moved", "updated"}));
    node->setInputValue(0, "Mask");
    EXPECT_EQ(node->log.take(), QStringList({"unavailable blur", "moved", "updated"}));
    node->setInputValue(0, "nothing of the kind");
    EXPECT_EQ(node->log.take(), QStringList({"unavailable blur", "moved", "updated"}));
    EXPECT_EQ(node->inputValue(0), QVariant(QString("Mask")));
}

TEST_F(FieldSets, FieldsAreHiddenBeforeTheyAreReported)
{
    QObject::connect(node, &Ondrel::Node::fieldMadeUnavailable, node, [this](Ondrel::Node*, Ondrel::Anchor* anchor) {
        EXPECT_FALSE(anchor->isVisible());
        EXPECT_FALSE(node->inputFields[1]->isVisible());
    });
    node->setInputValue(0, "Mask");
}

TEST_F(FieldSets, ValuesOfUnchosenSetsSurvive)
{
    node->setInputValue(2, "7");
    node->setInputValue(0, "Mask");
    EXPECT_EQ(node->inputValue(2), QVariant(QString("7")));
    node->setInputValue(2, "8");
    node->setInputValue(0, "Fast");
    EXPECT_EQ(node->inputValue(2), QVariant(QString("8")));
}

TEST_F(FieldSets, AreSettledAgainByTheSlot)
{
    node->inputFields[1]->setVisible(false);
    node->inputFields[3]->setVisible(true);
    node->log.take();
    QMetaObject::invokeMethod(node, "comboBoxFieldSetValueChanged");
    EXPECT_EQ(visible(*node), "111001");
    EXPECT_EQ(node->log.take(), QStringList({"unavailable mask", "unavailable other", "moved"}));
}

TEST(FieldSetBox, LayoutRunsWithoutBoxesToo)
{
    const auto node = loadInputs("<i/>");
    node->comboBoxFieldSetValueChanged();
    EXPECT_EQ(node->log.take(), QStringList({"moved"}));
}

TEST(FieldSetBox, TakesTheLastLabelAndPassesOverOtherChildren)
{
    const auto node =
        loadInputs("<i type=\"fieldsetcombobox\">text<label>One</label><!-- remark --><other/><label>Two</label>"
                   "<FieldSet choice=\"no\"/><fieldset Choice=\"no\"><i/></fieldset><fieldset choice=\"b\">"
                   "<!-- an entry --></fieldset></i><i type=\"fieldsetcombobox\">text</i>");
    auto* first = node->field<ComboBoxInputField>(0);
    EXPECT_EQ(first->displayName(), "Two");
    EXPECT_EQ(first->values(), (std::vector<QVariant>{"", "b"}));
    ASSERT_EQ(node->inputFieldCount(), 4U);
    EXPECT_NE(node->inputAnchorOfFieldByIndex(2), nullptr) << "a comment is an entry here too";
    auto* second = node->field<ComboBoxInputField>(3);
    EXPECT_EQ(second->displayName(), "");
    EXPECT_TRUE(second->values().empty());
    EXPECT_EQ(node->inputValue(3), QVariant(QString("")));
    EXPECT_EQ(visible(*node), "1101");
}

TEST(FieldSetBox, AnInitialIndexBeyondItsSetsLeavesTheFirst)
{
    for (const char* initial : {"2", "-1", "x", "99999999999"}) {
        const auto node = loadInputs(QString("<i type=\"fieldsetcombobox\" initial=\"%1\"><fieldset choice=\"a\"><i/>"
                                             "</fieldset><fieldset choice=\"b\"><i/></fieldset></i>")
                                         .arg(initial));
        EXPECT_EQ(visible(*node), "110") << initial;
    }
    EXPECT_EQ(visible(*loadInputs("<i type=\"fieldsetcombobox\" initial=\"1\"><fieldset choice=\"a\"><i/></fieldset>"
                                  "<fieldset choice=\"b\"><i/></fieldset></i>")),
              "101");
}

TEST(FieldSetBox, ASeparatorTextTakesAnIndex)
{
    const auto node = loadInputs("<i type=\"fieldsetcombobox\" initial=\"2\"><fieldset choice=\"a\"><i/></fieldset>"
                                 "<fieldset choice=\"--\"><i/></fieldset><fieldset choice=\"b\"><i/></fieldset></i>");
    EXPECT_EQ(visible(*node), "1001");
    EXPECT_EQ(node->field<ComboBoxInputField>(0)->values(), (std::vector<QVariant>{"a", "", "b"}));
}

TEST(FieldSetBox, SeveralBoxesAreReadInOrder)
{
    const QString box = "<i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i name=\"%1a\"/></fieldset>"
                        "<fieldset choice=\"b\"><i name=\"%1b\"/></fieldset></i>";
    const auto node = loadInputs("<i type=\"slider\"/>" + box.arg("x") + box.arg("y"));
    EXPECT_EQ(visible(*node), "1110110");
    node->setInputValue(4, "b");
    EXPECT_EQ(visible(*node), "1110101");
    EXPECT_EQ(node->log.take(), QStringList({"unavailable xb", "unavailable ya", "moved", "updated"}));
    const std::vector<std::vector<unsigned long>> first{{2}, {3}}, second{{5}, {6}};
    EXPECT_EQ(node->fieldSets,
              (std::map<unsigned long, std::vector<std::vector<unsigned long>>>{{1, first}, {4, second}}));
}

TEST(FieldSetBox, TakesAllTypesOfEntries)
{
    const auto node = loadInputs(
        "<i type=\"fieldsetcombobox\"><fieldset choice=\"a\"><i type=\"label\">L</i><i type=\"preview\"/>"
        "<i type=\"rangeslider\"/><i type=\"combobox\" choices=\"x,y\"/><i type=\"color\"/><i type=\"colorprofile\"/>"
        "<i type=\"resource\"/><i type=\"hidden\"/></fieldset><fieldset choice=\"b\"/></i>");
    EXPECT_EQ(node->fieldTypes, (std::vector<QString>{"combobox", "label", "preview", "rangeslider", "combobox",
                                                      "color", "colorprofile", "resource", "hidden"}));
    EXPECT_EQ(node->inputFields[2], node->previewField);
    EXPECT_EQ(node->inputValue(6).toByteArray().size(), 32) << "profile fields in sets are filled as well";
    node->setInputValue(0, "b");
    EXPECT_FALSE(node->previewField->isVisible());
    node->log.take();
    node->setInputValue(4, "y");
    EXPECT_EQ(node->log.take(), QStringList({"updated"})) << "this box has no sets";
}

} // namespace
