#pragma once

#include "graph.h"

#include <QDialog>

#include <optional>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace Host
{

class Scene;

// All connections that a node may have, those that it has ticked, under a line for typing: the way to wire nodes by the
// keyboard. A tick that is set or taken away is an edit of the document at once. With a wire, the connections are those
// of the input at which it ends, and the wire is marked.
class ConnectionDialog : public QDialog
{
    Q_OBJECT
public:
    ConnectionDialog(Scene& scene, NodeId node, const std::optional<Connection>& wire, QWidget* parent);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void fill();
    void apply(QListWidgetItem* entry);

private:
    void find();
    void mark(const Connection& connection);
    void add(const Connection& connection);
    void make(const Connection& connection);

    Scene& m_scene;
    NodeId m_node;
    std::optional<Connection> m_wire;
    std::vector<Connection> m_choices;
    QLineEdit* m_line;
    QListWidget* m_list;
    bool m_filling = false;
};

// Every connection between the node and another one that would be taken, if there is room for it, and those that are
// there: what ends at the node's inputs first, each group by the other node's name.
std::vector<Connection> possibleConnections(Scene& scene, NodeId node);

} // namespace Host
