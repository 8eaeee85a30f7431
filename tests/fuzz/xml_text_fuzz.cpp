// Text as attribute values: numbers, gradients, and the text of a node.

#include "checks.h"

#include <ondrel/core/xml.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    QDomDocument document;
    QDomElement element = Ondrel::TextElement(document, "field", text);
    element.setAttribute("value", text);
    OndrelFuzz::require(Ondrel::NodeTextValue(element) == text, "the text of an element is what was put in");
    Ondrel::AttributeAsInt(element, "value", 1);
    Ondrel::AttributeAsFloat(element, "value", 1.0f);
    const QVector<QPair<double, QColor>> stops = Ondrel::AttributeAsGradient(element, "value");
    OndrelFuzz::require(stops.size() != 1, "a gradient has no stop or at least two");
    if (!stops.isEmpty())
        OndrelFuzz::require(stops.first().first == 0.0 && stops.last().first == 1.0, "a gradient runs from 0 to 1");
    return 0;
}
