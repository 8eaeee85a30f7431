#pragma once

#include <ondrel/ondrel_export.h>

#include <QGraphicsRectItem>
#include <QObject>
#include <QString>
#include <QVariant>

namespace Ondrel
{

class Anchor;

// A row of a node: an output, or an input with or without a control. Lengths are in scene units. Text is measured in
// the application's font at a pixel size of 13, and drawn so. User-interface thread only.
class ONDREL_EXPORT FieldBase : public QObject, public QGraphicsRectItem
{
    Q_OBJECT
public:
    enum { Type = 65540 };

    // Owned by its parent item. An anchor becomes a child of the field, at its left edge; null for a control without a
    // connection point. With a parent that is in a scene already, addedToScene() runs with the first setSize().
    FieldBase(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName);

    QString name() const { return m_name; } // the field's key in its node
    QString displayName() const { return m_displayName; }
    void setDisplayName(const QString& displayName);
    Anchor* anchor() { return m_anchor; }
    const Anchor* anchor() const { return m_anchor; }

    // Gives the item the rectangle (0, 0, width, height) and calls sizeChanged. labelWidth is that of the label column
    // in which the field stands.
    void setSize(float width, float height, float labelWidth);
    void setRect(double x, double y, double w, double h);
    void setRect(const QRectF& rect);

    // Puts the anchor, if there is one, to the left edge, centred on the text's row.
    void layout();

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

public:
    virtual float minWidth() const;   // labelWidth() and, with an anchor, 19 more
    virtual float minHeight() const;  // the font's height, at least 15
    virtual float labelWidth() const; // width of the display name

    int type() const override;

    // Runs once, when the item is in a scene for the first time. Controls enter the scene here.
    virtual void addedToScene();
    // Runs with each setSize(), after the rectangle has been set.
    virtual void sizeChanged(float width, float height, float labelWidth);

private:
    void takeAnchor(float rowHeight);
    void noticeScene();

    QString m_name;
    Anchor* m_anchor;
    QString m_displayName;
    bool m_addedToSceneDone = false;
};

// An input. Draws its name behind the anchor, at the left.
class ONDREL_EXPORT InputField : public FieldBase
{
    Q_OBJECT
public:
    InputField(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};

// An output: its name at the right, before the anchor, for which the room is left in any case.
class ONDREL_EXPORT OutputField : public FieldBase
{
    Q_OBJECT
public:
    OutputField(QString name, QGraphicsItem* parent, Anchor* anchor, QString displayName);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
    void sizeChanged(float width, float height, float labelWidth) override;
};

} // namespace Ondrel
