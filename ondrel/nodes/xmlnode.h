#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/previewnode.h>

#include <QString>
#include <QVariant>

#include <map>
#include <vector>

class QDomNode;
class QDomNodeList;

namespace Ondrel
{

// A node that is built from the text of a node file, without an output of its own: its inputs and outputs are those of
// the file. The set of fields never changes afterwards; those of field sets that are not chosen are hidden.
class ONDREL_EXPORT XmlNode : public PreviewNode
{
    Q_OBJECT
public:
    explicit XmlNode(QGraphicsItem* parent);

    static XmlNode* create(const QString& xml); // CreateXmlNode<XmlNode>

    // Fill the node from the entries; false, with a message on the error stream, at the first that is malformed.
    static bool parseFields(XmlNode* node, const QDomNodeList& inputs, const QDomNodeList& outputs);
    // The field for one entry, which is in no list yet; null if its type is unknown.
    static InputField* parseInputField(XmlNode* node, const QDomNode& entry);
    static bool parseFieldSetComboBoxInputField(XmlNode* node, const QDomNode& entry);

    // Always emits updated(). An index without a field does nothing else.
    void setInputValue(unsigned long index, QVariant value) override;
    // Invalid for fields without a value, and for an index without a field.
    QVariant inputValue(int index) override;
    void availableColorProfilesChanged() override;

public Q_SLOTS:
    void comboBoxFieldSetValueChanged();
    void inputValueChanged();

protected:
    std::vector<QString> fieldTypes; // by input index
    // The input indices of each set, by the input index of the combo box that chooses among them.
    std::map<unsigned long, std::vector<std::vector<unsigned long>>> fieldSets;

private:
    bool hasInput(std::size_t index) const;
    bool parseInput(const QDomNode& entry);
    void appendInput(InputField* field, const QString& fieldType);
    void showFieldSet(const std::vector<unsigned long>& inputs, bool show);
};

namespace Detail
{
ONDREL_EXPORT XmlNode* buildXmlNode(const QString& xml, XmlNode* (*construct)());
}

// A new node of a class T, derived from XmlNode and with a constructor T(QGraphicsItem*), without a parent: the caller
// owns it. Null if the text is no node file; then a message and the text go to the error stream. Elements nested deeper
// than 256 are refused as not well-formed.
template <class T>
T* CreateXmlNode(const QString& xml)
{
    return static_cast<T*>(Detail::buildXmlNode(xml, []() -> XmlNode* { return new T(nullptr); }));
}

} // namespace Ondrel
