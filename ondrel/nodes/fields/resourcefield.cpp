#include <ondrel/nodes/fields/resourcefield.h>
#include <ondrel/resources/resourceengine.h>

namespace Ondrel
{

ResourceField::ResourceField(QString name, QGraphicsItem* parent)
    : InputField(name, parent, nullptr, QString())
{
    ResourceEngine::Get().AddImageBuffer(Image(0, 0), m_resource);
}

ResourceId ResourceField::resource() const
{
    return m_resource;
}

float ResourceField::minWidth() const
{
    return 0.0f;
}

float ResourceField::minHeight() const
{
    return 0.0f;
}

void ResourceField::setResource(const ResourceId& newResourceId)
{
    m_resource = newResourceId;
}

} // namespace Ondrel
