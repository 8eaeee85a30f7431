#include "randomedits.h"

#include "canvascommands.h"
#include "document.h"
#include "editorwindow.h"
#include "modehost.h"
#include "scene.h"
#include "script.h"
#include "values.h"

#include <ondrel/core/color.h>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr std::size_t kMostNodes = 25;

} // namespace

RandomEdits::RandomEdits(EditorWindow& window, Script& script, unsigned int seed, const QString& picture)
    : m_window(window)
    , m_script(script)
    , m_random(seed)
    , m_picture(window.document().graph().nodeByName(picture)->id)
{
}

QString RandomEdits::step()
{
    struct Choice {
        const char* name;
        Action action;
        int weight;
    };
    static const Choice choices[] = {
        {"add", &RandomEdits::add, 8},         {"wire", &RandomEdits::wire, 14},
        {"unwire", &RandomEdits::unwire, 3},   {"set", &RandomEdits::setValue, 14},
        {"move", &RandomEdits::move, 6},       {"bypass", &RandomEdits::bypass, 3},
        {"replace", &RandomEdits::replace, 3}, {"rename", &RandomEdits::rename, 3},
        {"frame", &RandomEdits::addFrame, 2},  {"reframe", &RandomEdits::changeFrame, 3},
        {"select", &RandomEdits::select, 3},   {"duplicate", &RandomEdits::duplicate, 2},
        {"cut", &RandomEdits::cutAndPaste, 2}, {"remove", &RandomEdits::remove, 2},
        {"stroke", &RandomEdits::stroke, 1},   {"key", &RandomEdits::pressKey, 2},
        {"undo", &RandomEdits::undo, 3},
    };
    int sum = 0;
    for (const Choice& choice : choices)
        sum += choice.weight;
    int left = below(sum);
    const Choice* chosen = std::begin(choices);
    while (left >= chosen->weight)
        left -= (chosen++)->weight;
    m_log.append(chosen->name);
    (this->*chosen->action)();
    return m_log.back();
}

void RandomEdits::step(int count)
{
    for (int i = 0; i < count; ++i)
        step();
}

NodeId RandomEdits::anyNode()
{
    const auto& nodes = m_window.document().graph().nodes;
    return std::next(nodes.begin(), below(int(nodes.size())))->first;
}

NodeId RandomEdits::spareNode()
{
    const NodeId node = anyNode();
    return node == m_picture ? 0 : node;
}

QString RandomEdits::anyType()
{
    const std::vector<const NodeType*> types = m_window.document().types().all();
    return types[std::size_t(below(int(types.size())))]->id;
}

void RandomEdits::add()
{
    const QPointF at(below(2000) - 1000, below(2000) - 1000);
    if (m_window.document().graph().nodes.size() < kMostNodes)
        m_window.canvasCommands().addNode(anyType(), at);
}

// Many of them are refused, as those of a user are.
void RandomEdits::wire()
{
    const NodeId from = anyNode(), to = anyNode();
    PreviewNode* const source = m_window.scene().item(from);
    PreviewNode* const target = m_window.scene().item(to);
    if (!source || !target || source->outputFieldCount() == 0 || target->inputFieldCount() == 0)
        return;
    const auto output = static_cast<unsigned long>(below(int(source->outputFieldCount())));
    const auto input = static_cast<unsigned long>(below(int(target->inputFieldCount())));
    m_window.document().addConnection(
        {from, source->outputNameOfFieldByIndex(output), to, target->inputNameOfFieldByIndex(input)});
}

void RandomEdits::unwire()
{
    const std::vector<Connection>& connections = m_window.document().graph().connections;
    if (!connections.empty())
        m_window.document().removeConnection(connections[std::size_t(below(int(connections.size())))]);
}

QString RandomEdits::textFor(const InputInfo& input)
{
    if (!input.choices.isEmpty())
        return input.choices[below(input.choices.size())];
    if (input.kind == "color")
        return QString("%1,%2,%3,65535").arg(below(65536)).arg(below(65536)).arg(below(65536));
    // Near the initial value, so that no picture becomes large.
    const double middle =
        std::clamp(input.initial.toString().toDouble(), input.minimum, std::max(input.minimum, 200.0));
    const double value = std::clamp(middle + below(41) - 20, input.minimum, std::max(input.minimum, input.maximum));
    return QString::number(std::floor(value));
}

void RandomEdits::setHiddenValue(NodeId node, const QString& field)
{
    QVariant value;
    if (field == "corners") {
        QVariantList corners;
        for (int i = 0; i < 4; ++i)
            corners.append(
                QPointF((i == 1 || i == 2 ? 0.8 : 0) + below(20) / 100.0, (i > 1 ? 0.8 : 0) + below(20) / 100.0));
        value = corners;
    } else if (field == "strokes") {
        value = QVariantList{QVariantMap{{"size", double(1 + below(40))},
                                         {"hardness", below(11) / 10.0},
                                         {"color", QVariant::fromValue(Ondrel::Color(65535, 0, 20000, 50000))},
                                         {"points", QVariantList{QPointF(below(90), below(60)), QPointF(45, 30)}}}};
    } else if (field == "file") {
        value = QString("picture%1.png").arg(below(100));
    } else {
        return;
    }
    m_window.document().setValue(node, field, value);
}

// Some with a gesture, as sliders that are dragged: steps are merged then.
void RandomEdits::setValue()
{
    const NodeId node = anyNode();
    const NodeRecord record = *m_window.document().graph().node(node);
    const NodeType* const type = m_window.document().types().find(record.type);
    if (!type || type->inputs.empty())
        return;
    const InputInfo& input = type->inputs[std::size_t(below(int(type->inputs.size())))];
    if (input.kind == "hidden") {
        setHiddenValue(node, input.name);
        return;
    }
    QVariant value;
    if (input.kind.isEmpty() || input.kind == "resource" || input.kind == "colorprofile" ||
        !valueFromText(textFor(input), input.kind, input.choices, value))
        return;
    m_window.document().setValue(node, input.name, value, below(3));
}

void RandomEdits::move()
{
    std::map<NodeId, QPointF> positions;
    for (int i = 0; i < 3; ++i)
        positions[anyNode()] = QPointF(below(2000) - 1000, below(2000) - 1000);
    m_window.document().moveNodes(positions, below(3));
}

void RandomEdits::bypass()
{
    m_window.scene().selectNodes({anyNode(), anyNode()});
    m_window.canvasCommands().bypassSelected();
}

void RandomEdits::replace()
{
    if (const NodeId node = spareNode())
        m_window.document().replaceNode(node, anyType());
}

void RandomEdits::rename()
{
    m_window.document().renameNode(anyNode(), QString("Node %1").arg(below(30)));
}

void RandomEdits::addFrame()
{
    if (m_window.document().graph().frames.size() < 5)
        m_window.document().addFrame(QString("Frame %1").arg(below(9)), QRectF(below(500), below(500), 300, 200));
}

void RandomEdits::changeFrame()
{
    const auto& frames = m_window.document().graph().frames;
    if (frames.empty())
        return;
    FrameRecord frame = std::next(frames.begin(), below(int(frames.size())))->second;
    if (below(4) == 0) {
        m_window.document().removeFrame(frame.id);
        return;
    }
    frame.title += "!";
    frame.area.translate(below(50), below(50));
    m_window.document().changeFrame(frame);
}

void RandomEdits::select()
{
    m_window.scene().selectNodes({anyNode(), anyNode(), anyNode()});
}

void RandomEdits::duplicate()
{
    select();
    if (m_window.document().graph().nodes.size() < kMostNodes)
        m_window.canvasCommands().duplicateSelected();
}

void RandomEdits::cutAndPaste()
{
    const NodeId node = spareNode();
    if (node == 0)
        return;
    m_window.scene().selectNodes({node});
    m_window.canvasCommands().cutSelected();
    m_window.canvasCommands().paste();
}

void RandomEdits::remove()
{
    if (const NodeId node = spareNode()) {
        m_window.scene().selectNodes({node});
        m_window.canvasCommands().deleteSelected();
    }
}

// In the view, with the mode of a node that comes from the picture.
void RandomEdits::stroke()
{
    static const char* const kinds[] = {"essentials/crop", "essentials/perspective", "essentials/paint"};
    Document& document = m_window.document();
    document.beginStep("Edit in view");
    const NodeId node = m_window.canvasCommands().addNode(kinds[below(3)], QPointF(below(500), 500));
    document.addConnection({m_picture, "image", node, "image"});
    document.endStep();
    const QString name = document.graph().node(node)->name;
    const QString line = QString("stroke %1 %2 %3 %4").arg(below(90)).arg(below(60)).arg(below(90)).arg(below(60));
    if (!m_script.run("edit \"" + name + "\"\nwait\n" + line + "\n" + line))
        m_problems.append(m_script.error());
    if (!document.graph().node(node)->values.isEmpty())
        ++m_strokes;
    m_window.editInView(false);
}

void RandomEdits::pressKey()
{
    if (const NodeId node = spareNode()) {
        m_window.scene().selectNodes({node});
        if (!m_script.run(below(2) == 0 ? "key D" : "key Delete"))
            m_problems.append(m_script.error());
    }
}

void RandomEdits::undo()
{
    QUndoStack& stack = m_window.document().undoStack();
    const int back = below(4), forth = below(4);
    for (int i = 0; i < back; ++i)
        stack.undo();
    for (int i = 0; i < forth; ++i)
        stack.redo();
}

} // namespace Host
