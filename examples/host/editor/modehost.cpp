#include "modehost.h"

#include "evaluation.h"
#include "imagepane.h"
#include "pictureitem.h"

#include "../../mode/canvasview.h"

#include <ondrel/work/memoryawareundocommand.h>

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

namespace Host
{
namespace
{

constexpr int kKeysTogether = 1000; // milliseconds

// Null if there is none, also where the plug-in throws.
Ondrel::ModeInterface* modeOf(const NodeType& type)
{
    try {
        return type.entry.behaviour->createMode();
    } catch (...) {
        return nullptr;
    }
}

} // namespace

ModeHost::ModeHost(Document& document, Scene& scene, ImagePane& pane, QMainWindow& window)
    : QObject(&window)
    , m_document(document)
    , m_scene(scene)
    , m_pane(pane)
    , m_window(window)
{
    connect(&document, &Document::valueChanged, this, &ModeHost::tellValue);
    connect(&document, &Document::nodeRemoved, this, &ModeHost::nodeGone);
    connect(&document, SIGNAL(reset()), this, SLOT(leave()));
    connect(&document, SIGNAL(changed()), this, SLOT(updateGeometry()));
    connect(&scene, SIGNAL(shownNodesChanged()), this, SLOT(updateGeometry()));
    connect(&pane, SIGNAL(placed()), this, SLOT(updateGeometry()));
}

ModeHost::~ModeHost()
{
    if (m_mode)
        m_pane.view().setMode(nullptr);
}

bool ModeHost::comesFrom(NodeId node, NodeId shown) const
{
    if (!m_document.graph().node(shown))
        return false;
    const std::vector<NodeId> needed = dependencies(m_document.graph(), shown);
    return std::find(needed.begin(), needed.end(), node) != needed.end();
}

bool ModeHost::enter(NodeId node)
{
    leave();
    const NodeRecord* const record = m_document.graph().node(node);
    const NodeType* const type = record ? m_document.types().find(record->type) : nullptr;
    m_mode.reset(type ? modeOf(*type) : nullptr);
    if (!m_mode)
        return false;
    m_node = node;
    m_mode->initialize(&m_pane.view(), m_pane.view().scene(), &m_pane.canvas());
    wire();
    addControls();
    if (!comesFrom(node, m_scene.primary()))
        m_scene.show(node, PreviewNode::EmblemPrimary);
    m_mode->show(node);
    tellAllValues();
    updateGeometry();
    m_pane.view().setMode(m_mode.get());
    m_pane.view().setFocus();
    Q_EMIT changed();
    return true;
}

void ModeHost::wire()
{
    Ondrel::ModeInterface* const mode = m_mode.get();
    connect(mode, SIGNAL(newUndoCommand(Ondrel::MemoryAwareUndoCommand*)), this,
            SLOT(takeUndoCommand(Ondrel::MemoryAwareUndoCommand*)));
    connect(mode, SIGNAL(inputValueChanged(size_t, QVariant, Rect)), this, SLOT(storeValue(size_t, QVariant, Rect)));
    connect(mode, SIGNAL(inputValueChangedNoUpdate(size_t, QVariant)), this, SLOT(keepValue(size_t, QVariant)));
    connect(mode, SIGNAL(requestCanvasUpdate()), this, SLOT(updateCanvas()));
    connect(mode, SIGNAL(requestCanvasTranslate(QPoint)), this, SLOT(translateCanvas(QPoint)));
    connect(mode, SIGNAL(requestCanvasZoomStep(int)), this, SLOT(stepZoom(int)));
    connect(mode, SIGNAL(requestCanvasZoomRect(QPoint, QPoint, int)), this, SLOT(zoomToRect(QPoint, QPoint, int)));
}

void ModeHost::addControls()
{
    auto* const bar = new QToolBar(m_mode->modeName(), &m_window);
    bar->setObjectName("modeBar");
    bar->setMovable(false);
    auto* const name = new QLabel(m_mode->modeName(), bar);
    name->setContentsMargins(6, 0, 10, 0);
    bar->addWidget(name);
    std::vector<QToolButton*> buttons;
    m_mode->createToolButtons(buttons);
    for (QToolButton* button : buttons) {
        button->setAutoExclusive(true);
        bar->addWidget(button);
        takeKeys(button->shortcut());
        connect(button, &QToolButton::toggled, this, [this, button](bool on) {
            if (!on || !m_mode)
                return;
            m_mode->currentToolAboutToChange();
            m_mode->currentToolChanged(button->objectName());
        });
    }
    if (!buttons.empty())
        buttons.front()->setChecked(true);
    bar->widgetForAction(bar->addAction(tr("Done"), this, SLOT(leave())))->setFocusPolicy(Qt::TabFocus);
    m_window.addToolBar(bar);
    m_controls.push_back(bar);
    std::vector<QDockWidget*> docks;
    m_mode->createDockWidgets(docks);
    for (QDockWidget* dock : docks) {
        m_window.addDockWidget(Qt::RightDockWidgetArea, dock);
        m_controls.push_back(dock);
    }
    if (QWidget* const status = m_mode->createStatusBarWidget()) {
        m_window.statusBar()->addPermanentWidget(status);
        m_controls.push_back(status);
    }
}

// Keys that the window and a button of the mode have would do neither.
void ModeHost::takeKeys(const QKeySequence& keys)
{
    for (QAction* const action : m_window.findChildren<QAction*>()) {
        if (keys.isEmpty() || !action->shortcuts().contains(keys) || action->shortcutContext() != Qt::WindowShortcut)
            continue;
        action->setShortcutContext(Qt::WidgetShortcut); // a menu's, which answers to its own keys while it is open
        m_silent.push_back(action);
    }
}

void ModeHost::leave()
{
    if (!m_mode)
        return;
    m_mode->hide(false);
    m_pane.view().setMode(nullptr);
    m_mode->disconnect(this);
    for (QWidget* widget : m_controls) {
        widget->hide();
        widget->deleteLater(); // a button of it may have been pressed
    }
    m_controls.clear();
    for (const QPointer<QAction>& action : std::exchange(m_silent, {})) {
        if (action)
            action->setShortcutContext(Qt::WindowShortcut);
    }
    m_mode.release()->deleteLater();
    m_node = 0;
    m_kept.clear();
    Q_EMIT changed();
    Q_EMIT left();
}

void ModeHost::nodeGone(NodeId node)
{
    if (node == m_node)
        leave();
}

Graph ModeHost::shownGraph() const
{
    Graph graph = m_document.graph();
    if (m_mode && m_mode->previewMode())
        graph.nodes[m_node].bypassed = true;
    return graph;
}

void ModeHost::updateGeometry()
{
    const NodeId shown = m_scene.primary();
    if (!m_mode || !m_document.graph().node(m_node) || shown == 0)
        return;
    const Graph graph = shownGraph();
    const QSize real = fullSize(graph, m_document.types(), {shown, QString(), 1});
    Ondrel::TransformSeries series;
    transformGraph(graph, m_document.types()).buildTransformSeries(m_node, shown, series);
    m_mode->canvasGeometryChanged((QSizeF(real) * m_pane.zoom()).toSize(), real, series);
    m_mode->canvasChanged(m_pane.picture().image);
    updateCanvas();
}

void ModeHost::tellAllValues()
{
    const QVariantMap values = completeValues(*m_document.graph().node(m_node),
                                              *m_document.types().find(m_document.graph().node(m_node)->type));
    for (auto value = values.begin(); value != values.end(); ++value)
        tellValue(m_node, value.key());
}

void ModeHost::tellValue(NodeId node, const QString& field)
{
    if (!m_mode || m_storing || node != m_node)
        return;
    const NodeRecord& record = *m_document.graph().node(node);
    const PreviewNode* const item = m_scene.item(node);
    const int index = item ? item->inputIndexOfFieldByName(field) : -1;
    if (index >= 0)
        m_mode->nodeInputChanged(static_cast<unsigned long>(index),
                                 completeValues(record, *m_document.types().find(record.type)).value(field));
}

void ModeHost::keepValue(size_t fieldIndex, QVariant value)
{
    if (const PreviewNode* const item = m_scene.item(m_node); item && fieldIndex < item->inputFieldCount())
        m_kept[item->inputNameOfFieldByIndex(fieldIndex)] = value;
}

void ModeHost::storeValue(size_t fieldIndex, QVariant value, Rect)
{
    keepValue(fieldIndex, value);
    m_storing = true;
    m_document.beginStep(m_mode->modeName());
    QString refusal;
    for (const auto& [field, kept] : std::exchange(m_kept, {})) {
        const QString reason = m_document.setValue(m_node, field, kept);
        refusal = reason.isEmpty() ? refusal : reason;
    }
    m_document.endStep(gestureOfStep());
    m_undoIndex = m_document.undoStack().index();
    m_storing = false;
    if (refusal.isEmpty())
        return;
    tellAllValues(); // what the mode has is not what is saved
    Q_EMIT m_scene.refused(refusal);
}

// Keys that follow each other soon are one step, as a drag of the mouse is; unless there was an undo in between. What
// is painted are strokes, each a step of its own.
int ModeHost::gestureOfStep()
{
    if (!m_pane.view().isInKeyPress() || m_mode->isPaintingMode()) {
        m_sinceKey.invalidate();
        return 0;
    }
    const bool goesOn =
        m_sinceKey.isValid() && m_sinceKey.elapsed() < kKeysTogether && m_document.undoStack().index() == m_undoIndex;
    m_sinceKey.start();
    if (!goesOn)
        m_keyStep = m_document.newGesture();
    return m_keyStep;
}

// The document has a step of its own for each value.
void ModeHost::takeUndoCommand(Ondrel::MemoryAwareUndoCommand* command)
{
    delete command;
}

void ModeHost::updateCanvas()
{
    m_pane.view().viewport()->update();
}

void ModeHost::translateCanvas(QPoint offset)
{
    CanvasView& view = m_pane.view();
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->value() - offset.x());
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() - offset.y());
}

void ModeHost::stepZoom(int direction)
{
    m_pane.setZoom(direction < 0 ? m_pane.zoom() / 1.25 : m_pane.zoom() * 1.25,
                   m_pane.view().viewport()->rect().center());
}

void ModeHost::zoomToRect(const QPoint& topLeft, const QPoint& bottomRight, int direction)
{
    const QRect area = QRect(topLeft, bottomRight).normalized();
    const QSize view = m_pane.view().viewport()->size();
    const double factor =
        std::min(double(view.width()) / std::max(1, area.width()), double(view.height()) / std::max(1, area.height()));
    const QPointF middle = m_pane.view().mapToScene(area.center());
    m_pane.setZoom(direction < 0 ? m_pane.zoom() / factor : m_pane.zoom() * factor, area.center());
    m_pane.view().centerOn(middle);
}

} // namespace Host
