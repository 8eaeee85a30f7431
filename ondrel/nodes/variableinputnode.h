#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/previewnode.h>

#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace Ondrel
{

class HiddenField;

// A node with as many inputs as it has connections, and a free one, the placeholder. Connecting the placeholder makes
// it a regular input and a new placeholder beside it; an input goes when the last connection of its fields is cut.
//
// Inputs: 0 the preview, 1 a hidden field with the ids of the regular inputs, in input order and joined by commas,
// which the host stores; then placeholder and regular inputs, each followed by the fields created with it. A host
// restores input 1 first, on a fresh node, then connections and other values. The node never calls layout() when its
// inputs change: the host does.
class ONDREL_EXPORT VariableInputNode : public PreviewNode
{
    Q_OBJECT
public:
    // Where new inputs go: before those that are there, behind the placeholder; or after them, before it.
    enum InsertPosition { InsertAtStart = 0, InsertAtEnd = 1 };

    struct VariableFieldSet {
        unsigned long id; // unique in the node; outlives saving
        InputField* field;
        std::vector<InputField*> childFields;
    };

    // Fields are named namePrefix + id, the order field namePrefix + "_order".
    VariableInputNode(QGraphicsItem* parent, bool createOutput, const QString& namePrefix,
                      const QString& placeholderDisplayName, const QString& connectedDisplayName,
                      InsertPosition position);
    ~VariableInputNode() override;

    unsigned long variableFieldSetCount() const;

    // Between an input's index and that of its set, in the order of creation, with 0 for the set's own input and c for
    // its child c - 1. False if there is no such set, child or field; the placeholder belongs to no set.
    bool variableFieldSetIndexToFieldIndex(unsigned long setIndex, unsigned long childIndex,
                                           unsigned long& fieldIndex) const;
    bool fieldIndexToVariableFieldSetIndex(unsigned long fieldIndex, unsigned long& setIndex,
                                           unsigned long& childIndex) const;

    QVariant inputValue(int index) override; // the order text for 1; invalid for all others
    void setInputValue(unsigned long index, QVariant value) override;
    void anchorHasBeenConnected(const Anchor* anchor, const QString& name) override;
    void anchorHasBeenDisconnected(const Anchor* anchor) override;

protected:
    // Appends the fields that belong to the input of this id; none here. In a node that is in a scene, give a control
    // its parent after construction: only then does it notice the scene at once.
    virtual void createVariableInputFieldChildFields(const QString& id, std::vector<InputField*>& fields);

    unsigned long newVariableInputFieldIndex() const;
    unsigned long generateUniqueVariableFieldSetId() const;
    InputField* createVariableInputField(const QString& id);
    void createNewVariableInputField(bool replace);
    void addVariableFieldSet();
    void deleteVariableFieldSet(unsigned long setIndex);
    void setupVariableFieldSets(QStringList& ids);

private:
    std::size_t inputIndexOf(const InputField* field) const;
    void insertInputs(std::size_t index, const std::vector<InputField*>& fields);

    InsertPosition m_insertPosition;
    QString m_namePrefix;
    QString m_placeholderDisplayName;
    QString m_connectedDisplayName;
    unsigned long m_placeholderId = 0;
    HiddenField* m_orderField;
    InputField* m_placeholderField;
    std::vector<VariableFieldSet> m_variableFieldSets;
};

} // namespace Ondrel
