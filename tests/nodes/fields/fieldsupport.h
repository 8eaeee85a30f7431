#pragma once

#include "tests/nodes/nodesupport.h"

#include <QGraphicsProxyWidget>
#include <QPointer>
#include <QSignalSpy>
#include <QWidget>

#include <set>

namespace OndrelTest
{

// The proxy of a field's control; null before it has been in a scene.
inline QGraphicsProxyWidget* proxyOf(const Ondrel::FieldBase& field)
{
    QGraphicsProxyWidget* found = nullptr;
    for (QGraphicsItem* child : field.childItems())
        if (child->type() == QGraphicsProxyWidget::Type) {
            EXPECT_EQ(found, nullptr) << "a field has one proxy";
            found = static_cast<QGraphicsProxyWidget*>(child);
        }
    return found;
}

template <typename Widget>
Widget* widgetOf(const Ondrel::FieldBase& field)
{
    QGraphicsProxyWidget* const proxy = proxyOf(field);
    auto* widget = proxy ? qobject_cast<Widget*>(proxy->widget()) : nullptr;
    EXPECT_NE(widget, nullptr);
    return widget;
}

// Widgets without a parent and without a proxy that came up since the object was made.
class NewWidgets
{
public:
    NewWidgets()
        : m_before(topLevels())
    {
    }
    std::size_t count() const
    {
        std::size_t fresh = 0;
        for (QWidget* widget : topLevels())
            fresh += m_before.count(widget) == 0 ? 1U : 0U;
        return fresh;
    }

private:
    static std::set<QWidget*> topLevels()
    {
        const QWidgetList list = QApplication::topLevelWidgets();
        return {list.begin(), list.end()};
    }
    std::set<QWidget*> m_before;
};

// Makes fields, shows them and takes them away, with and without a scene: a field owns its widget until its proxy does.
template <typename Make>
void expectNoWidgetLeft(Make make)
{
    const NewWidgets widgets;
    Ondrel::InputField* field = make();
    EXPECT_GE(widgets.count(), 1U) << "the widget is made with the field";
    delete field;
    EXPECT_EQ(widgets.count(), 0U) << "a field that never was in a scene";
    {
        QGraphicsScene scene;
        scene.addItem(make());
    }
    EXPECT_EQ(widgets.count(), 0U) << "a field that dies with its scene";
    {
        QGraphicsScene scene;
        field = make();
        scene.addItem(field);
        delete field;
        EXPECT_EQ(widgets.count(), 0U) << "a field that dies before its scene";
    }
    QPointer<QWidget> widget;
    {
        QGraphicsScene scene;
        field = make();
        scene.addItem(field);
        widget = widgetOf<QWidget>(*field);
        scene.removeItem(field);
    }
    EXPECT_FALSE(widget.isNull());
    delete field;
    EXPECT_TRUE(widget.isNull()) << "a field that has left its scene";
    QApplication::processEvents();
}

// A directory without style sheets and icons in which the library looks for them as long as this lives.
class NoDataDirectory
{
public:
    NoDataDirectory();
    ~NoDataDirectory();
    NoDataDirectory(const NoDataDirectory&) = delete;
    NoDataDirectory& operator=(const NoDataDirectory&) = delete;

private:
    QString m_before;
    std::unique_ptr<class QTemporaryDir> m_directory;
};

// The text of a style sheet as it is deployed.
QString styleSheet(const QString& fileName);

} // namespace OndrelTest
