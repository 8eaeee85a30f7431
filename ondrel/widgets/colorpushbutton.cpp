#include <ondrel/core/image.h>
#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

namespace Ondrel
{
namespace
{

unsigned short sample(qreal share)
{
    return static_cast<unsigned short>(share * 65535);
}

// The view that shows the widget's scene; null outside of a scene.
QWidget* viewOf(QWidget* widget)
{
    const QGraphicsProxyWidget* const proxy = WidgetParentGraphicsProxyWidget(widget);
    if (!proxy || !proxy->scene() || proxy->scene()->views().isEmpty())
        return nullptr;
    return proxy->scene()->views().first();
}

QPainterPath rounded(const QRectF& rect, qreal radius)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

} // namespace

ColorPushButton::ColorPushButton(bool showAlpha, QWidget* parent)
    : QPushButton(QString(), parent)
    , m_showAlpha(showAlpha)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setMinimumHeight(22);
    setAccessibleName(tr("Color"));
    setAccessibleDescription(m_color.name());
    connect(this, SIGNAL(clicked()), this, SLOT(displayColorPicker()));
}

// The menu has no parent, and a picker that is being used by the eye dropper may stand in neither.
ColorPushButton::~ColorPushButton()
{
    if (m_menu)
        m_menu->disconnect(this);
    if (m_colorPicker)
        m_colorPicker->disconnect(this);
    delete m_colorPicker;
    delete m_menu;
}

Ondrel::Color ColorPushButton::color() const
{
    return m_color;
}

QColor ColorPushButton::qColor() const
{
    return ColorToQColor(m_color);
}

void ColorPushButton::setColor(const Ondrel::Color& color)
{
    m_color = color;
    setAccessibleDescription(m_color.name());
    if (m_colorPicker)
        m_colorPicker->setColor(color);
    update();
}

void ColorPushButton::setColor(const QColor& color)
{
    setColor(Color(sample(color.redF()), sample(color.greenF()), sample(color.blueF()), sample(color.alphaF())));
}

void ColorPushButton::makePicker()
{
    m_colorPicker = new ColorPickerWidget(m_menu, 0, 0, 0, 65535, m_showAlpha);
    m_colorPicker->setColor(m_color);
    m_colorPicker->setColorSpacePage(m_colorSpacePage);
    connect(m_colorPicker, SIGNAL(valueChanged(Ondrel::Color, QVariant)), this, SLOT(setColor(Ondrel::Color)));
    connect(m_colorPicker, SIGNAL(valueChanged(Ondrel::Color, QVariant)), this, SLOT(colorPickerColorChanged()));
}

// A menu has no size before it is shown.
void ColorPushButton::layOutMenu()
{
    if (!m_menu->layout())
        new QHBoxLayout(m_menu);
    m_menu->layout()->addWidget(m_colorPicker);
    m_menu->setAttribute(Qt::WA_DontShowOnScreen, true);
    m_menu->show();
    m_menu->hide();
    m_menu->setAttribute(Qt::WA_DontShowOnScreen, false);
}

void ColorPushButton::displayColorPicker()
{
    if (m_menu)
        m_menu->disconnect(this); // laying it out again must not close it for good
    else
        m_menu = new QMenu;
    if (!m_colorPicker)
        makePicker();
    QWidget* const view = viewOf(this);
    m_colorPicker->setGrabMouseAndKeyboardWidget(view ? view : this);
    layOutMenu();
    connect(m_menu, SIGNAL(aboutToHide()), this, SLOT(cleanUpMenuPopUpFrame()));
    connect(m_colorPicker, SIGNAL(eyeDropperStarted()), m_menu, SLOT(hide()), Qt::UniqueConnection);
    connect(m_colorPicker, SIGNAL(eyeDropperCompleted()), this, SLOT(cleanUpColorPickerWidget()), Qt::UniqueConnection);
    connect(m_colorPicker, SIGNAL(eyeDropperCompleted()), this, SLOT(displayColorPicker()), Qt::UniqueConnection);
    m_menu->popup(mapToGlobal(QPoint(0, height())));
}

void ColorPushButton::colorPickerColorChanged()
{
    Q_EMIT valueChanged(m_color);
    Q_EMIT valueChanged(qColor());
}

void ColorPushButton::cleanUpMenuPopUpFrame()
{
    if (m_colorPicker) {
        m_colorPicker->hide();
        if (m_colorPicker->isEyeDropperActive())
            m_colorPicker->setParent(this); // it has to live until a colour is picked
        else
            cleanUpColorPickerWidget();
    }
    if (m_menu)
        m_menu->deleteLater();
    m_menu = nullptr;
}

void ColorPushButton::cleanUpColorPickerWidget()
{
    if (!m_colorPicker)
        return;
    m_colorPicker->hide();
    m_colorSpacePage = m_colorPicker->colorSpacePage();
    m_colorPicker->deleteLater();
    m_colorPicker = nullptr;
}

void ColorPushButton::paintEvent(QPaintEvent*)
{
    const int w = width(), h = height();
    if (w < 2 || h < 6)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setClipPath(rounded(QRectF(1, 3, w - 3, h - 6), 3));
    QImage squares(w - 1, h - 4, QImage::Format_RGB32);
    Checkerboard(squares, 8, 8, QColor(129, 129, 129), QColor(208, 208, 208));
    painter.drawImage(0, 2, squares);

    const QRectF swatch(0.5, 2.5, w - 2, h - 5);
    QColor color = qColor();
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(swatch, 3, 3);
    QPainterPath upperLeft(QPointF(0, 2));
    upperLeft.lineTo(w, 2);
    upperLeft.lineTo(0, h - 3);
    upperLeft.closeSubpath();
    color.setAlphaF(1.0);
    painter.setClipPath(upperLeft);
    painter.setBrush(color);
    painter.drawRoundedRect(swatch, 4, 4);

    const QColor frame = hasFocus() ? palette().color(QPalette::Highlight) : QColor(50, 47, 47);
    const QRectF whole(rect());
    painter.setClipRect(whole);
    painter.setClipPath(rounded(whole, 4), Qt::IntersectClip);
    painter.setPen(QPen(frame, 2.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(whole, 4, 4);
}

} // namespace Ondrel
