#include <ondrel/nodes/fields/hiddenfield.h>

namespace Ondrel
{

HiddenField::HiddenField(QString name, QGraphicsItem* parent)
    : InputField(name, parent, nullptr, QString())
{
}

QVariant HiddenField::value() const
{
    return m_value;
}

float HiddenField::minWidth() const
{
    return 0.0f;
}

float HiddenField::minHeight() const
{
    return 0.0f;
}

void HiddenField::setValue(const QVariant& newValue)
{
    m_value = newValue;
}

} // namespace Ondrel
