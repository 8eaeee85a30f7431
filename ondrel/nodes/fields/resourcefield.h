#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>
#include <ondrel/resources/resourceid.h>

namespace Ondrel
{

// Carries the handle of an image in ResourceEngine through a node, without a row of its own.
class ONDREL_EXPORT ResourceField : public InputField
{
    Q_OBJECT
public:
    // Stores an image without pixels, so that the field has a valid handle from the start.
    ResourceField(QString name, QGraphicsItem* parent);
    ResourceId resource() const;
    float minWidth() const override;
    float minHeight() const override;

public Q_SLOTS:
    // The former resource stays in the store: undo steps may know it.
    void setResource(const ResourceId& newResourceId);

private:
    ResourceId m_resource;
};

} // namespace Ondrel
