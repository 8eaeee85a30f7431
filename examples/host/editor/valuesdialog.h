#pragma once

#include "document.h"

#include <QDialog>

class QFormLayout;
class QLabel;

namespace Host
{

// All values of a node as lines of text: the way to curves and other controls that only a mouse can handle, by the
// keyboard. A line that is finished is an edit of the document at once; one that makes no sense is named, and nothing
// changes. The document outlives it.
class ValuesDialog : public QDialog
{
    Q_OBJECT
public:
    ValuesDialog(Document& document, NodeId node, QWidget* parent);

public Q_SLOTS:
    void reject() override; // as closing the window does: leaves a line that is not finished as it was

private Q_SLOTS:
    void finishLine();

private:
    void addLine(const InputInfo& input, QFormLayout& form);
    QVariant valueOf(const InputInfo& input) const;

    Document& m_document;
    NodeId m_node;
    QLabel* m_message;
};

// The inputs of a node that have values a person can type.
std::vector<InputInfo> typedInputs(const Document& document, NodeId node);

} // namespace Host
