// The plug-in as Qt Designer loads it.

#include <gtest/gtest.h>

#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

namespace
{

TEST(DesignerPlugin, OffersEveryControlUnderItsClassName)
{
    QPluginLoader loader(QStringLiteral(ONDREL_DESIGNER_PLUGIN));
    auto* const collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    ASSERT_NE(collection, nullptr) << qPrintable(loader.errorString());
    EXPECT_EQ(collection->customWidgets().size(), 15);
    for (QDesignerCustomWidgetInterface* entry : collection->customWidgets()) {
        QWidget form;
        QWidget* const made = entry->createWidget(&form);
        ASSERT_NE(made, nullptr);
        EXPECT_TRUE(made->inherits(entry->name().toLatin1())) << qPrintable(entry->name());
        EXPECT_EQ(made->parentWidget(), &form);
        EXPECT_TRUE(entry->domXml().contains(entry->name()));
    }
}

} // namespace
