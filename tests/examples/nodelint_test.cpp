// Each complaint of ondrel-nodelint: its place and its words.

#include "programs.h"

#include <ondrel/nodes/xmlnode.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <string>
#include <vector>

namespace
{

// A file, and the lines that are expected: "line:column: severity: text", each followed by its hint.
struct Case {
    QByteArray text;
    QStringList lines;
};

// A node with these inputs, which begin in line 2, column 1.
QByteArray withInput(const QByteArray& entries)
{
    return "<node><input>\n" + entries + "\n</input><output/></node>";
}

class Nodelint : public testing::Test
{
protected:
    QString write(const QString& name, const QByteArray& text)
    {
        const QString path = m_directory.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }

    // All files in one run. The status is what it is to be for what is expected.
    void expect(const std::vector<Case>& cases)
    {
        QStringList files;
        bool anything = false;
        for (std::size_t i = 0; i < cases.size(); ++i) {
            files.append(write(QStringLiteral("case%1.xml").arg(i), cases[i].text));
            anything = anything || !cases[i].lines.isEmpty();
        }
        const Outcome outcome = runProgram(ONDREL_NODELINT, files);
        EXPECT_EQ(outcome.status, anything ? 1 : 0);
        EXPECT_EQ(outcome.errors, QString());
        for (std::size_t i = 0; i < cases.size(); ++i)
            EXPECT_EQ(linesOf(outcome.output, files[int(i)]).join('\n').toStdString(),
                      cases[i].lines.join('\n').toStdString())
                << cases[i].text.toStdString();
        for (const Case& item : cases)
            EXPECT_EQ(makesNode(item.text), item.lines.filter(" error: ").isEmpty()) << item.text.toStdString();
    }

private:
    // Whether the library makes a node from such a file.
    static bool makesNode(const QByteArray& text)
    {
        testing::internal::CaptureStderr();
        const std::unique_ptr<Ondrel::XmlNode> node(Ondrel::XmlNode::create(QString(text)));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // what was begun
        testing::internal::GetCapturedStderr();
        return node != nullptr;
    }

    // The complaints about one file, without its name; hints without what stands before them.
    static QStringList linesOf(const QString& output, const QString& file)
    {
        QStringList lines;
        bool own = false;
        for (const QString& line : output.split('\n', Qt::SkipEmptyParts)) {
            if (!line.startsWith("  hint: "))
                own = line.startsWith(file + ':');
            if (own)
                lines.append(line.startsWith("  hint: ") ? line.mid(8) : line.mid(file.size() + 1));
        }
        return lines;
    }

    QTemporaryDir m_directory;
};

TEST_F(Nodelint, SaysNothingAboutGoodFiles)
{
    expect(
        {{"<node><input/><output/></node>", {}},
         {"<node><output/><input/></node>\n<!-- a comment may stand here -->", {}},
         {"<!DOCTYPE node><node title='T' category='C' keywords='k' help='h' version='3'><input/><output/></node>", {}},
         {"<node xmlns:my='urn:x' my:thing='1'><input/><output/></node>", {}},
         {withInput("<f name='a' help='h'>A<!-- inside --></f>"), {}},
         {withInput("<f type='label'>A line</f><f type='preview'/>"), {}},
         {withInput("<f name='a' type='SLIDER' mode='Double' style='Arrows' min='-1e-3' max='1.5' value='0.25'/>"), {}},
         {withInput("<f name='a' type='rangeslider' min='-5' max='5' left='-1' right='1'/>"), {}},
         {withInput("<f name='a' type='combobox' choices='x,--,y,--,z' initial='4'/>"), {}},
         {withInput("<f name='a' type='color' value='1,2,65535'/><f name='b' type='color'/>"), {}},
         {withInput("<f name='a' type='fieldsetcombobox' initial='1'><label>L</label><!-- c --><fieldset choice='x'/>"
                    "<fieldset choice='y'><g name='b'>B</g></fieldset></f>"),
          {}}});
}

TEST_F(Nodelint, NamesWhatIsNotWellFormed)
{
    const QString hint = "every tag is closed, and & and < are written as &amp; and &lt;";
    expect(
        {{"", {"1:1: error: not well-formed: unexpected end of file", hint}},
         {"<node>\n <input></node>", {"2:15: error: not well-formed: tag mismatch", hint}},
         {"<node>\n<input/><output/></node>\n<node/>", {"3:2: error: not well-formed: unexpected character", hint}}});
}

TEST_F(Nodelint, FindsWhatStandsBeforeTheRoot)
{
    expect({{"<?xml version=\"1.0\"?>\n<node><input/><output/></node>",
             {"1:1: error: an XML declaration before the root element", "leave it out: node files are UTF-8 anyway"}},
            {"\n <!-- first --><node><input/><output/></node>",
             {"2:2: error: a comment before the root element", "it may stand behind the root element"}},
            {"<?pi x?><node><input/><output/></node>",
             {"1:1: error: an instruction before the root element", "it may stand behind the root element"}}});
}

TEST_F(Nodelint, CountsTheChildrenOfTheRoot)
{
    const QString two = "write one \"input\" and one \"output\", empty if need be";
    const QString out = "put it into an entry, or leave it out";
    expect({{"<node></node>", {"1:1: error: the root element has 0 of its two child elements", two}},
            {"<node><input/></node>", {"1:1: error: the root element has 1 of its two child elements", two}},
            {"<node><input/><output/>\n<other/></node>",
             {"1:1: error: the root element has 3 child elements, not two", two,
              "2:1: warning: element \"other\" is passed over", "it may be \"input\" or \"output\""}},
            {"<node>\n <!-- c --><input/><output/></node>",
             {"2:2: error: a comment directly in the root element",
              "comments may stand behind the root element, or inside of an entry"}},
            {"<node><input/>\n  words<output/></node>", {"2:3: error: text directly in the root element", out}},
            {"<node><input/><output/><![CDATA[x]]></node>", {"1:24: error: text directly in the root element", out}},
            {"<node><input/><output/><?pi?></node>", {"1:24: error: an instruction directly in the root element", out}},
            {"<node><!-- c --><output/></node>",
             {"1:7: warning: a comment directly in the root element",
              "it stands in the place of \"input\" or \"output\""}}});
}

TEST_F(Nodelint, ReadsTheRootAndItsLists)
{
    expect({{"<Node><input/><output/></Node>",
             {"1:1: warning: the root element is called \"Node\"", "by custom it is \"node\""}},
            {"<node><inputs/><output/></node>",
             {"1:7: warning: element \"inputs\" is passed over", "did you mean \"input\"?"}},
            {"<node><Input/><output/></node>",
             {"1:7: warning: element \"Input\" is passed over", "did you mean \"input\"?"}},
            {"<node><input>\n<f type='none'/></input>\n<input/></node>",
             {"1:7: warning: this \"input\" is passed over", "the one in line 3 replaces it"}},
            {"<node titel='x' min='1' Help='h'><input/><output/></node>",
             {"1:7: warning: attribute \"titel\" is unknown", "did you mean \"title\"?",
              "1:17: warning: attribute \"min\" is not read by the root element",
              "it belongs to a field of type \"slider\" or \"rangeslider\"",
              "1:25: warning: attribute \"Help\" is not read", "attribute names are in lower case: \"help\""}},
            {"<node version='1.0'><input name='x'/><output/></node>",
             {"1:16: warning: version \"1.0\" is no whole number",
              "raise it by 1 when fields are renamed or mean something else",
              "1:28: warning: attribute \"name\" is not read by \"input\"", "it belongs to an input or an output"}}});
}

TEST_F(Nodelint, FindsWhatBecomesAFieldByAccident)
{
    const QString move = "comments may stand behind the root element, or inside of an entry";
    const QString out = "put it into an entry, or leave it out";
    expect({{withInput(" <!-- a --><f name='a'/>"), {"2:2: warning: a comment becomes an input without a name", move}},
            {withInput("words"), {"2:1: warning: text becomes an input without a name", out}},
            {withInput("<?pi?>"), {"2:1: warning: an instruction becomes an input without a name", out}},
            {"<node><input/><output><!-- a --></output></node>",
             {"1:23: warning: a comment becomes an output without a name", move}},
            {withInput("<f name='a' type='fieldsetcombobox'><fieldset choice='x'>\n <!-- a --></fieldset></f>"),
             {"3:2: warning: a comment becomes an input without a name", move}}});
}

TEST_F(Nodelint, KnowsTheTypes)
{
    expect(
        {{withInput("<f name='a' type='Slyder'/>"),
          {"2:19: error: type \"Slyder\" is unknown", "did you mean \"slider\"?"}},
         {withInput("<f name='a' type='button'/>"),
          {"2:19: error: type \"button\" is unknown",
           "it may be \"label\", \"preview\", \"slider\", \"rangeslider\", \"combobox\", \"color\", \"colorprofile\", "
           "\"resource\", \"hidden\" or \"fieldsetcombobox\""}},
         {withInput("<f name='a' type='fieldsetcombobox'><fieldset choice='x'>\n"
                    "<f name='b' type='fieldsetcombobox'/></fieldset></f>"),
          {"3:19: error: field sets inside of a field set", "field sets do not nest"}},
         {withInput("<f name='a' type='fieldsetcombobox'><fieldset choice='x'>\n<f name='b' type='x'/></fieldset></f>"),
          {"3:19: error: type \"x\" is unknown",
           "it may be \"label\", \"preview\", \"slider\", \"rangeslider\", \"combobox\", \"color\", \"colorprofile\", "
           "\"resource\", \"hidden\" or \"fieldsetcombobox\""}}});
}

TEST_F(Nodelint, NamesAttributesThatNobodyReads)
{
    expect({{withInput("<f name='a' Type='slider'/>"),
             {"2:13: warning: attribute \"Type\" is not read", "attribute names are in lower case: \"type\""}},
            {withInput("<f name='a' type='slider'\n postfx='%'/>"),
             {"3:2: warning: attribute \"postfx\" is unknown", "did you mean \"postfix\"?"}},
            {withInput("<f name='a' type='slider' colour='red'/>"),
             {"2:27: warning: attribute \"colour\" is unknown",
              "attributes of your own take a prefix, as in \"my:colour\""}},
            {withInput("<f name='a' type='color' min='0'/>"),
             {"2:26: warning: attribute \"min\" is not read by a field of type \"color\"",
              "it belongs to a field of type \"slider\" or \"rangeslider\""}},
            {withInput("<f name='a' choice='0'/>"),
             {"2:13: warning: attribute \"choice\" is not read by a plain input", "it belongs to a \"fieldset\""}},
            {withInput("<f name='a' title='x'/>"),
             {"2:13: warning: attribute \"title\" is not read by a plain input", "it belongs to the root element"}},
            {withInput("<f name='a' name='b'/><f name='a'/>"),
             {"2:13: warning: attribute \"name\" stands twice in its tag", "the last one counts"}},
            {"<node><input/><output><f name='a' type='slider'/></output></node>",
             {"1:35: warning: attribute \"type\" is not read by an output", "it belongs to an input"}}});
}

TEST_F(Nodelint, FollowsNames)
{
    expect(
        {{withInput("<f>A</f>"),
          {"2:1: warning: this field has no name", "hosts and saved projects find fields by name"}},
         {withInput("<f name='' type='hidden'/>"),
          {"2:1: warning: this field has no name", "hosts and saved projects find fields by name"}},
         {withInput("<f name='Radius'/>"),
          {"2:10: warning: name \"Radius\" becomes \"radius\"", "names are in lower case"}},
         {withInput("<f name='a'/>\n<f name='a' type='hidden'/>"),
          {"3:10: warning: name \"a\" is taken", "only the field in line 2 will be found by this name"}},
         {withInput(
              "<f name='a'/>\n<f name='b' type='fieldsetcombobox'><fieldset choice='x'>\n<f name='a'/></fieldset></f>"),
          {"4:10: warning: name \"a\" is taken", "only the field in line 2 will be found by this name"}},
         {withInput("<f type='preview'/>\n<f type='preview'/>"),
          {"3:1: warning: name \"preview\" is taken", "a node has one preview; line 2 has its name already"}},
         {withInput("<f type='preview' name='p'/>"),
          {"2:19: warning: a preview does not read its name", "it is called \"preview\""}},
         {"<node><input><f name='a'/></input><output><f name='a'/></output></node>", {}}});
}

TEST_F(Nodelint, ReadsTexts)
{
    expect(
        {{withInput("<f name='a'>\n  A\n</f>"),
          {"2:1: warning: the display name begins or ends with blanks", "they are shown: write it close to the tags"}},
         {withInput("<f name='a'>A\n <b>bold</b></f>"),
          {"2:1: warning: the display name begins or ends with blanks", "they are shown: write it close to the tags",
           "3:2: warning: element \"b\" inside of an entry is passed over", "an entry holds text alone"}},
         {withInput("<f name='a' type='hidden'>A</f>"),
          {"2:1: warning: the text of this field is not shown", "a field of type \"hidden\" shows no name"}},
         {withInput("<f type='preview'>A</f>"),
          {"2:1: warning: the text of this field is not shown", "a field of type \"preview\" shows no name"}},
         {withInput("<f name='a' type='fieldsetcombobox'>A<fieldset choice='x'/></f>"),
          {"2:1: warning: the text of this field is not shown",
           "the display name of field sets stands in a child element \"label\""}}});
}

TEST_F(Nodelint, ReadsSliders)
{
    const QString digits = "write digits, with a point before decimals", nearer = "the slider begins at the nearer end";
    expect(
        {{withInput("<f name='a' type='slider' mode='float' style='arrow'/>"),
          {"2:33: warning: mode \"float\" is unknown and counts as \"double\"", "it may be \"integer\" or \"double\"",
           "2:47: warning: style \"arrow\" is unknown and counts as \"arrows\"", "did you mean \"arrows\"?"}},
         {withInput("<f name='a' type='slider' min='x' max='1,5' value='2.5'/>"),
          {"2:32: warning: min \"x\" is no whole number and counts as 0", digits,
           "2:40: warning: max \"1,5\" is no whole number and counts as 0", digits,
           "2:52: warning: value \"2.5\" is no whole number and counts as 0",
           "a slider with mode=\"double\" takes fractions"}},
         {withInput("<f name='a' type='slider' mode='double' value='many'/>"),
          {"2:48: warning: value \"many\" is no number and counts as 0", digits}},
         {withInput("<f name='a' type='slider' min='9' max='1' value='5'/>"),
          {"2:27: warning: min 9 is greater than max 1", "the two are exchanged"}},
         {withInput("<f name='a' type='slider' max='0' value='0'/>"),
          {"2:27: warning: min and max are both 0", "the slider cannot be moved"}},
         {withInput("<f name='a' type='slider' min='10' max='40' value='41'/>"),
          {"2:52: warning: value 41 is outside of 10 to 40", nearer}},
         {withInput("<f name='a' type='slider' max='40'/>"),
          {"2:1: warning: value 50, which it has by default, is outside of 0 to 40", nearer}},
         {withInput("<f name='a' type='rangeslider' left='-1' right='0.5'/>"),
          {"2:38: warning: left -1 is outside of 0 to 100", nearer,
           "2:49: warning: right \"0.5\" is no whole number and counts as 0",
           "a slider with mode=\"double\" takes fractions"}},
         {withInput("<f name='a' type='rangeslider' left='60' right='40'/>"),
          {"2:32: warning: left 60 is greater than right 40", "the two are exchanged"}}});
}

TEST_F(Nodelint, ReadsColors)
{
    const QString form = "write red, green, blue and perhaps alpha, each from 0 to 65535";
    const QString name = "write a name such as \"red\", or \"#rrggbb\"";
    expect({{withInput("<f name='a' type='slider' groovegradient='red,grean,,#12,#123456'/>"),
             {"2:47: warning: \"grean\" is no color and is left out", "did you mean \"green\"?",
              "2:54: warning: \"#12\" is no color and is left out", name}},
            {withInput("<f name='a' type='rangeslider' bargradient='x'/>"),
             {"2:45: warning: \"x\" is no color and is left out", name}},
            {withInput("<f name='a' type='color' value='1,2'/>"),
             {"2:33: warning: fewer than three channels make opaque black", form}},
            {withInput("<f name='a' type='color' value='1,2,3,4,5'/>"),
             {"2:33: warning: channels after the fourth are left out", form}},
            {withInput("<f name='a' type='color' value='1,red,70000'/>"),
             {"2:35: warning: channel \"red\" is no number and counts as 0", form,
              "2:39: warning: channel 70000 is above 65535 and wraps", form}}});
}

TEST_F(Nodelint, ReadsChoices)
{
    expect({{withInput("<f name='a' type='combobox'/>"),
             {"2:1: warning: this combo box has one empty choice", "attribute \"choices\" takes texts between commas"}},
            {withInput("<f name='a' type='combobox' style='grid' choices='x,--'/>"),
             {"2:36: warning: style \"grid\" is unknown and counts as \"thumbnails\"",
              "it may be \"list\" or \"thumbnails\"", "2:53: warning: \"--\" is no separator among thumbnails",
              "separators are for lists"}},
            {withInput("<f name='a' type='combobox' choices='x, y,x,,z'/>"),
             {"2:40: warning: choice \" y\" begins or ends with blanks", "they belong to its value",
              "2:43: warning: choice \"x\" stands twice", "its value is its text: the second one cannot be restored",
              "2:45: warning: this choice is empty", "a comma stands too much"}},
            {withInput("<f name='a' type='combobox' choices='x,y' initial='2'/>"),
             {"2:52: warning: initial 2 is out of range",
              "the last choice has the number 1; the first choice stays chosen"}},
            {withInput("<f name='a' type='combobox' choices='x,y' initial='-1'/>"),
             {"2:52: warning: initial -1 is out of range",
              "the last choice has the number 1; the first choice stays chosen"}},
            {withInput("<f name='a' type='combobox' choices='x,y' initial='one'/>"),
             {"2:52: warning: initial \"one\" is no whole number", "the first choice stays chosen"}},
            {withInput("<f name='a' type='combobox' choices='x,--,y' initial='1'/>"),
             {"2:55: warning: initial 1 is a separator", "choices are counted from 0, and separators count"}}});
}

TEST_F(Nodelint, ReadsFieldSets)
{
    expect(
        {{withInput("<f name='a' type='fieldsetcombobox' initial='1'><label>L</label>\n<fieldset/></f>"),
          {"2:46: warning: initial 1 is out of range",
           "the last choice has the number 0; the first choice stays chosen",
           "3:1: warning: this field set has no choice", "attribute \"choice\" is its text in the box"}},
         {withInput("<f name='a' type='fieldsetcombobox' initial='0'/>"),
          {"2:1: warning: a combo box of field sets without any", "each choice is a child element \"fieldset\"",
           "2:46: warning: initial 0 is out of range", "there is no choice"}},
         {withInput("<f name='a' type='fieldsetcombobox'><label>L</label>\n<label name='x'>M</label><fieldsett/>\n"
                    "<fieldset choice='x' nam='y'/><fieldset choice='x'/></f>"),
          {"3:1: warning: a second \"label\"", "the last one counts",
           "3:8: warning: attribute \"name\" is not read by a \"label\"", "it belongs to an input or an output",
           "3:26: warning: element \"fieldsett\" is passed over", "did you mean \"fieldset\"?",
           "4:22: warning: attribute \"nam\" is unknown", "attributes of your own take a prefix, as in \"my:nam\"",
           "4:49: warning: choice \"x\" stands twice", "its value is its text: the second one cannot be restored"}}});
}

TEST_F(Nodelint, StopsAtDepthsThatTheLibraryRefuses)
{
    const auto nested = [](int depth) {
        return withInput("<f name='a'>" + QByteArray("<b>").repeated(depth - 3) +
                         QByteArray("</b>").repeated(depth - 3) + "</f>");
    };
    expect({{nested(257), {"2:772: error: elements are nested deeper than 256", "three levels are enough"}},
            {nested(30000), {"2:772: error: elements are nested deeper than 256", "three levels are enough"}},
            {nested(256),
             {"2:13: warning: element \"b\" inside of an entry is passed over", "an entry holds text alone"}}});
}

TEST_F(Nodelint, LooksIntoEntities)
{
    const auto withEntity = [](int depth) {
        return "<!DOCTYPE node [<!ENTITY e '" + QByteArray("<b>").repeated(depth) + QByteArray("</b>").repeated(depth) +
               "'>]>\n<node><input><f name='a'>&e;</f></input><output/></node>";
    };
    const QString hint = "every tag is closed, and & and < are written as &amp; and &lt;";
    expect({{withEntity(254), {"2:29: error: elements are nested deeper than 256", "three levels are enough"}},
            {withEntity(253),
             {"2:28: warning: element \"b\" inside of an entry is passed over", "an entry holds text alone"}},
            {"<!DOCTYPE node [<!ENTITY e 'x'>]>\n<node><input>&other;</input><output/></node>",
             {"2:21: error: not well-formed: Entity 'other' not declared.", hint}},
            {"<!DOCTYPE node>\n<node><input>&other;</input><output/></node>",
             {"2:14: warning: text becomes an input without a name", "put it into an entry, or leave it out"}}});
}

TEST_F(Nodelint, CountsCharactersAndLines)
{
    expect({{withInput("<f name='a' help='\xc3\xa4\xf0\x9f\x98\x80' x='1'/>\r\n\r\n<f name='b' x='1'/>"),
             {"2:23: warning: attribute \"x\" is unknown", "attributes of your own take a prefix, as in \"my:x\"",
              "4:13: warning: attribute \"x\" is unknown", "attributes of your own take a prefix, as in \"my:x\""}},
            {"<!DOCTYPE node [<!ENTITY e '<f/>'>]>\n<node><input>&e;</input><output/></node>",
             {"2:16: warning: this field has no name", "hosts and saved projects find fields by name"}}});
}

TEST_F(Nodelint, ChecksBytes)
{
    expect({{QByteArray("<node><input/><output/></node>\n\0junk", 36),
             {"2:1: warning: nothing is read from the zero byte on", "is this a text file?"}},
            {"<node help='\xe4'><input/><output/></node>",
             {"1:1: warning: the file is not in UTF-8", "other characters are lost: save it in UTF-8"}}});
}

TEST_F(Nodelint, ChecksTheNameOfTheFile)
{
    const QByteArray text = "<node><input/><output/></node>";
    const QString file = write("Bright Pass.XML", text);
    const Outcome outcome = runProgram(ONDREL_NODELINT, {file});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output.toStdString(),
              file.toStdString() +
                  ":1:1: warning: no node has a file of this name\n"
                  "  hint: a node's file is its name in lower case without blanks: \"brightpass.xml\"\n");
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {write("brightpass.xml", text)}).status, 0);
}

TEST_F(Nodelint, HasThreeExitStatuses)
{
    const QString good = write("good.xml", "<node><input/><output/></node>");
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {good, good}).status, 0);
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {write("bad.xml", "<node/>"), good}).status, 1);
    const Outcome missing = runProgram(ONDREL_NODELINT, {"missing.xml", write("bad.xml", "<node/>")});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.errors.toStdString(), "missing.xml: cannot be read\n");
    EXPECT_FALSE(missing.output.isEmpty()); // the others are checked all the same
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {QDir::tempPath()}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {"--fix", good}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_NODELINT, {"--help"}).status, 0);
}

TEST_F(Nodelint, HasNoComplaintAboutTheNodesOfTheExamples)
{
    const QDir folder(ONDREL_NODE_FILES);
    QStringList files;
    for (const QString& name : folder.entryList({"*.xml"}, QDir::Files))
        files.append(folder.filePath(name));
    EXPECT_GE(files.size(), 12);
    const Outcome outcome = runProgram(ONDREL_NODELINT, files);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.toStdString(), "");
}

} // namespace
