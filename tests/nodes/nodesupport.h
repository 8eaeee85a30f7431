#pragma once

#include <ondrel/nodes/fieldbase.h>
#include <ondrel/nodes/node.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QStringList>
#include <QStyleOptionGraphicsItem>
#include <QTest>

#include <algorithm>
#include <functional>

namespace OndrelTest
{

inline QFont headerFont()
{
    QFont font(QApplication::font().family());
    font.setPixelSize(15);
    return font;
}

inline QFont fieldFont()
{
    QFont font = QApplication::font();
    font.setPixelSize(13);
    return font;
}

inline float fieldTextWidth(const QString& text)
{
    return static_cast<float>(QFontMetrics(fieldFont()).horizontalAdvance(text));
}

inline float plainFieldHeight()
{
    return static_cast<float>(std::max(15, QFontMetrics(fieldFont()).height()));
}

// Counts how often a field is told of its scene, and keeps what it was told of its size.
struct RecordingField : Ondrel::InputField {
    using InputField::InputField;

    void addedToScene() override { ++added; }
    void sizeChanged(float width, float height, float labelWidth) override
    {
        ++resized;
        lastWidth = width;
        lastHeight = height;
        lastLabelWidth = labelWidth;
    }

    int added = 0, resized = 0;
    float lastWidth = -1, lastHeight = -1, lastLabelWidth = -1;
};

// A field with made-up measures.
template <typename Base>
struct SizedField : Base {
    SizedField(QGraphicsItem* parent, Ondrel::Anchor* anchor, float width, float height, float label = 0)
        : Base("sized", parent, anchor, QString())
        , m_width(width)
        , m_height(height)
        , m_label(label)
    {
    }

    float minWidth() const override { return m_width; }
    float minHeight() const override { return m_height; }
    float labelWidth() const override { return m_label; }
    void sizeChanged(float width, float height, float labelWidth) override
    {
        Base::sizeChanged(width, height, labelWidth);
        lastLabelWidth = labelWidth;
        ++resized;
    }

    float lastLabelWidth = -1;
    int resized = 0;

private:
    float m_width, m_height, m_label;
};
using SizedInput = SizedField<Ondrel::InputField>;
using SizedOutput = SizedField<Ondrel::OutputField>;

struct TestNode : Ondrel::Node {
    explicit TestNode(const QString& typeName = {}, QGraphicsItem* parent = nullptr)
        : Node(parent)
    {
        setName(typeName);
    }

    using Node::inputFields;
    using Node::outputFields;

    QVariant inputValue(int) override { return {}; }

    template <typename Field>
    Field* add(Field* field)
    {
        if constexpr (std::is_base_of_v<Ondrel::OutputField, Field>)
            outputFields.push_back(field);
        else
            inputFields.push_back(field);
        return field;
    }
    Ondrel::InputField* addInput(const QString& fieldName, const QString& text = {})
    {
        return add(new Ondrel::InputField(fieldName, this, createAnchor(Ondrel::Anchor::Input), text));
    }
    Ondrel::InputField* addControl(const QString& fieldName, const QString& text = {})
    {
        return add(new Ondrel::InputField(fieldName, this, nullptr, text));
    }
    Ondrel::OutputField* addOutput(const QString& fieldName, const QString& text = {})
    {
        return add(new Ondrel::OutputField(fieldName, this, createAnchor(Ondrel::Anchor::Output), text));
    }
};

// All signals of one or more nodes, in order, as "node: signal arguments".
class SignalLog
{
public:
    SignalLog() = default;
    explicit SignalLog(Ondrel::Node& node) { listen(node); }
    SignalLog(const SignalLog&) = delete;
    SignalLog& operator=(const SignalLog&) = delete;

    void listen(Ondrel::Node& node)
    {
        using Ondrel::Node;
        note(node, &Node::selected, "selected");
        note(node, &Node::deselected, "deselected");
        note(node, &Node::moveComplete, "moveComplete");
        note(node, &Node::updated, "updated");
        QObject::connect(&node, &Node::moved, &m_context, [this, &node](Node* sender, bool byUser) {
            add(node, sender, byUser ? "moved by user" : "moved");
        });
        QObject::connect(&node, &Node::beginFieldsMadeUnavailable, &m_context,
                         [this, &node] { add(node, &node, "begin"); });
        QObject::connect(&node, &Node::endFieldsMadeUnavailable, &m_context,
                         [this, &node] { add(node, &node, "end"); });
        QObject::connect(&node, &Node::fieldMadeUnavailable, &m_context,
                         [this, &node](Node* sender, Ondrel::Anchor* anchor) {
                             const QString field = anchor->direction() == Ondrel::Anchor::Input
                                                       ? node.inputNameOfFieldByAnchor(anchor)
                                                       : node.outputNameOfFieldByAnchor(anchor);
                             add(node, sender, "unavailable " + field);
                         });
        noteAnchor(node, &Node::fieldAnchorPressEvent, "anchor press ");
        noteAnchor(node, &Node::fieldAnchorReleaseEvent, "anchor release ");
        noteAnchor(node, &Node::fieldAnchorMoveEvent, "anchor move ");
    }

    // Adds an entry that is no signal.
    void add(const QString& text) { m_entries.append(text); }

    // What was raised since the last call.
    QStringList take()
    {
        QStringList entries;
        entries.swap(m_entries);
        return entries;
    }

private:
    template <typename Signal>
    void note(Ondrel::Node& node, Signal signal, const QString& text)
    {
        QObject::connect(&node, signal, &m_context,
                         [this, &node, text](Ondrel::Node* sender) { add(node, sender, text); });
    }
    template <typename Signal>
    void noteAnchor(Ondrel::Node& node, Signal signal, const QString& text)
    {
        QObject::connect(&node, signal, &m_context,
                         [this, &node, text](Ondrel::Node* sender, Ondrel::Anchor* anchor, QGraphicsSceneMouseEvent*) {
                             add(node, sender,
                                 text + node.inputNameOfFieldByAnchor(anchor) + node.outputNameOfFieldByAnchor(anchor));
                         });
    }
    void add(Ondrel::Node& node, Ondrel::Node* sender, const QString& text)
    {
        EXPECT_EQ(sender, &node);
        m_entries.append(node.name().isEmpty() ? text : node.name() + ": " + text);
    }

    QObject m_context;
    QStringList m_entries;
};

// A scene of 600 x 400 with a view that shows scene and view coordinates alike.
struct GraphView {
    GraphView()
        : view(&scene)
    {
        scene.setSceneRect(0, 0, 600, 400);
        view.setFrameShape(QFrame::NoFrame);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(600, 400);
        view.show();
        QApplication::setActiveWindow(&view);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    template <typename Item>
    Item* add(Item* item, const QPointF& position = {})
    {
        item->setPos(position);
        scene.addItem(item);
        return item;
    }

    void send(QEvent::Type type, const QPointF& scenePoint, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint point = view.mapFromScene(scenePoint);
        QMouseEvent event(type, point, view.viewport()->mapToGlobal(point), button, buttons, modifiers);
        QApplication::sendEvent(view.viewport(), &event);
    }
    void press(const QPointF& point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, point, button, button, modifiers);
    }
    void move(const QPointF& point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        send(QEvent::MouseMove, point, Qt::NoButton, buttons, modifiers);
    }
    void release(const QPointF& point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, point, button, Qt::NoButton, modifiers);
    }
    void click(const QPointF& point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        press(point, modifiers, button);
        release(point, modifiers, button);
    }

    QGraphicsScene scene;
    QGraphicsView view;
};

// What body(painter) paints on a transparent ground. The painter's font is a default one.
template <typename Body>
QImage painted(const QSize& size, Body body, const QPointF& origin = {})
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(origin);
    body(painter);
    painter.end();
    return image;
}

// The item painted by itself, as a scene would paint it.
inline QImage paintedItem(QGraphicsItem& item, const QSize& size, const QPointF& origin = {},
                          QStyle::State state = QStyle::State_None)
{
    return painted(
        size,
        [&](QPainter& painter) {
            QStyleOptionGraphicsItem option;
            option.state = state;
            option.exposedRect = item.boundingRect();
            item.paint(&painter, &option, nullptr);
        },
        origin);
}

// How often the scene is asked to repaint the item. The view must have been shown.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QGraphicsScene& scene)
    {
        QObject::connect(&scene, &QGraphicsScene::changed, this, [this] { ++m_changes; });
        QApplication::processEvents();
        m_changes = 0;
    }
    // Whether anything was to be repainted since the last call.
    bool changed()
    {
        QApplication::processEvents();
        return std::exchange(m_changes, 0) > 0;
    }

private:
    int m_changes = 0;
};

} // namespace OndrelTest
