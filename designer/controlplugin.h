#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <QIcon>
#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <utility>

// One entry of the widget box. Designer calls makers with its forms as parents.
class ControlPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    using Maker = std::function<QWidget*(QWidget*)>;

    ControlPlugin(const QString& className, const QString& header, const QString& summary, Maker maker, QObject* parent)
        : QObject(parent)
        , m_className(className)
        , m_header(header)
        , m_summary(summary)
        , m_maker(std::move(maker))
    {
    }
    QString name() const override { return QStringLiteral("Ondrel::") + m_className; }
    QString group() const override { return QStringLiteral("Ondrel"); }
    QString toolTip() const override { return m_summary; }
    QString whatsThis() const override { return m_summary; }
    QString includeFile() const override { return QStringLiteral("ondrel/widgets/") + m_header; }
    QIcon icon() const override { return QIcon(); }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override { return m_maker(parent); }
    QString domXml() const override
    {
        QString object = m_className;
        object[0] = object[0].toLower();
        return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\"/></ui>").arg(name(), object);
    }

private:
    QString m_className, m_header, m_summary;
    Maker m_maker;
};
