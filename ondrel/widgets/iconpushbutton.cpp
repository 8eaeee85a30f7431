#include <ondrel/core/platform.h>
#include <ondrel/core/xml.h>
#include <ondrel/widgets/iconpushbutton.h>

#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>

namespace Ondrel
{
namespace
{

struct IconPair {
    QSvgRenderer normal, disabled;

    void load(const QString& file, const QColor& color)
    {
        const QString path = QDir::isAbsolutePath(file) ? file : Platform::IconsDirectory() + file;
        LoadSvgWithReplace(normal, path, QStringLiteral("#000000"), color.name());
        LoadSvgWithReplace(disabled, path, QStringLiteral("#000000"), QStringLiteral("#4D4D4D"));
    }
    QSvgRenderer& in(bool enabled) { return enabled ? normal : disabled; }
};

enum class Look { Disabled, Pressed, Hovered, Plain };

struct Shades {
    QColor top, bottom;
};

Shades fillShades(Look look)
{
    switch (look) {
    case Look::Disabled:
        return {{65, 65, 65}, {56, 56, 56}};
    case Look::Pressed:
        return {{48, 47, 47}, {48, 47, 47}};
    case Look::Hovered:
        return {{64, 63, 63}, {54, 54, 54}};
    case Look::Plain:
        break;
    }
    return {{62, 61, 61}, {52, 51, 51}};
}

Shades edgeShades(Look look)
{
    switch (look) {
    case Look::Disabled:
        return {{87, 86, 86}, {78, 77, 77}};
    case Look::Pressed:
        return {{71, 70, 70}, {71, 70, 70}};
    case Look::Hovered:
        return {{85, 85, 85}, {77, 76, 76}};
    case Look::Plain:
        break;
    }
    return {{84, 83, 83}, {75, 74, 74}};
}

QLinearGradient downwards(const QRectF& rect, const Shades& shades)
{
    QLinearGradient gradient(0, rect.top(), 0, rect.height());
    gradient.setColorAt(0.0, shades.top);
    gradient.setColorAt(1.0, shades.bottom);
    return gradient;
}

QPen thinPen(const QBrush& brush)
{
    return QPen(brush, 0.5, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

} // namespace

struct IconPushButton::Icons {
    IconPair plain, checked, unchecked;
};

IconPushButton::IconPushButton(const QString& iconFile, QWidget* parent)
    : QPushButton(QIcon(), QString(), parent)
    , m_icons(std::make_unique<Icons>())
{
    setStyleSheet(QStringLiteral("QPushButton { background-color: rgba(0,0,0,0); width: 22px; height: 22px; }"));
    setAccessibleName(QFileInfo(iconFile).completeBaseName().replace(QLatin1Char('_'), QLatin1Char(' ')));
    m_icons->plain.load(iconFile, palette().color(QPalette::ButtonText));
}

IconPushButton::~IconPushButton() = default;

void IconPushButton::setCheckableIcons(const QString& checkedIcon, const QString& uncheckedIcon)
{
    const QColor color = palette().color(QPalette::ButtonText);
    m_icons->checked.load(checkedIcon, color);
    m_icons->unchecked.load(uncheckedIcon, color);
    setCheckable(true);
    update();
}

void IconPushButton::setBevel(Bevel bevel)
{
    m_bevel = bevel;
    update();
}

void IconPushButton::paintEvent(QPaintEvent* event)
{
    if (m_bevel == BevelStyle)
        QPushButton::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_bevel == BevelDrawn)
        paintBevel(painter);

    IconPair& pair = !isCheckable() ? m_icons->plain : isChecked() ? m_icons->checked : m_icons->unchecked;
    QSvgRenderer& icon = pair.in(isEnabled());
    if (!icon.isValid())
        return;
    const QSizeF size = icon.defaultSize();
    const QPointF at((width() - 7) * 0.5 + 4 - size.width() * 0.5, (height() - 7) * 0.5 + 4 - size.height() * 0.5);
    icon.render(&painter, QRectF(at, size));
}

void IconPushButton::paintBevel(QPainter& painter) const
{
    const QColor rim = isEnabled() ? QColor(31, 30, 30) : QColor(42, 42, 42);
    painter.setBrush(rim);
    painter.setPen(thinPen(rim));
    painter.drawRoundedRect(QRectF(rect()), 1.5, 1.5);

    const Look look = !isEnabled()                       ? Look::Disabled
                      : isDown()                         ? Look::Pressed
                      : testAttribute(Qt::WA_UnderMouse) ? Look::Hovered
                                                         : Look::Plain;
    const QRectF inset = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const QLinearGradient edge = downwards(inset, edgeShades(look));
    painter.setBrush(downwards(inset, fillShades(look)));
    painter.setPen(thinPen(edge));
    painter.drawRoundedRect(inset, 1.5, 1.5);
    QPen cosmetic{QBrush(edge), 0};
    cosmetic.setCosmetic(true);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(cosmetic);
    painter.drawRoundedRect(inset, 1.5, 1.5);
}

} // namespace Ondrel
