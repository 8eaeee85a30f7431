#include "projectview.h"

#include "values.h"

#include <QCoreApplication>

#include <cmath>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

Json textOf(double number)
{
    return valueToJson(number)["double"];
}

bool readNumber(const Json& json, double& number)
{
    QVariant value;
    if (!valueFromJson(Json{{"double", json}}, value) || !std::isfinite(value.toDouble()))
        return false;
    number = value.toDouble();
    return true;
}

std::optional<CanvasPlace> readPlace(const Json& json)
{
    if (!json.is_object())
        return std::nullopt;
    const auto zoom = json.find("zoom"), center = json.find("center");
    CanvasPlace place;
    if (zoom == json.end() || !readNumber(*zoom, place.zoom) || center == json.end() || !center->is_array() ||
        center->size() != 2 || !readNumber((*center)[0], place.center.rx()) ||
        !readNumber((*center)[1], place.center.ry()))
        return std::nullopt;
    return place;
}

} // namespace

ProjectView::ProjectView(Scene& scene, SceneView& canvas)
    : m_scene(scene)
    , m_canvas(canvas)
{
}

QString ProjectView::show(const Json& view)
{
    showNode(view, "primary", PreviewNode::EmblemPrimary);
    showNode(view, "secondary", PreviewNode::EmblemSecondary);
    m_insteadOfUnread.reset();
    const auto canvas = view.find("canvas");
    const std::optional<CanvasPlace> place = canvas == view.end() ? std::nullopt : readPlace(*canvas);
    if (place) {
        m_canvas.setPlace(*place);
        return QString();
    }
    m_canvas.fitAllNodes();
    if (canvas == view.end())
        return QString();
    m_insteadOfUnread = m_canvas.place();
    return QCoreApplication::translate("Host::ProjectView",
                                       "What the project says about the part of the canvas to show "
                                       "is not understood: all nodes are shown.");
}

void ProjectView::showNode(const Json& view, const char* key, PreviewNode::Emblem emblem)
{
    const auto shown = view.find(key);
    if (shown != view.end() && shown->is_string())
        m_scene.show(QString::fromStdString(shown->get<std::string>()).toULongLong(), emblem);
}

void ProjectView::write(Json& view) const
{
    view["primary"] = std::to_string(m_scene.primary());
    view["secondary"] = std::to_string(m_scene.secondary());
    const CanvasPlace place = m_canvas.place();
    if (m_insteadOfUnread && *m_insteadOfUnread == place)
        return;
    Json& canvas = view["canvas"];
    if (!canvas.is_object())
        canvas = Json::object();
    canvas["zoom"] = textOf(place.zoom);
    canvas["center"] = {textOf(place.center.x()), textOf(place.center.y())};
}

} // namespace Host
