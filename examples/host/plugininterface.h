#pragma once

// What a plug-in and the host agree on. A plug-in is a shared object with a class derived from QObject and
// Host::NodePlugin that is exported by Q_PLUGIN_METADATA(IID OndrelNodePlugin_iid), and a folder "nodes" with a node
// file for each node. It includes this file and installed headers of the library, nothing else.

#include <ondrel/core/image.h>
#include <ondrel/core/runstatus.h>
#include <ondrel/nodes/transformmap.h>

#include <QHash>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <QtPlugin>

#include <memory>
#include <vector>

namespace Ondrel
{
class ModeInterface;
class Node;
} // namespace Ondrel

namespace Host
{

// A picture on a wire. Previews are computed small: every picture of one evaluation has the same scale.
struct Picture {
    std::shared_ptr<const Ondrel::Image> image; // null: there is none
    QSize fullSize;                             // what the image's size would be at scale 1
};

// One evaluation of one node. Lengths among the values are in pixels of full size; multiply them by the scale.
struct Request {
    QHash<QString, Picture> inputs; // those that are connected and have a picture, by field
    QVariantMap values;             // of all inputs that have one, by field; defaults where the user set none
    double scale = 1;               // of the pictures, above 0 and at most 1
    Ondrel::RunStatus status;       // cancelled: come back soon, with any result
};

struct Result {
    QHash<QString, Picture> outputs; // by field
    QString error;                   // a sentence for the user if the node could not do its work; the outputs count
};

// An input of a node, as its file describes it.
struct InputInfo {
    QString name;
    QString label;
    QString kind;     // the type in the node file: "slider", "combobox" and so on; empty for one that is connected
    QString dataType; // of what may be connected, such as "image"; empty if nothing may
    QVariant initial; // of the type that Node::inputValue gives; invalid if the input has no value
    double minimum = 0, maximum = 0; // of sliders
    QStringList choices;             // of combo boxes, without separators
};

struct OutputInfo {
    QString name;
    QString label;
    QString dataType;
};

// What a node does. Constant after construction: all but createItem() and createMode() are called from any thread,
// several at once.
class NodeBehaviour
{
public:
    virtual ~NodeBehaviour() = default;

    virtual Result evaluate(const Request& request) const = 0;

    // The size of each output's picture at full size, by field, for inputs of the given sizes; without computing
    // anything: of resources, ResourceEngine::CopyImageInfo tells. An output without a picture is left out. By default
    // every image output is as large as the input "image".
    virtual QHash<QString, QSize> outputSizes(const QVariantMap& values, const QHash<QString, QSize>& inputSizes) const
    {
        Q_UNUSED(values)
        const auto image = inputSizes.constFind("image");
        return image == inputSizes.constEnd() ? QHash<QString, QSize>() : QHash<QString, QSize>{{"image", *image}};
    }

    // How points of the inputs map to points of the outputs at full size. By default the identity from every input to
    // every output, each as large as outputSizes() says.
    virtual std::vector<Ondrel::TransformMap> transformMaps(const QVariantMap& values,
                                                            const QHash<QString, QSize>& inputSizes) const
    {
        std::vector<Ondrel::TransformMap> maps;
        const QHash<QString, QSize> outputs = outputSizes(values, inputSizes);
        for (auto input = inputSizes.begin(); input != inputSizes.end(); ++input) {
            for (auto output = outputs.begin(); output != outputs.end(); ++output) {
                Ondrel::TransformMap map;
                map.inputField = input.key();
                map.outputField = output.key();
                map.rect = Ondrel::RectT<int>(QPoint(0, 0), output.value());
                maps.push_back(map);
            }
        }
        return maps;
    }

    // The scene item, which the caller owns; null for the usual one, an Ondrel::XmlNode of the node file.
    // User-interface thread only.
    virtual Ondrel::Node* createItem(const QString& nodeFileText) const
    {
        Q_UNUSED(nodeFileText)
        return nullptr;
    }

    // A mode for editing this node, which the caller owns; null if there is none. User-interface thread only.
    //
    // Fields are numbered as in the node's scene item. The host tells the mode all values by nodeInputChanged() when it
    // is shown, and each that changes otherwise. Values that the mode sets by inputValueChangedNoUpdate() are one step
    // of undo with the inputValueChanged() that follows; the host's steps hold the values, so it drops the commands of
    // newUndoCommand(). While previewMode() is true, pictures are computed as if the node were bypassed.
    virtual Ondrel::ModeInterface* createMode() const { return nullptr; }
};

// One kind of node.
struct NodeEntry {
    QString nodeName; // that of its file: "Gaussian Blur" for nodes/gaussianblur.xml
    std::shared_ptr<const NodeBehaviour> behaviour;

    // Inputs with a value that the file cannot describe, since their fields are made by createItem(); after those of
    // the file.
    std::vector<InputInfo> moreInputs;

    // The data types of plain inputs and of outputs, by field, where they are not "image".
    QHash<QString, QString> dataTypes;

    // For a node with as many inputs as it has connections (Ondrel::VariableInputNode): their prefix, else empty.
    // Inputs are then named by the prefix and an id, and the value named prefix + "_order" lists the ids, joined by
    // commas.
    QString variablePrefix;
    InputInfo variableInput;                 // what each of them takes
    std::vector<InputInfo> variableChildren; // the fields beside each, named by this name and the same id
};

class NodePlugin
{
public:
    virtual ~NodePlugin() = default;
    virtual std::vector<NodeEntry> nodes() const = 0;
};

} // namespace Host

#define OndrelNodePlugin_iid "org.ondrel.NodePlugin/1"
Q_DECLARE_INTERFACE(Host::NodePlugin, OndrelNodePlugin_iid)
