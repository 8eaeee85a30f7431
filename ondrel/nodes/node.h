#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fieldbase.h>

#include <QGraphicsRectItem>
#include <QObject>
#include <QString>
#include <QVariant>

#include <vector>

class NodeBackdrop;
class QGraphicsTextItem;

namespace Ondrel
{

class Layout;

// A box of the graph: a header and rows of fields. It draws itself, is selected and moved by the mouse, and reports all
// that by signals; connections, values' meaning and storage are the host's. In a scene of nodes, only nodes may be
// selectable. Points and lengths are in scene units. User-interface thread only.
class ONDREL_EXPORT Node : public QObject, public QGraphicsRectItem
{
    Q_OBJECT
public:
    enum { Type = 65538 };

    explicit Node(QGraphicsItem* parent);
    ~Node() override;

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    // A plain press selects the node alone, unless it is selected; with Shift it toggles the node, but not across the
    // border of a group. Buttons but the left go to the toolkit's handlers.
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

public:
    QRectF boundingRect() const override; // the rectangle and 2 on every side

    // The value of an input, in the form that a host stores. The default of setInputValue does nothing.
    virtual void setInputValue(unsigned long index, QVariant value);
    virtual QVariant inputValue(int index) = 0;

    // The display name, or an empty text if there is no such field.
    virtual QString inputDisplayNameOfFieldByIndex(unsigned long index) const;
    virtual QString outputDisplayNameOfFieldByIndex(unsigned long index) const;
    virtual QString inputDisplayNameOfFieldByAnchor(Anchor* anchor) const;
    virtual QString outputDisplayNameOfFieldByAnchor(Anchor* anchor) const;

    // The anchor of one direction whose centre is nearest to a scene point, and its distance, the first of equally near
    // ones; null and 10000 if none is nearer than that. Hidden fields count. `exclude` is not looked at: a caller tests
    // the result.
    virtual void findClosestAnchor(const QPoint& point, Anchor::IODirection direction, const Anchor* exclude,
                                   Anchor** anchorOut, float& distanceOut) const;

    virtual bool isGroupNode() const; // false

    int type() const override;

    unsigned long inputFieldCount() const;
    unsigned long outputFieldCount() const;

    // A field's index is its place among the node's inputs or outputs. Names are compared exactly. Without such a field
    // the result is -1, an empty text or null; null also for a field without an anchor.
    int inputIndexOfFieldByName(const QString& name) const;
    int outputIndexOfFieldByName(const QString& name) const;
    int inputIndexOfFieldByAnchor(Anchor* anchor) const;
    int outputIndexOfFieldByAnchor(Anchor* anchor) const;
    QString inputNameOfFieldByIndex(unsigned long index) const;
    QString outputNameOfFieldByIndex(unsigned long index) const;
    QString inputNameOfFieldByAnchor(Anchor* anchor) const;
    QString outputNameOfFieldByAnchor(Anchor* anchor) const;
    Anchor* inputAnchorOfFieldByIndex(unsigned long index);
    Anchor* outputAnchorOfFieldByIndex(unsigned long index);
    Anchor* inputAnchorOfFieldByName(const QString& name);
    Anchor* outputAnchorOfFieldByName(const QString& name);

    // The host's number for the node; 0 at first, and never used here.
    void setId(unsigned long id) { m_id = id; }
    unsigned long id() const { return m_id; }

    // The text of the title bar. The node keeps its width until the next layout().
    void setHeader(const QString& header);

    // The name of the node's type, for the host.
    void setName(const QString& name) { m_name = name; }
    QString name() const { return m_name; }

    // Shows a text, as HTML, right above the node; an empty text removes it.
    void setDebugText(const QString& text);

    // The group that holds this node, or null; not owned.
    void setGroupNode(Node* group) { m_group = group; }
    Node* groupNode() const { return m_group; }
    bool isInGroupNode() const { return m_group != nullptr; }

    // Marks the selection's primary node, whose header is yellow.
    void setFirstSelected(bool firstSelected);
    // False hides that the node is selected, from the next paint on; true at first.
    void setDrawSelection(bool drawSelection) { m_drawSelection = drawSelection; }

    static float headerHeight(); // the title bar
    QSizeF headerSize() const;   // the least width for the header's text; 5 more than headerHeight(), where rows begin

    // A new anchor of this node, whose mouse events the node reports. The field that is built on it takes it over.
    Anchor* createAnchor(Anchor::IODirection direction);

    // Moves the keyboard focus to the next or the previous control of the node, as for Tab and Backtab, which the host
    // sees. Starts from the field and its item that have the focus. False if there is no further control.
    bool focusNextPrevChild(bool next, const FieldBase* currentField, QGraphicsItem* currentItem);

    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    // One of the two for each press of the left button, for the pressed node alone.
    void selected(Node* node);
    void deselected(Node* node);

    // True for each move by the mouse, of the grabbed node alone; false at the end of layout().
    void moved(Node* node, bool movedByUser);
    // A left release, but for one that took the node out of the selection.
    void moveComplete(Node* node);

    void updated(Node* node); // a value may have changed

    // Fields go away: each anchored one is named between the other two signals. The host cuts its wires.
    void beginFieldsMadeUnavailable();
    void fieldMadeUnavailable(Node* node, Anchor* anchor);
    void endFieldsMadeUnavailable();

    void fieldAnchorPressEvent(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void fieldAnchorReleaseEvent(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void fieldAnchorMoveEvent(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event);

public Q_SLOTS:
    void anchorMousePressEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorMouseReleaseEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);
    void anchorMouseMoveEvent(Anchor* anchor, QGraphicsSceneMouseEvent* event);

    // Replaces the arrangement of the fields and lays them out; null stacks outputs and then inputs. Not owned.
    void setNodeLayout(Layout* newNodeLayout);

    // Measures and places the fields. Runs by itself when the node enters a scene or becomes visible.
    virtual void layout();

private:
    bool selectionCrossesGroups() const;
    void deselectOthers();
    void paintHeader(QPainter& painter) const;
    bool focusControlOf(const InputField& field, Qt::FocusReason reason);

    NodeBackdrop* m_backdrop;
    unsigned long m_id = 0;
    QString m_header;
    QString m_name;
    QGraphicsTextItem* m_debugTextItem = nullptr;
    Node* m_group = nullptr;

protected:
    // In row order. Fields are child items of the node and die with it; the lists own nothing.
    std::vector<InputField*> inputFields;
    std::vector<OutputField*> outputFields;

    bool isFirstSelected() const { return m_firstSelected; }

private:
    Layout* m_nodeLayout = nullptr;
    bool m_toggleSelecting = false;
    bool m_deselectOnRelease = false;
    bool m_firstSelected = false;
    bool m_drawSelection = true;
};

} // namespace Ondrel
