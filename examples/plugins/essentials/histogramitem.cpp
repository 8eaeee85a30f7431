#include "histogramitem.h"

#include "values.h"

#include <ondrel/nodes/fields/histogramfield.h>

#include <QStringList>

namespace Essentials
{

using Ondrel::HistogramWidget;

HistogramItem::HistogramItem(QGraphicsItem* parent)
    : XmlNode(parent)
{
}

HistogramItem* HistogramItem::create(const QString& nodeFileText)
{
    auto* const item = Ondrel::CreateXmlNode<HistogramItem>(nodeFileText);
    if (!item)
        return nullptr;
    item->m_histogram =
        new Ondrel::HistogramField("histogram", HistogramWidget::All, HistogramWidget::Logarithmic, item);
    item->inputFields.push_back(item->m_histogram);
    item->fieldTypes.push_back("histogram"); // none that the base class knows: it has no value
    item->showChoices();
    connect(item, SIGNAL(updated(Node*)), item, SLOT(showChoices()));
    return item;
}

void HistogramItem::setInputImage(std::shared_ptr<const Ondrel::Image> image)
{
    m_histogram->setImage(std::move(image));
}

void HistogramItem::showChoices()
{
    QVariantMap values;
    for (const char* const name : {"channel", "scale"})
        values.insert(name, inputValue(inputIndexOfFieldByName(name)));
    m_histogram->setChannel(
        HistogramWidget::Channel(choice(values, "channel", {"All", "Red", "Green", "Blue", "Luminosity"})));
    m_histogram->setScaleMode(HistogramWidget::Scale(choice(values, "scale", {"Linear", "Logarithmic"})));
}

} // namespace Essentials
