#pragma once

#include "sceneview.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace Host
{

// How a project is looked at: which nodes the views show, and which part of the canvas is seen. It is saved with the
// project and is no edit of it:
//
//   "view": {"primary": "3", "secondary": "0", "canvas": {"zoom": "0.5", "center": ["120", "-40.5"]}}
//
// Other members are kept. Other programs may have written what they like here: what is not understood is passed over.
class ProjectView
{
public:
    ProjectView(Scene& scene, SceneView& canvas);

    // Shows the whole canvas if the view says nothing of it. The result is a sentence if it says something that is not
    // understood, and empty if all is well.
    QString show(const nlohmann::ordered_json& view);

    // A place that was not understood stays as it is until the user looks elsewhere.
    void write(nlohmann::ordered_json& view) const;

private:
    void showNode(const nlohmann::ordered_json& view, const char* key, PreviewNode::Emblem emblem);

    Scene& m_scene;
    SceneView& m_canvas;
    std::optional<CanvasPlace> m_insteadOfUnread;
};

} // namespace Host
