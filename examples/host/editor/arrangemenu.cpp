#include "arrangemenu.h"

#include "scene.h"

#include <QAction>

namespace Host
{

ArrangeMenu::ArrangeMenu(Scene& scene, QWidget* parent)
    : QMenu(tr("&Arrange nodes"), parent)
    , m_scene(scene)
{
    setObjectName("arrange");
    const auto align = [](Alignment alignment) {
        return [alignment](const std::vector<QRectF>& areas) { return aligned(areas, alignment); };
    };
    const auto distribute = [](Qt::Orientation orientation) {
        return [orientation](const std::vector<QRectF>& areas) { return distributed(areas, orientation); };
    };
    add(tr("Align &left edges"), "Shift+L", "arrange.alignLeft", align(Alignment::Left));
    add(tr("Align &right edges"), "Shift+R", "arrange.alignRight", align(Alignment::Right));
    add(tr("Align &top edges"), "Shift+T", "arrange.alignTop", align(Alignment::Top));
    add(tr("Align &bottom edges"), "Shift+B", "arrange.alignBottom", align(Alignment::Bottom));
    add(tr("Align &centres in a column"), "Shift+C", "arrange.alignColumn", align(Alignment::CentersAcross));
    add(tr("Align &middles in a row"), "Shift+M", "arrange.alignRow", align(Alignment::CentersDown));
    addSeparator();
    add(tr("Distribute &across"), "Shift+H", "arrange.distributeAcross", distribute(Qt::Horizontal));
    add(tr("Distribute &down"), "Shift+V", "arrange.distributeDown", distribute(Qt::Vertical));
}

void ArrangeMenu::add(const QString& text, const char* shortcut, const char* name, const Arrangement& arrangement)
{
    QAction* const action = addAction(text);
    action->setShortcut(QKeySequence(shortcut));
    action->setObjectName(name);
    connect(action, &QAction::triggered, this,
            [this, step = QString(text).remove('&'), arrangement] { arrange(step, arrangement); });
}

void ArrangeMenu::arrange(const QString& step, const Arrangement& arrangement)
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    std::vector<QRectF> areas;
    for (const NodeId id : ids)
        areas.push_back(m_scene.item(id)->mapRectToScene(m_scene.item(id)->rect()));
    const std::vector<QPointF> corners = arrangement(areas);
    std::map<NodeId, QPointF> positions;
    for (std::size_t i = 0; i < ids.size(); ++i)
        positions[ids[i]] = m_scene.item(ids[i])->pos() + (corners[i] - areas[i].topLeft());
    m_scene.document().beginStep(step);
    m_scene.document().moveNodes(positions);
    m_scene.document().endStep();
}

} // namespace Host
