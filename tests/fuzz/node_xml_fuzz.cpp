// Text as a node file: what comes of it shows, gives its values and takes them back.

#include "checks.h"

#include <ondrel/nodes/xmlnode.h>

#include <QApplication>
#include <QGraphicsScene>

#include <iostream>

namespace
{

void forgetResource(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<Ondrel::ResourceId>())
        ResourceEngine::Get().RemoveResource(value.value<Ondrel::ResourceId>());
}

void exercise(Ondrel::XmlNode& node)
{
    for (unsigned long i = 0; i <= node.inputFieldCount(); ++i) {
        const QVariant value = node.inputValue(static_cast<int>(i));
        node.setInputValue(i, value);
        OndrelFuzz::require(node.inputValue(static_cast<int>(i)).toString() == value.toString(),
                            "a node takes back the value that it gave");
        node.setInputValue(i, "1");
        node.setInputValue(i, QVariant());
        forgetResource(value);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    new QApplication(*argc, *argv); // for as long as the process lives
    std::cerr.rdbuf(nullptr);       // every refused text would be printed
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString xml = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    if (Ondrel::XmlNode* node = Ondrel::XmlNode::create(xml)) {
        exercise(*node);
        QGraphicsScene scene;
        scene.addItem(node);
        exercise(*node);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
