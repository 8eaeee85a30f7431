#pragma once

#include "nodetypes.h"

#include <QDialog>

#include <functional>

class QLineEdit;
class QListWidget;

namespace Host
{

// The types that a word finds in title, category or keywords, the best first: titles that begin with it, then titles
// that hold it, then the rest, each by title. All types for an empty word.
std::vector<const NodeType*> findTypes(const NodeTypes& types, const QString& word);

// Whether a kind of node has an input, or an output, of the data type; that is so for any kind if it is empty.
bool takes(const NodeType& type, const QString& dataType);
bool gives(const NodeType& type, const QString& dataType);

// A list of node types under a line for typing. Return takes the marked one, Escape none.
class NodeSearch : public QDialog
{
    Q_OBJECT
public:
    NodeSearch(const NodeTypes& types, std::function<bool(const NodeType&)> isOffered, QWidget* parent);
    QString chosenType() const; // NodeType::id; empty for none

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void fill(const QString& word);

private:
    const NodeTypes& m_types;
    std::function<bool(const NodeType&)> m_isOffered;
    QLineEdit* m_line;
    QListWidget* m_list;
};

} // namespace Host
