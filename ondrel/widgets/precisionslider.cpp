#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/slidercolors_p.h>
#include <ondrel/widgets/sliderscale_p.h>
#include <ondrel/widgets/stylesheet_p.h>
#include <ondrel/widgets/widgetfont_p.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QCursor>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Ondrel
{
namespace
{

QLinearGradient gradientOf(const QVector<QPair<double, QColor>>& stops)
{
    QLinearGradient gradient;
    gradient.setStops(stops);
    return gradient;
}

// The point is the decimal sign everywhere, as it is in texts of values.
QValidator* validatorFor(const SliderScale& scale, QObject* parent)
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    QValidator* validator = nullptr;
    if (scale.integer) {
        validator = new QIntValidator(static_cast<int>(scale.minimum), static_cast<int>(scale.maximum), parent);
    } else {
        auto* decimals = new QDoubleValidator(double(scale.minimum) / 1e9, double(scale.maximum) / 1e9, 3, parent);
        decimals->setNotation(QDoubleValidator::StandardNotation);
        validator = decimals;
    }
    validator->setLocale(locale);
    return validator;
}

} // namespace

PrecisionSlider::PrecisionSlider(const QString& name, const QString& minimum, const QString& maximum,
                                 const QString& value, NumberMode mode, DisplayStyle style, QWidget* parent)
    : QWidget(parent)
    , m_name(name)
    , m_numberMode(mode)
    , m_displayStyle(style)
    , m_scale(std::make_unique<SliderScale>())
{
    qRegisterMetaType<int64_t>("int64_t");
    installAccessibility();
    m_scale->integer = mode == Integer;
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(name);
    makeChildren();
    setValue(value);
    setRange(minimum, maximum);
    applyStyleSheet(*this, QStringLiteral("slider.css"));
}

PrecisionSlider::~PrecisionSlider() = default;

void PrecisionSlider::makeChildren()
{
    m_label = new QLabel(this);
    m_label->setFont(widgetFont());
    m_label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_label->setFocusPolicy(Qt::NoFocus);
    m_lineEdit = new QLineEdit(this);
    m_lineEdit->setFont(widgetFont());
    m_lineEdit->hide();
    m_lineEdit->setTextMargins(0, 0, 0, 0);
    auto* filter = new FocusEventFilter(m_lineEdit);
    m_lineEdit->installEventFilter(filter);

    const bool range = m_displayStyle == Range;
    m_label->setObjectName(range ? QStringLiteral("rangeCaption") : QStringLiteral("arrowsCaption"));
    m_label->setAlignment((range ? Qt::AlignTop : Qt::AlignVCenter) | Qt::AlignHCenter);
    if (range)
        m_lineEdit->setTextMargins(0, -3, 0, 0);
    m_layout = new QHBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    const Qt::Alignment alignment = range ? Qt::Alignment(Qt::AlignTop) : Qt::Alignment();
    m_layout->addWidget(m_label, 1, alignment);
    m_layout->addWidget(m_lineEdit, 1, alignment);

    // The label keeps this height too, so that minimumSizeHint() does not fall below it.
    const int labelHeight = m_label->sizeHint().height();
    m_label->setMinimumHeight(labelHeight);
    setMinimumHeight(labelHeight + 8);

    connect(m_lineEdit, SIGNAL(editingFinished()), this, SLOT(finishedEditingLineEdit()));
    connect(filter, SIGNAL(focusOut()), this, SLOT(focusOutLineEdit()));
}

void PrecisionSlider::setRange(const QString& minimum, const QString& maximum)
{
    m_scale->minimum = m_scale->parse(minimum);
    m_scale->maximum = m_scale->parse(maximum);
    if (m_scale->maximum < m_scale->minimum)
        std::swap(m_scale->minimum, m_scale->maximum);

    const QValidator* const old = m_lineEdit->validator();
    m_lineEdit->setValidator(validatorFor(*m_scale, m_lineEdit));
    delete old;

    if (m_value < m_scale->minimum)
        setValue(m_scale->minimum);
    else if (m_value > m_scale->maximum)
        setValue(m_scale->maximum);
    update();
}

void PrecisionSlider::setPostfix(const QString& postfix)
{
    m_postfix = postfix;
    showValue();
}

void PrecisionSlider::setGradient(const QLinearGradient& gradient)
{
    m_hasGradient = true;
    m_gradient = gradient;
    update();
}

void PrecisionSlider::setGradient(const QColor& start, const QColor& end)
{
    setGradient(gradientOf({{0.0, start}, {1.0, end}}));
}

void PrecisionSlider::setGradient(const QVector<QPair<double, QColor>>& stops)
{
    setGradient(gradientOf(stops));
}

void PrecisionSlider::clearGradient()
{
    if (!m_hasGradient)
        return;
    m_hasGradient = false;
    update();
}

QString PrecisionSlider::valueAsString() const
{
    return m_valueString;
}

int64_t PrecisionSlider::valueAsInt64() const
{
    return m_value;
}

double PrecisionSlider::valueAsDouble() const
{
    return double(m_value) / 1e9;
}

void PrecisionSlider::setValue(const QString& newValueString)
{
    if (newValueString == m_valueString)
        return;
    if (m_numberMode == Double) {
        const double parsed = newValueString.toDouble();
        m_value = m_scale->parse(newValueString);
        m_valueString = m_scale->text(m_value);
        Q_EMIT valueChanged(parsed);
    } else {
        m_valueString = newValueString.section(QLatin1Char('.'), 0, 0);
        m_value = m_scale->parse(m_valueString);
        Q_EMIT valueChanged(m_value);
    }
    showValue();
    Q_EMIT valueChanged(m_valueString);
    update();
}

void PrecisionSlider::setValue(int64_t value)
{
    if (value == m_value)
        return;
    m_value = value;
    m_valueString = m_scale->text(value);
    if (m_numberMode == Double)
        Q_EMIT valueChanged(double(value) / 1e9);
    else
        Q_EMIT valueChanged(m_value);
    Q_EMIT valueChanged(m_valueString);
    showValue();
    update();
}

void PrecisionSlider::showValue()
{
    m_label->setText(m_name + QLatin1String(": ") + m_valueString + m_postfix);
}

double PrecisionSlider::effectiveRange() const
{
    return m_scale->range();
}

double PrecisionSlider::valueToPercentage() const
{
    return m_scale->fractionOf(m_value);
}

int64_t PrecisionSlider::percentageToValue(double percentage) const
{
    return m_scale->valueAt(percentage);
}

QRectF PrecisionSlider::barRect() const
{
    const QRect contents = contentsRect();
    if (m_displayStyle == Arrows)
        return contents;
    return QRectF(contents.left() + 5, m_label->height() + 1, contents.width() - 10, 4);
}

bool PrecisionSlider::inGraphicsScene() const
{
    return WidgetParentGraphicsProxyWidget(const_cast<PrecisionSlider*>(this)) != nullptr;
}

void PrecisionSlider::startEditing()
{
    m_label->hide();
    m_lineEdit->show();
    if (!inGraphicsScene()) // focus proxies do not work inside a QGraphicsProxyWidget
        setFocusProxy(m_lineEdit);
    m_lineEdit->setText(m_valueString);
    m_lineEdit->selectAll();
    m_lineEdit->setFocus(Qt::OtherFocusReason);
}

void PrecisionSlider::focusOutLineEdit()
{
    m_lineEdit->clearFocus();
    m_lineEdit->hide();
    if (!inGraphicsScene())
        setFocusProxy(nullptr);
    m_label->show();
    if (testAttribute(Qt::WA_UnderMouse)) { // else there are no hover events until the mouse moves
        QCursor::setPos(QCursor::pos() + QPoint(1, 1));
        QCursor::setPos(QCursor::pos() - QPoint(1, 1));
    }
    clearFocus();
    finishedEditingLineEdit();
}

void PrecisionSlider::finishedEditingLineEdit()
{
    QString text = m_lineEdit->text();
    int position = 0;
    if (m_lineEdit->validator()->validate(text, position) != QValidator::Acceptable)
        return;
    setValue(text);
    m_lineEdit->selectAll();
}

void PrecisionSlider::storeLastPosition(const QPoint& position)
{
    m_lastMouseX = position.x();
    m_lastMouseY = position.y();
}

void PrecisionSlider::mousePressEvent(QMouseEvent* event)
{
    m_mouseState = MouseState::Pressed;
    storeLastPosition(event->localPos().toPoint());
}

void PrecisionSlider::mouseMoveEvent(QMouseEvent* event)
{
    m_mouseState = MouseState::Dragging;
    const QPoint position = event->localPos().toPoint();
    if (m_displayStyle == Range && !(event->modifiers() & Qt::ShiftModifier)) {
        const QRectF bar = barRect();
        const double x = std::max(bar.left(), std::min(double(position.x()), bar.left() + bar.width()));
        setValue(percentageToValue((x - bar.left()) / bar.width()));
        return;
    }
    setValue(m_scale->limited(wrappingSum(m_value, m_scale->dragStep(position.x() - m_lastMouseX))));
    storeLastPosition(position);
}

void PrecisionSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_mouseState == MouseState::Pressed && m_displayStyle == Arrows) {
        clickArrows(event->localPos().toPoint().x());
        return;
    }
    const bool clicked = m_mouseState == MouseState::Pressed;
    if (clicked)
        startEditing();
    m_mouseState = MouseState::Idle;
}

// A step leaves the state as it is until the next press or move.
void PrecisionSlider::clickArrows(int x)
{
    const int64_t step = m_scale->clickStep();
    if (x < 18) {
        setValue(m_scale->limited(wrappingDifference(m_value, step)));
    } else if (x >= contentsRect().right() - 17) {
        setValue(m_scale->limited(wrappingSum(m_value, step)));
    } else {
        startEditing();
        m_mouseState = MouseState::Idle;
    }
}

void PrecisionSlider::enterEvent(QEvent*)
{
    m_hovered = true;
    update();
}

void PrecisionSlider::leaveEvent(QEvent*)
{
    m_hovered = false;
    update();
}

void PrecisionSlider::focusInEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::MouseFocusReason)
        startEditing();
}

bool PrecisionSlider::focusNextPrevChild(bool)
{
    return false;
}

QSize PrecisionSlider::minimumSizeHint() const
{
    if (m_displayStyle == Range)
        return QSize(150, m_label->minimumSize().height() + 8);
    const QFontMetrics metrics = fontMetrics();
    const int widest =
        std::max(metrics.horizontalAdvance(m_scale->text(m_scale->maximum)) + metrics.horizontalAdvance(m_postfix),
                 metrics.horizontalAdvance(m_scale->text(m_scale->minimum)));
    return QSize(metrics.horizontalAdvance(m_name + QLatin1String(": ")) + widest + 36,
                 QWidget::minimumSizeHint().height());
}

void PrecisionSlider::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_displayStyle == Range)
        paintRange(painter);
    else
        paintArrows(painter);
}

void PrecisionSlider::paintRange(QPainter& painter) const
{
    const QRectF bar = barRect();
    const double share = valueToPercentage();
    const double fraction = std::isfinite(share) ? share : 0.0; // an empty range has no place for the marker
    if (m_hasGradient) {
        PrecisionSliderDrawRangeGroove(painter, bar, m_gradient);
    } else {
        PrecisionSliderDrawRangeGroove(painter, bar);
        PrecisionSliderDrawRangeBar(painter, bar, 0.0f, float(fraction), m_hovered);
    }
    PrecisionSliderDrawRangeBorder(painter, bar);

    const qreal x = qreal(float(double(float(bar.width() - 1)) * fraction + bar.left()));
    const qreal y = qreal(float(bar.top() - 4));
    const QPointF marker[] = {{x - 5, y}, {x, y + 10}, {x + 5, y}};
    painter.setPen(QPen(SliderColors::outline(), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(SliderColors::marker(m_hovered));
    painter.drawPolygon(marker, 3);
}

void PrecisionSlider::paintArrows(QPainter& painter) const
{
    const QRect contents = contentsRect();
    const QRectF box(QPointF(contents.left() + 1, contents.top() + 1), QPointF(contents.right(), contents.bottom()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(SliderColors::arrowsBackground());
    painter.drawRoundedRect(box, 4, 4);
    if (m_lineEdit->hasFocus())
        return;

    const int middle = (contents.top() + contents.bottom()) / 2;
    const int end = contents.right();
    const QPoint left[] = {{6, middle}, {12, middle - 5}, {12, middle + 5}};
    const QPoint right[] = {{end - 6, middle}, {end - 12, middle - 5}, {end - 12, middle + 5}};
    painter.setBrush(SliderColors::marker(m_hovered));
    painter.drawPolygon(left, 3);
    painter.drawPolygon(right, 3);

    painter.setPen(QPen(SliderColors::outline(), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box, 4, 4);
}

} // namespace Ondrel
