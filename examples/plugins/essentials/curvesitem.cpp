#include "curvesitem.h"

#include "curvesvalue.h"

#include <ondrel/nodes/fields/curvesfield.h>

namespace Essentials
{

CurvesItem::CurvesItem(QGraphicsItem* parent)
    : XmlNode(parent)
{
}

CurvesItem* CurvesItem::create(const QString& nodeFileText)
{
    auto* const item = Ondrel::CreateXmlNode<CurvesItem>(nodeFileText);
    if (!item)
        return nullptr;
    item->m_curves = new Ondrel::CurvesField("curves", item);
    item->inputFields.push_back(item->m_curves);
    item->fieldTypes.push_back("curves"); // none that the base class knows
    connect(item->m_curves, SIGNAL(valueChanged()), item, SLOT(inputValueChanged()));
    return item;
}

bool CurvesItem::isCurves(unsigned long index) const
{
    return index < inputFields.size() && inputFields[index] == m_curves;
}

QVariant CurvesItem::inputValue(int index)
{
    return index >= 0 && isCurves(static_cast<unsigned long>(index)) ? valueFromCurves(m_curves->curves())
                                                                     : XmlNode::inputValue(index);
}

void CurvesItem::setInputValue(unsigned long index, QVariant value)
{
    if (isCurves(index))
        m_curves->setCurves(curvesFromValue(value));
    XmlNode::setInputValue(index, value);
}

void CurvesItem::setInputImage(std::shared_ptr<const Ondrel::Image> image)
{
    m_curves->setImage(image ? *image : Ondrel::Image());
}

} // namespace Essentials
