#include "script.h"

#include "canvascommands.h"
#include "editorwindow.h"
#include "exportcommands.h"
#include "imagepane.h"
#include "importer.h"
#include "modehost.h"
#include "nodesearch.h"
#include "projectfiles.h"
#include "scene.h"
#include "sceneview.h"
#include "values.h"

#include "../../mode/canvasview.h"

#include <ondrel/nodes/fieldbase.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QStatusBar>
#include <QThreadPool>
#include <QTimer>

#include <map>

namespace Host
{
namespace
{

constexpr int kPatience = 60000; // milliseconds
constexpr int kMostFrames = 500;

QStringList wordsOf(const QString& line)
{
    static const QRegularExpression word("\"([^\"]*)\"|(\\S+)");
    QStringList words;
    for (auto match = word.globalMatch(line); match.hasNext();) {
        const QRegularExpressionMatch each = match.next();
        words.append(each.captured(1).isNull() ? each.captured(2) : each.captured(1));
    }
    return words;
}

QPointF pointAt(const QStringList& words, int first)
{
    return QPointF(words.value(first).toDouble(), words.value(first + 1).toDouble());
}

} // namespace

Script::Script(EditorWindow& window, const QDir& folder)
    : m_window(window)
    , m_folder(folder)
{
}

bool Script::fail(const QString& reason)
{
    m_error = reason;
    return false;
}

bool Script::run(const QString& text)
{
    int number = 0;
    for (const QString& line : text.split('\n')) {
        ++number;
        const QStringList words = wordsOf(line);
        if (words.isEmpty() || words[0].startsWith('#'))
            continue;
        if (!runLine(words))
            return fail(QString("line %1, \"%2\": %3").arg(QString::number(number), line.trimmed(), m_error));
        QApplication::processEvents();
    }
    return true;
}

bool Script::runLine(const QStringList& words)
{
    const QString& command = words[0];
    if (command == "open" || command == "save" || command == "import" || command == "export")
        return runFile(words);
    if (command == "wire" || command == "unwire" || command == "replug" || command == "drop")
        return runWire(words);
    if (command == "expect")
        return expect(words);
    if (command == "set")
        return set(words);
    if (command == "stroke")
        return stroke(words);
    if (command == "viewkey")
        return pressKeyInView(words.value(1));
    if (command == "slide")
        return slide(words);
    if (command == "key")
        return pressKey(words.value(1));
    if (command == "type") {
        m_answer = words.value(1);
        return true;
    }
    if (command == "wait")
        return wait();
    if (command == "accept" || command == "cancel")
        return endDialog(command == "accept");
    if (command == "grab")
        return grab(words.value(1));
    return runNode(words);
}

bool Script::runFile(const QStringList& words)
{
    if (words[0] == "open")
        m_window.files().open(words.value(1));
    else if (words[0] == "save")
        m_window.files().save(words.value(1));
    else if (words[0] == "export")
        m_window.exportCommands().exportPicture(words.value(1), {});
    else
        m_window.importer().import({words.value(1)}, pointAt(words, 2));
    return wait();
}

bool Script::runNode(const QStringList& words)
{
    const QString& command = words[0];
    Document& document = m_window.document();
    if (command == "add") {
        const NodeId id = m_window.canvasCommands().addNode(words.value(1), pointAt(words, 2));
        return (id != 0 && (words.size() < 5 || document.renameNode(id, words[4]))) || fail("there is no such kind");
    }
    std::vector<NodeId> ids;
    const int named = command == "select" ? words.size() - 1 : 1;
    for (int i = 1; i <= named; ++i) {
        const NodeRecord* const record = document.graph().nodeByName(words.value(i));
        if (!record)
            return fail(QString("there is no node \"%1\"").arg(words.value(i)));
        ids.push_back(record->id);
    }
    if (command == "select")
        m_window.scene().selectNodes(ids);
    else if (command == "show")
        m_window.scene().show(ids.front(), PreviewNode::EmblemPrimary);
    else if (command == "edit") {
        m_window.scene().selectNodes(ids);
        m_window.editInView(true);
        return m_window.modes().node() == ids.front() || fail("it has no mode");
    } else if (command == "move") {
        const QPointF grip = m_window.scene().item(ids.front())->scenePos() + QPointF(30, 8);
        drag(m_window.sceneView(), grip, grip + pointAt(words, 2));
    } else
        return fail("not understood");
    return true;
}

bool Script::runWire(const QStringList& words)
{
    const Graph& graph = m_window.document().graph();
    const NodeRecord* const from = graph.nodeByName(words.value(1));
    PreviewNode* const item = from ? m_window.scene().item(from->id) : nullptr;
    if (!item)
        return fail("there is no such node");
    const bool takesOff = words[0] == "unwire" || words[0] == "replug";
    Anchor* const start =
        takesOff ? item->inputAnchorOfFieldByName(words.value(2)) : item->outputAnchorOfFieldByName(words.value(2));
    if (!start)
        return fail("there is no such field");
    const QPointF begin = start->sceneBoundingRect().center();
    if (words[0] == "wire" || words[0] == "replug") {
        const NodeRecord* const to = graph.nodeByName(words.value(3));
        PreviewNode* const other = to ? m_window.scene().item(to->id) : nullptr;
        Anchor* const end = other ? other->inputAnchorOfFieldByName(words.value(4)) : nullptr;
        if (!end)
            return fail("there is no such end");
        drag(m_window.sceneView(), begin, end->sceneBoundingRect().center());
    } else if (takesOff) {
        drag(m_window.sceneView(), begin, begin + QPointF(-90, 90));
    } else {
        answerSearch();
        drag(m_window.sceneView(), begin, pointAt(words, 3));
    }
    return true;
}

// The search runs its own event loop.
void Script::answerSearch()
{
    QTimer::singleShot(0, &m_window, [this] {
        auto* const search = m_window.findChild<NodeSearch*>();
        if (!search)
            return answerSearch();
        auto* const line = search->findChild<QLineEdit*>();
        line->setText(m_answer);
        search->accept();
    });
}

// In scene coordinates, in five steps, as a hand would.
void Script::drag(QGraphicsView& view, const QPointF& from, const QPointF& to)
{
    QWidget* const target = view.viewport();
    const auto send = [&](QEvent::Type type, const QPointF& at, Qt::MouseButton button, Qt::MouseButtons held) {
        const QPoint position = view.mapFromScene(at);
        QMouseEvent event(type, position, target->mapToGlobal(position), button, held, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
    send(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    for (int step = 1; step <= 5; ++step)
        send(QEvent::MouseMove, from + (to - from) * step / 5, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

bool Script::set(const QStringList& words)
{
    const NodeRecord* const record = m_window.document().graph().nodeByName(words.value(1));
    const NodeType* const type = record ? m_window.document().types().find(record->type) : nullptr;
    const InputInfo* const input = type ? type->input(words.value(2)) : nullptr;
    QVariant value;
    if (!input || !valueFromText(words.value(3), input->kind, input->choices, value))
        return fail("there is no such value");
    m_window.document().setValue(record->id, words.value(2), value);
    return true;
}

bool Script::stroke(const QStringList& words)
{
    drag(m_window.imagePane().view(), pointAt(words, 1), pointAt(words, 3));
    return true;
}

bool Script::pressKeyInView(const QString& text)
{
    static const std::map<QString, Qt::Key> keys = {
        {"[", Qt::Key_BracketLeft},      {"]", Qt::Key_BracketRight}, {"Shift+[", Qt::Key_BraceLeft},
        {"Shift+]", Qt::Key_BraceRight}, {"Escape", Qt::Key_Escape},  {"Space", Qt::Key_Space},
        {"Left", Qt::Key_Left},          {"Right", Qt::Key_Right},    {"Up", Qt::Key_Up},
        {"Down", Qt::Key_Down}};
    const auto key = keys.find(text);
    if (key == keys.end())
        return fail("that is no key");
    QKeyEvent event(QEvent::KeyPress, key->second, Qt::NoModifier);
    QApplication::sendEvent(&m_window.imagePane().view(), &event);
    return true;
}

bool Script::slide(const QStringList& words)
{
    const NodeRecord* const record = m_window.document().graph().nodeByName(words.value(1));
    PreviewNode* const item = record ? m_window.scene().item(record->id) : nullptr;
    if (!item)
        return fail("there is no such node");
    for (const QGraphicsItem* child : item->childItems()) {
        const auto* const field =
            child->type() == Ondrel::FieldBase::Type ? static_cast<const Ondrel::FieldBase*>(child) : nullptr;
        if (!field || field->name() != words.value(2))
            continue;
        const QRectF box = field->sceneBoundingRect();
        drag(m_window.sceneView(), box.center(),
             QPointF(box.left() + box.width() * words.value(3).toDouble(), box.center().y()));
        return true;
    }
    return fail("there is no such field");
}

bool Script::expect(const QStringList& words)
{
    const Graph& graph = m_window.document().graph();
    QString found;
    if (words.value(1) == "nodes")
        found = QString::number(graph.nodes.size());
    else if (words.value(1) == "wires")
        found = QString::number(graph.connections.size());
    else if (words.value(1) == "status")
        found = m_window.statusBar()->currentMessage();
    else if (const NodeRecord* const record = graph.nodeByName(words.value(2)); words.value(1) == "value" && record) {
        const NodeType* const type = m_window.document().types().find(record->type);
        found = type ? completeValues(*record, *type).value(words.value(3)).toString() : QString();
    }
    return found == words.last() || fail(QString("it is \"%1\"").arg(found));
}

// Without a window manager no window is active, so Qt would not find a shortcut.
bool Script::pressKey(const QString& text)
{
    const QKeySequence sequence(text);
    if (sequence.count() != 1)
        return fail("that is no key");
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->isEnabled() && action->shortcuts().contains(sequence)) {
            action->trigger();
            return true;
        }
    }
    return fail("nothing answers to it");
}

bool Script::wait()
{
    QElapsedTimer clock;
    clock.start();
    do {
        if (clock.elapsed() > kPatience)
            return fail("it takes too long");
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    } while (!m_window.isSettled());
    QThreadPool::globalInstance()->waitForDone(); // the previews of nodes are rendered there
    QApplication::processEvents();
    return true;
}

// With the dialogs that are open, in its middle: without a window manager they have no place of their own. The canvas
// may take several frames until all nodes are sharp.
bool Script::grab(const QString& name)
{
    QPixmap picture;
    int frames = 0;
    do {
        QApplication::processEvents();
        picture = m_window.grab();
    } while (++frames < kMostFrames && (frames < 3 || m_window.scene().pictures().isUnfinished()));
    QPainter painter(&picture);
    for (QDialog* const dialog : m_window.findChildren<QDialog*>()) {
        if (dialog->isVisible())
            painter.drawPixmap(m_window.rect().center() - dialog->rect().center(), dialog->grab());
    }
    painter.end();
    return picture.save(m_folder.filePath(name + ".png"), "PNG") || fail("the picture could not be written");
}

bool Script::endDialog(bool accepts)
{
    for (QDialog* const dialog : m_window.findChildren<QDialog*>()) {
        if (!dialog->isVisible())
            continue;
        accepts ? dialog->accept() : dialog->reject();
        return true;
    }
    return fail("no dialog is open");
}

} // namespace Host
