#pragma once

#include "fields/fieldsupport.h"

#include <ondrel/nodes/xmlnode.h>

#include <string>

namespace OndrelTest
{

// A node from a file, with its members in the open and a log from its birth.
struct TestXml : Ondrel::XmlNode {
    explicit TestXml(QGraphicsItem* parent)
        : XmlNode(parent)
    {
        ++alive;
        log.listen(*this);
    }
    ~TestXml() override { --alive; }

    using Node::inputFields;
    using Node::outputFields;
    using PreviewNode::previewField;
    using XmlNode::fieldSets;
    using XmlNode::fieldTypes;

    void availableColorProfilesChanged() override
    {
        log.add("profiles");
        XmlNode::availableColorProfilesChanged();
    }

    // The input at an index as its own class; a test failure and null if it is another one.
    template <typename Field>
    Field* field(std::size_t index) const
    {
        auto* const found = index < inputFields.size() ? dynamic_cast<Field*>(inputFields[index]) : nullptr;
        EXPECT_NE(found, nullptr) << "input " << index;
        return found;
    }

    SignalLog log;

    static inline int alive = 0;
};

// What loading printed besides making the node.
struct Loaded {
    std::unique_ptr<TestXml> node;
    std::string errors;
};

inline Loaded load(const QString& xml)
{
    Loaded loaded;
    testing::internal::CaptureStderr();
    loaded.node.reset(Ondrel::CreateXmlNode<TestXml>(xml));
    loaded.errors = testing::internal::GetCapturedStderr();
    return loaded;
}

// A node that must load in silence.
inline std::unique_ptr<TestXml> loadNode(const QString& xml)
{
    Loaded loaded = load(xml);
    EXPECT_NE(loaded.node, nullptr) << qPrintable(xml);
    EXPECT_EQ(loaded.errors, "");
    if (loaded.node)
        loaded.node->log.take();
    return std::move(loaded.node);
}

// The same for the entries of `input`.
inline std::unique_ptr<TestXml> loadInputs(const QString& entries)
{
    return loadNode("<node><input>" + entries + "</input><output/></node>");
}

} // namespace OndrelTest
