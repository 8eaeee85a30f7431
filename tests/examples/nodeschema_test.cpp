// The schema of node files: both its forms say the same, and it takes and refuses what it should.

#include "programs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace
{

QString contentOf(const QString& name)
{
    QFile file(QStringLiteral(ONDREL_SCHEMAS "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return QString::fromUtf8(file.readAll());
}

// A pattern is written as "(kind name part part)". A group of one is that one.
QString joined(const QString& kind, const QStringList& parts)
{
    if (kind == "group" && parts.size() == 1)
        return parts[0];
    return '(' + (QStringList(kind) + parts).join(' ') + ')';
}

// Reads as much of the compact syntax as the schema uses.
class CompactForm
{
public:
    explicit CompactForm(const QString& text)
    {
        static const QRegularExpression token(R"(#[^\n]*|"[^"]*"|local:\*|[A-Za-z_][\w.:]*|[=,|&?*+(){}-])");
        for (auto match = token.globalMatch(text); match.hasNext();) {
            const QString found = match.next().captured();
            if (!found.startsWith('#'))
                m_tokens.append(found);
        }
    }

    QStringList definitions()
    {
        for (const char* expected : {"namespace", "local", "=", "\"\""})
            take(expected);
        QStringList result;
        while (m_at < m_tokens.size()) {
            const QString name = take();
            take("=");
            result.append(name + " = " + pattern());
        }
        return result;
    }

private:
    QString next() const { return m_tokens.value(m_at); }
    QString take() { return m_tokens.value(m_at++); }
    void take(const char* expected) { EXPECT_EQ(take().toStdString(), expected); }
    bool takeIf(const QString& token)
    {
        if (next() != token)
            return false;
        ++m_at;
        return true;
    }
    static QString unquoted(const QString& token) { return token.mid(1, token.size() - 2); }

    QString pattern()
    {
        static const QMap<QString, QString> kinds = {{",", "group"}, {"|", "choice"}, {"&", "interleave"}};
        QStringList parts = {repeated()};
        const QString operation = next();
        if (!kinds.contains(operation))
            return parts[0];
        while (takeIf(operation))
            parts.append(repeated());
        return joined(kinds[operation], parts);
    }

    QString repeated()
    {
        const QString part = primary();
        if (takeIf("?"))
            return joined("optional", {part});
        if (takeIf("*"))
            return joined("zeroOrMore", {part});
        return takeIf("+") ? joined("oneOrMore", {part}) : part;
    }

    QString primary()
    {
        const QString token = take();
        if (token == "(") {
            const QString inner = pattern();
            take(")");
            return inner;
        }
        if (token == "element" || token == "attribute") {
            QString name = take();
            if (takeIf("-"))
                name += '-' + take();
            take("{");
            const QString inner = pattern();
            take("}");
            return joined(token, {name, inner});
        }
        if (token.startsWith('"'))
            return joined("value", {'[' + unquoted(token) + ']'});
        if (token.startsWith("xsd:"))
            return joined("data", QStringList(token.mid(4)) + parameters());
        return token == "text" || token == "empty" ? joined(token, {}) : joined("ref", {token});
    }

    QStringList parameters()
    {
        QStringList result;
        if (!takeIf("{"))
            return result;
        while (!takeIf("}")) {
            const QString name = take();
            take("=");
            result.append(joined("param", {name, '[' + unquoted(take()) + ']'}));
        }
        return result;
    }

    QStringList m_tokens;
    int m_at = 0;
};

QString fromXml(const QDomElement& element);

QStringList childrenFromXml(const QDomElement& element)
{
    QStringList parts;
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() != "anyName")
            parts.append(fromXml(child));
    }
    return parts;
}

QString fromXml(const QDomElement& element)
{
    const QString kind = element.tagName();
    if (kind == "value")
        return joined(kind, {'[' + element.text() + ']'});
    if (kind == "param")
        return joined(kind, {element.attribute("name"), '[' + element.text() + ']'});
    if (kind == "ref")
        return joined(kind, {element.attribute("name")});
    QStringList parts = childrenFromXml(element);
    if (kind == "data")
        return joined(kind, QStringList(element.attribute("type")) + parts);
    if (kind != "element" && kind != "attribute")
        return joined(kind, parts);
    const QDomElement any = element.firstChildElement("anyName");
    const QString name = any.isNull() ? element.attribute("name") : any.hasChildNodes() ? "*-local:*" : "*";
    if (parts.isEmpty())
        parts.append("(text)"); // of an attribute
    return joined(kind, {name, joined("group", parts)});
}

TEST(NodeSchema, TheTwoFormsAreEqual)
{
    QDomDocument document;
    ASSERT_TRUE(document.setContent(contentOf("node.rng")));
    QStringList fromXmlForm;
    for (QDomElement child = document.documentElement().firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString name = child.tagName() == "start" ? "start" : child.attribute("name");
        fromXmlForm.append(name + " = " + joined("group", childrenFromXml(child)));
    }
    const QStringList fromCompactForm = CompactForm(contentOf("node.rnc")).definitions();
    EXPECT_GT(fromCompactForm.size(), 20);
    EXPECT_EQ(fromXmlForm.join('\n').toStdString(), fromCompactForm.join('\n').toStdString());
}

class NodeSchemaWithXmllint : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(QString(ONDREL_XMLLINT).isEmpty()) << "xmllint is not installed (Debian: libxml2-utils)";
    }

    static int status(const QStringList& files)
    {
        return runProgram(ONDREL_XMLLINT, QStringList{"--noout", "--relaxng", ONDREL_SCHEMAS "/node.rng"} + files)
            .status;
    }

    int statusOf(const QByteArray& text)
    {
        QFile file(m_directory.filePath("case.xml"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return status({file.fileName()});
    }

private:
    QTemporaryDir m_directory;
};

constexpr int kValid = 0, kInvalid = 3; // exit statuses of xmllint

TEST_F(NodeSchemaWithXmllint, TakesTheNodesOfTheExamples)
{
    QStringList files;
    for (const QString& name : QDir(ONDREL_NODE_FILES).entryList({"*.xml"}, QDir::Files))
        files.append(QStringLiteral(ONDREL_NODE_FILES "/") + name);
    ASSERT_FALSE(files.isEmpty());
    EXPECT_EQ(status(files), kValid);
}

TEST_F(NodeSchemaWithXmllint, TakesWhatIsAllowed)
{
    for (const char* entry : {"<any name='a' help='h'>A</any>", "<f type='label'>A</f>", "<f type='Preview'/>",
                              "<f name='a' type='slider' mode='DOUBLE' min='1.5e3' style='arrows' postfix='x'>A</f>",
                              "<f xmlns:my='urn:x' my:thing='1' name='a'/>",
                              "<f name='a' type='fieldsetcombobox'><fieldset choice='x'/><label>L</label></f>"})
        EXPECT_EQ(statusOf("<node><output/><input>" + QByteArray(entry) + "</input></node>"), kValid) << entry;
}

TEST_F(NodeSchemaWithXmllint, RefusesWhatIsWrong)
{
    for (const char* entry : {"<f name='a' type='slyder'/>", "<f name='a' Type='slider'/>", "<f name='a' mni='1'/>",
                              "<f name='a' type='combobox' choices='x' initial='-1'/>", "<f name='a' type='combobox'/>",
                              "<f name='a' type='slider' min='1.5'/>", "<f name='a' type='slider' mode='float'/>",
                              "<f name='a' type='color' value='red'/>", "<f name='a' type='hidden'>A</f>",
                              "<f name='a'><b/></f>", "<f type='preview' name='a'/>", "<f/>",
                              "<f name='a' type='fieldsetcombobox'><fieldset choice='x'>"
                              "<f name='b' type='fieldsetcombobox'><fieldset choice='y'/></f></fieldset></f>"})
        EXPECT_EQ(statusOf("<node><output/><input>" + QByteArray(entry) + "</input></node>"), kInvalid) << entry;
    for (const char* text : {"<node/>", "<node><input/></node>", "<node><input/><output/><other/></node>",
                             "<nodes><input/><output/></nodes>", "<node titel='x'><input/><output/></node>"})
        EXPECT_EQ(statusOf(text), kInvalid) << text;
}

} // namespace
