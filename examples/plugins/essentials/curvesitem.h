#pragma once

#include <ondrel/nodes/xmlnode.h>

namespace Ondrel
{
class CurvesField;
}

namespace Essentials
{

// The scene item of a node whose last input is an editor for curves.
class CurvesItem : public Ondrel::XmlNode
{
    Q_OBJECT
public:
    explicit CurvesItem(QGraphicsItem* parent);

    static CurvesItem* create(const QString& nodeFileText); // null if the text is no node file

    QVariant inputValue(int index) override;
    void setInputValue(unsigned long index, QVariant value) override;
    void setInputImage(std::shared_ptr<const Ondrel::Image> image) override;

private:
    bool isCurves(unsigned long index) const;

    Ondrel::CurvesField* m_curves = nullptr; // an item of this node, as all fields
};

} // namespace Essentials
