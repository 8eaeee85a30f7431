#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/nodes/node.h>

#include <QVariant>

#include <memory>
#include <vector>

class NodeData; // the host's
class QAction;
class QGraphicsSceneContextMenuEvent;
class QMenu;
class QSvgRenderer;
class QTimer;

namespace Ondrel
{

class ComboBoxInputField;
class ImagePreviewField;

// A node with a preview of its result, an emblem that says which view of the application shows it, a busy animation, a
// context menu and the hooks by which the host tells it what happens around it. User-interface thread only.
class ONDREL_EXPORT PreviewNode : public Node
{
    Q_OBJECT
public:
    enum Emblem {
        EmblemNone = 0,
        EmblemPrimary = 1, // the primary preview
        EmblemSecondary = 2,
        EmblemPrimaryAndSecondary = 3
    };

    // Input 0 is the preview, named "preview"; with createOutput there is an output "image".
    PreviewNode(QGraphicsItem* parent, bool createOutput);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    // Called by the host when there is a new image at the node's input; does nothing here.
    virtual void setInputImage(std::shared_ptr<const Image> image);
    // The image of the node's result, for the preview; null for none.
    virtual void setPreviewImage(std::shared_ptr<const Image> image);
    // Starts and ends the animation in the header.
    virtual void setLoading(bool loading);
    // The thumbnail of one entry of the combo box that asked for it; nothing happens if there is no field of that name.
    // A field of that name must be a combo box with thumbnails.
    virtual void setRequestedThumbnail(const QString& fieldName, unsigned int index,
                                       const std::shared_ptr<const Image>& image);
    // Sets the emblem, or adds primary to secondary and the reverse if replace is false. EmblemNone and
    // EmblemPrimaryAndSecondary always replace. Raises no signal, nor does clearEmblem.
    virtual void setEmblem(Emblem emblem, bool replace);
    virtual void clearEmblem(Emblem emblem);
    virtual Emblem emblem() const;

    // Called by the host: a connection was made (after Anchor::setConnected), one was cut (likewise), the geometry of
    // an input changed, the registry of profiles changed. They do nothing here.
    virtual void anchorHasBeenConnected(const Anchor* anchor, const QString& name);
    virtual void anchorHasBeenDisconnected(const Anchor* anchor);
    virtual void inputGeometryChanged(NodeData* data);
    virtual void availableColorProfilesChanged();

protected:
    void contextMenuEvent(QGraphicsSceneContextMenuEvent* event) override;

public:
    // A derived node adds to the context menu or takes from it; an empty one is not shown. Nothing deletes
    // the menu.
    virtual void displayingContextMenu(QMenu* menu, QAction* primaryAction, QAction* secondaryAction);

Q_SIGNALS:
    // The host is to render the node with each value of the field, and to answer with setRequestedThumbnail.
    void thumbnailsRequested(PreviewNode* node, const QString& fieldName, const std::vector<QVariant>& fieldValues);
    // The user chose another emblem; raised before the repaint.
    void emblemChanged(PreviewNode* node, PreviewNode::Emblem newEmblem);

public Q_SLOTS:
    void toggleEmblemPrimary();
    void toggleEmblemSecondary();
    void thumbnailsRequested(ComboBoxInputField* inputField);
    void updateHeader();

private:
    void toggleEmblem(Emblem part);
    void paintEmblem(QPainter& painter) const;
    void paintLoading(QPainter& painter) const;

    bool m_loading = false;
    QTimer* m_loadingTimer;
    Emblem m_emblem = EmblemNone;

protected:
    ImagePreviewField* previewField;
};

} // namespace Ondrel
