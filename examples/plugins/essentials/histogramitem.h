#pragma once

#include <ondrel/nodes/xmlnode.h>

namespace Ondrel
{
class HistogramField;
}

namespace Essentials
{

// The scene item of a node that shows the histogram of the picture at its input, which setInputImage() tells.
class HistogramItem : public Ondrel::XmlNode
{
    Q_OBJECT
public:
    explicit HistogramItem(QGraphicsItem* parent);

    static HistogramItem* create(const QString& nodeFileText); // null if the text is no node file

    void setInputImage(std::shared_ptr<const Ondrel::Image> image) override;

public Q_SLOTS:
    void showChoices();

private:
    Ondrel::HistogramField* m_histogram = nullptr; // an item of this node, as all fields
};

} // namespace Essentials
