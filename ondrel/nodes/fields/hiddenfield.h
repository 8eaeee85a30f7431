#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/nodes/fieldbase.h>

#include <QVariant>

namespace Ondrel
{

// Carries any value through a node, without a row of its own.
class ONDREL_EXPORT HiddenField : public InputField
{
    Q_OBJECT
public:
    HiddenField(QString name, QGraphicsItem* parent);
    QVariant value() const; // invalid at first
    float minWidth() const override;
    float minHeight() const override;

public Q_SLOTS:
    void setValue(const QVariant& newValue);

private:
    QVariant m_value;
};

} // namespace Ondrel
