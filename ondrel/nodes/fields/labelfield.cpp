#include <ondrel/nodes/fields/labelfield.h>

namespace Ondrel
{

LabelField::LabelField(const QString& name, QGraphicsItem* parent, const QString& displayName)
    : InputField(name, parent, nullptr, displayName)
{
}

float LabelField::minWidth() const
{
    return 0.0f;
}

float LabelField::labelWidth() const
{
    return 0.0f;
}

} // namespace Ondrel
