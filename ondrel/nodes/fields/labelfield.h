#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>

namespace Ondrel
{

// A row of text. It widens no node: a text too long is cut at the edge.
class ONDREL_EXPORT LabelField : public InputField
{
    Q_OBJECT
public:
    LabelField(const QString& name, QGraphicsItem* parent, const QString& displayName);
    float minWidth() const override;   // 0
    float labelWidth() const override; // 0
};

} // namespace Ondrel
