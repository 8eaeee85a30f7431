#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/nodes/fields/iconpushbuttonfield.h>
#include <ondrel/widgets/iconpushbutton.h>

namespace Ondrel
{

IconPushButtonInputField::IconPushButtonInputField(QString name, QGraphicsItem* parent, const QString& iconName,
                                                   const QString& toolTip)
    : InputField(name, parent, nullptr, QString())
    , m_widget(new IconPushButton(iconName, nullptr))
{
    finishButton(toolTip);
}

IconPushButtonInputField::IconPushButtonInputField(QString name, QGraphicsItem* parent, const QString& iconName,
                                                   const QString& checkedIconName, bool checked, const QString& toolTip)
    : InputField(name, parent, nullptr, QString())
    , m_widget(new IconPushButton(iconName, nullptr))
{
    m_widget->setCheckable(true);
    m_widget->setChecked(checked);
    m_widget->setCheckableIcons(iconName, checkedIconName);
    finishButton(toolTip);
}

IconPushButtonInputField::~IconPushButtonInputField()
{
    if (!m_proxy)
        delete m_widget;
}

void IconPushButtonInputField::finishButton(const QString& toolTip)
{
    m_widget->setToolTip(toolTip);
    m_widget->setAccessibleName(toolTip); // it has no text
    m_widget->setBevel(IconPushButton::BevelDrawn);
    connect(m_widget, SIGNAL(clicked(bool)), this, SIGNAL(clicked(bool)));
}

void IconPushButtonInputField::setChecked(bool checked)
{
    m_widget->setChecked(checked);
}

bool IconPushButtonInputField::isChecked() const
{
    return m_widget->isChecked();
}

float IconPushButtonInputField::minWidth() const
{
    return 24.0f;
}

float IconPushButtonInputField::minHeight() const
{
    return 24.0f;
}

void IconPushButtonInputField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
}

void IconPushButtonInputField::sizeChanged(float width, float height, float)
{
    setOnlySize(*m_widget, width, height);
}

} // namespace Ondrel
