#pragma once

#include "document.h"
#include "nodeitem.h"

namespace Host
{

// Carries the values of nodes between the document and the controls of their items.
class NodeValues
{
public:
    explicit NodeValues(Document& document);

    // From the document: all values of a node, or one.
    void fill(PreviewNode& node);
    void update(PreviewNode& node, const QString& field);

    // To the document, what is different there. Between press() and release() of the mouse all changes are one gesture,
    // however many values it passes; without the mouse each is one of its own. What the document does not take, the
    // node does not keep either: the reason, a sentence, is empty if there was nothing of that kind.
    QString store(PreviewNode& node);
    void press();
    void release();

    // Whether a node changes by itself at this moment, which is not to be stored.
    bool isFilling() const { return m_filling; }
    // Calls something that makes a node change itself in a way that the document knows already.
    template <class Call>
    void whileFilling(Call call)
    {
        const bool outer = std::exchange(m_filling, true);
        call();
        m_filling = outer;
    }

private:
    const NodeType* typeOf(const PreviewNode& node) const; // null if it is not loaded or the node is gone

    Document& m_document;
    bool m_filling = false;
    bool m_mousePressed = false;
    int m_gesture = 1;
};

} // namespace Host
