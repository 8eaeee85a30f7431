#pragma once

#include "nodetypes.h"

#include <QDialog>

class QLineEdit;
class QListWidget;

namespace Host
{

// The types that a word finds in title, category or keywords, the best first: titles that begin with it, then titles
// that hold it, then the rest, each by title. All types for an empty word.
std::vector<const NodeType*> findTypes(const NodeTypes& types, const QString& word);

// A list of node types under a line for typing. Return takes the marked one, Escape none.
class NodeSearch : public QDialog
{
    Q_OBJECT
public:
    // Offers only types with an input, or an output, of the data type, unless that is empty.
    NodeSearch(const NodeTypes& types, const QString& dataType, bool wantsInput, QWidget* parent);
    QString chosenType() const; // NodeType::id; empty for none

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void fill(const QString& word);

private:
    bool isOffered(const NodeType& type) const;

    const NodeTypes& m_types;
    QString m_dataType;
    bool m_wantsInput;
    QLineEdit* m_line;
    QListWidget* m_list;
};

} // namespace Host
