#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <QList>
#include <QObject>

// The controls of the library in the widget box of Qt Designer.
class OndrelControls : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)
    Q_PLUGIN_METADATA(IID QDesignerCustomWidgetCollectionInterface_iid)
public:
    explicit OndrelControls(QObject* parent = nullptr);
    QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    QList<QDesignerCustomWidgetInterface*> m_widgets;
};
