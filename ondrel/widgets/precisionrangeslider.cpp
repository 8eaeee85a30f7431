#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/focuseventfilter.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/sliderscale_p.h>
#include <ondrel/widgets/widgetfont_p.h>

#include <QCursor>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace Ondrel
{
namespace
{

QLabel* makeLabel(QSizePolicy::Policy horizontal, Qt::Alignment alignment, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setFont(widgetFont());
    label->setFocusPolicy(Qt::NoFocus);
    label->setSizePolicy(horizontal, QSizePolicy::Minimum);
    label->setAlignment(alignment);
    return label;
}

bool accepts(const QLineEdit& edit)
{
    QString text = edit.text();
    int position = 0;
    return edit.validator()->validate(text, position) == QValidator::Acceptable;
}

} // namespace

PrecisionRangeSlider::PrecisionRangeSlider(const QString& name, const QString& minimum, const QString& maximum,
                                           const QString& left, const QString& right, QWidget* parent)
    : QWidget(parent)
    , m_minimum(minimum.toLongLong())
    , m_maximum(maximum.toLongLong())
{
    qRegisterMetaType<RangeValue>();
    qRegisterMetaType<RangeValue>("RangeValue"); // as moc writes it in the signal
    installAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(name);
    if (m_maximum < m_minimum)
        std::swap(m_minimum, m_maximum);

    const QFontMetrics metrics(widgetFont());
    const int width = std::max(metrics.horizontalAdvance(maximum), metrics.horizontalAdvance(minimum)) + 10;
    makeLabels(name);
    makeFields();
    for (QWidget* widget : std::initializer_list<QWidget*>{m_leftLabel, m_rightLabel, m_leftEdit, m_rightEdit}) {
        widget->setMinimumWidth(width);
        widget->setMaximumWidth(width);
    }

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_leftLabel, 0, Qt::AlignTop);
    layout->addWidget(m_leftEdit, 0, Qt::AlignTop);
    layout->addWidget(m_nameLabel, 1, Qt::AlignTop);
    layout->addWidget(m_rightLabel, 0, Qt::AlignTop);
    layout->addWidget(m_rightEdit, 0, Qt::AlignTop);
    setValue(left, right);
}

void PrecisionRangeSlider::makeLabels(const QString& name)
{
    m_leftLabel = makeLabel(QSizePolicy::Minimum, Qt::AlignTop | Qt::AlignLeft, this);
    m_nameLabel = makeLabel(QSizePolicy::Expanding, Qt::AlignTop | Qt::AlignHCenter, this);
    m_nameLabel->setText(name);
    m_rightLabel = makeLabel(QSizePolicy::Minimum, Qt::AlignTop | Qt::AlignRight, this);
}

void PrecisionRangeSlider::makeFields()
{
    m_leftEdit = makeField(m_leftValidator, SLOT(finishedEditingLeft()), SLOT(focusOutLeft()));
    m_rightEdit = makeField(m_rightValidator, SLOT(finishedEditingRight()), SLOT(focusOutRight()));
}

QLineEdit* PrecisionRangeSlider::makeField(QIntValidator*& validator, const char* finished, const char* focusOut)
{
    auto* edit = new QLineEdit(this);
    edit->setFont(widgetFont());
    edit->hide();
    edit->setTextMargins(0, -5, 0, 0);
    validator = new QIntValidator(static_cast<int>(m_minimum), static_cast<int>(m_maximum), edit);
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    validator->setLocale(locale);
    edit->setValidator(validator);
    auto* filter = new FocusEventFilter(edit);
    edit->installEventFilter(filter);
    connect(edit, SIGNAL(editingFinished()), this, finished);
    connect(filter, SIGNAL(focusOut()), this, focusOut);
    return edit;
}

PrecisionRangeSlider::RangeValue PrecisionRangeSlider::value() const
{
    return m_rangeValue;
}

void PrecisionRangeSlider::setGrooveGradient(const QVector<QPair<double, QColor>>& stops)
{
    m_hasGrooveGradient = true;
    m_grooveGradient.setStops(stops);
    update();
}

void PrecisionRangeSlider::clearGrooveGradient()
{
    m_hasGrooveGradient = false;
    update();
}

void PrecisionRangeSlider::setBarGradient(const QVector<QPair<double, QColor>>& stops)
{
    m_hasBarGradient = true;
    m_barGradient.setStops(stops);
    update();
}

void PrecisionRangeSlider::clearBarGradient()
{
    m_hasBarGradient = false;
    update();
}

void PrecisionRangeSlider::setValue(const QString& newLeftValueString, const QString& newRightValueString)
{
    if (newLeftValueString == m_rangeValue.left && newRightValueString == m_rangeValue.right)
        return;
    std::int64_t left = std::clamp<std::int64_t>(newLeftValueString.toLongLong(), m_minimum, m_maximum);
    std::int64_t right = std::clamp<std::int64_t>(newRightValueString.toLongLong(), m_minimum, m_maximum);
    if (left > right)
        std::swap(left, right);
    const RangeValue texts = {QString::number(left), QString::number(right)};
    if (texts.left == m_rangeValue.left && texts.right == m_rangeValue.right)
        return;

    m_rangeValue = texts;
    m_leftValue = left;
    m_rightValue = right;
    m_leftValidator->setRange(static_cast<int>(m_minimum), static_cast<int>(right));
    m_rightValidator->setRange(static_cast<int>(left), static_cast<int>(m_maximum));
    m_leftLabel->setText(texts.left);
    m_rightLabel->setText(texts.right);
    Q_EMIT valueChanged(m_rangeValue);
    update();
}

void PrecisionRangeSlider::setValue(const RangeValue& newRangeValue)
{
    setValue(newRangeValue.left, newRangeValue.right);
}

double PrecisionRangeSlider::percentageToValue(double percentage) const
{
    return std::clamp(percentage, 0.0, 1.0) * double(wrappingDifference(m_maximum, m_minimum)) + double(m_minimum);
}

QRectF PrecisionRangeSlider::barRect() const
{
    const QRect contents = contentsRect();
    return QRectF(contents.left() + 5, m_nameLabel->height() + 1, contents.width() - 10, 4);
}

float PrecisionRangeSlider::arrowCenter(std::int64_t value) const
{
    const QRectF bar = barRect();
    const float share = float(value) / float(wrappingDifference(m_maximum, m_minimum));
    return float(double(share) * (bar.width() - 5) + bar.left() + 2.5);
}

float PrecisionRangeSlider::leftArrowHorizontalCenter() const
{
    return arrowCenter(m_leftValue);
}

float PrecisionRangeSlider::rightArrowHorizontalCenter() const
{
    return arrowCenter(m_rightValue);
}

void PrecisionRangeSlider::setLeftArrowValue(double value)
{
    const bool beyond = value > double(m_rightValue);
    setValue(beyond ? m_rangeValue.right : QString::number(truncatedToInt64(value)), m_rangeValue.right);
}

void PrecisionRangeSlider::setRightArrowValue(double value)
{
    const bool beyond = double(m_leftValue) > value;
    setValue(m_rangeValue.left, beyond ? m_rangeValue.left : QString::number(truncatedToInt64(value)));
}

void PrecisionRangeSlider::setBothArrowsValue(double value)
{
    const std::int64_t width = wrappingDifference(m_rightValue, m_leftValue);
    const std::int64_t half = width / 2;
    const std::int64_t rest = width - half;
    const std::int64_t centre =
        wrappingSum(std::max(wrappingDifference(truncatedToInt64(value), half), m_minimum), half);
    const std::int64_t right = std::min(m_maximum, wrappingSum(centre, rest));
    const std::int64_t left = wrappingDifference(wrappingDifference(right, rest), half);
    setValue(QString::number(left), QString::number(right));
}

void PrecisionRangeSlider::mousePressEvent(QMouseEvent* event)
{
    const QPoint position = event->localPos().toPoint();
    m_mouseState = MouseState::Pressed;
    m_lastMouseX = position.x();
    m_lastMouseY = position.y();
}

PrecisionRangeSlider::DragTarget PrecisionRangeSlider::targetAt(const QMouseEvent& event, int x) const
{
    if (event.modifiers() & Qt::MetaModifier)
        return DragTarget::Both;
    const float left = leftArrowHorizontalCenter(), right = rightArrowHorizontalCenter();
    const float toLeft = std::abs(float(x) - left), toRight = std::abs(float(x) - right);
    if (toLeft != toRight)
        return toLeft < toRight ? DragTarget::Left : DragTarget::Right;
    return float(x) < left ? DragTarget::Left : DragTarget::Right;
}

double PrecisionRangeSlider::relativeValue(int delta) const
{
    std::int64_t value = m_leftValue / 2 + m_rightValue / 2;
    if (m_dragTarget != DragTarget::Both)
        value = m_dragTarget == DragTarget::Left ? m_leftValue : m_rightValue;
    return double(std::clamp(wrappingSum(value, delta), m_minimum, m_maximum));
}

void PrecisionRangeSlider::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->localPos().toPoint();
    if (m_mouseState == MouseState::Pressed) {
        m_dragTarget = targetAt(*event, position.x());
        m_mouseState = MouseState::Dragging;
    }
    double value = 0;
    if (event->modifiers() & Qt::ShiftModifier) {
        value = relativeValue(position.x() - m_lastMouseX);
        m_lastMouseX = position.x();
        m_lastMouseY = position.y();
    } else {
        const QRectF bar = barRect();
        const double x = std::max(bar.left(), std::min(double(position.x()), bar.left() + bar.width()));
        value = percentageToValue((x - bar.left()) / bar.width());
    }
    switch (m_dragTarget) {
    case DragTarget::Left:
        setLeftArrowValue(value);
        break;
    case DragTarget::Right:
        setRightArrowValue(value);
        break;
    case DragTarget::Both:
        setBothArrowsValue(value);
        break;
    }
}

void PrecisionRangeSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_mouseState == MouseState::Pressed) {
        const QRect contents = contentsRect();
        const int middle = (contents.left() + contents.right()) / 2;
        if (middle < event->localPos().toPoint().x())
            startEditingRight();
        else
            startEditingLeft();
    }
    m_mouseState = MouseState::Idle;
}

void PrecisionRangeSlider::startEditing(QLabel* label, QLineEdit* edit, const QString& text)
{
    label->hide();
    edit->show();
    edit->setText(text);
    edit->selectAll();
    edit->setFocus(Qt::OtherFocusReason);
    m_currentEdit = edit;
}

void PrecisionRangeSlider::startEditingLeft()
{
    focusOutRight();
    startEditing(m_leftLabel, m_leftEdit, m_rangeValue.left);
}

void PrecisionRangeSlider::startEditingRight()
{
    focusOutLeft();
    startEditing(m_rightLabel, m_rightEdit, m_rangeValue.right);
}

// False if the field is not open.
bool PrecisionRangeSlider::leaveField(QLabel* label, QLineEdit* edit)
{
    if (edit->isHidden())
        return false;
    // Qt asks for the next place of the focus when the field that has it is hidden.
    m_hidingField = true;
    edit->hide();
    m_hidingField = false;
    label->show();
    if (testAttribute(Qt::WA_UnderMouse)) { // else there are no hover events until the mouse moves
        QCursor::setPos(QCursor::pos() + QPoint(1, 1));
        QCursor::setPos(QCursor::pos() - QPoint(1, 1));
    }
    return true;
}

void PrecisionRangeSlider::focusOutLeft()
{
    if (leaveField(m_leftLabel, m_leftEdit))
        finishedEditingLeft();
}

void PrecisionRangeSlider::focusOutRight()
{
    if (leaveField(m_rightLabel, m_rightEdit))
        finishedEditingRight();
}

void PrecisionRangeSlider::finishedEditingLeft()
{
    if (!accepts(*m_leftEdit))
        return;
    setValue(m_leftEdit->text(), m_rangeValue.right);
    m_leftEdit->selectAll();
}

void PrecisionRangeSlider::finishedEditingRight()
{
    if (!accepts(*m_rightEdit))
        return;
    setValue(m_rangeValue.left, m_rightEdit->text());
    m_rightEdit->selectAll();
}

void PrecisionRangeSlider::focusArrow(int arrow)
{
    setFocus();
    m_keyboardArrow = arrow; // after the focus, whose loss by a field clears it
    update();
}

bool PrecisionRangeSlider::focusForward()
{
    if (m_currentEdit == m_leftEdit) {
        startEditingRight();
        return true;
    }
    if (m_currentEdit == m_rightEdit) {
        focusOutRight();
        m_currentEdit = nullptr;
        focusArrow(0);
        return true;
    }
    if (m_keyboardArrow == 0) {
        focusArrow(1);
        return true;
    }
    if (m_keyboardArrow == 1)
        return false;
    startEditingLeft();
    return true;
}

bool PrecisionRangeSlider::focusBackward()
{
    if (m_currentEdit == m_rightEdit) {
        startEditingLeft();
        return true;
    }
    if (m_currentEdit == m_leftEdit) {
        focusOutLeft();
        // The field stays the current one: the key comes once more, from the field's parent, and is to get out too.
        m_leftEdit->clearFocus();
        clearFocus();
        return false;
    }
    if (m_keyboardArrow == 0) {
        m_keyboardArrow = -1;
        startEditingRight();
        return true;
    }
    focusArrow(m_keyboardArrow == 1 ? 0 : 1);
    return true;
}

bool PrecisionRangeSlider::focusNextPrevChild(bool next)
{
    if (m_hidingField)
        return true;
    return next ? focusForward() : focusBackward();
}

void PrecisionRangeSlider::focusInEvent(QFocusEvent* event)
{
    bool stays = true;
    if (event->reason() == Qt::TabFocusReason) {
        if (m_currentEdit && m_currentEdit->isHidden()) // it was left backwards
            m_currentEdit = nullptr;
        stays = focusNextPrevChild(true);
    } else if (event->reason() == Qt::BacktabFocusReason) {
        stays = focusNextPrevChild(false);
        if (!stays) {
            m_currentEdit = nullptr;
            m_keyboardArrow = -1;
        }
    }
    if (!stays)
        event->ignore();
}

void PrecisionRangeSlider::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    m_currentEdit = nullptr;
    m_keyboardArrow = -1;
}

void PrecisionRangeSlider::keyPressEvent(QKeyEvent* event)
{
    const int step = event->key() == Qt::Key_Left ? -1 : event->key() == Qt::Key_Right ? 1 : 0;
    if (m_keyboardArrow == -1 || step == 0) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (m_keyboardArrow == 0)
        setLeftArrowValue(double(wrappingSum(m_leftValue, step)));
    else
        setRightArrowValue(double(wrappingSum(m_rightValue, step)));
}

void PrecisionRangeSlider::enterEvent(QEvent*)
{
    m_hovered = true;
    update();
}

void PrecisionRangeSlider::leaveEvent(QEvent*)
{
    m_hovered = false;
    update();
}

QSize PrecisionRangeSlider::minimumSizeHint() const
{
    return QSize(QWidget::minimumSizeHint().width(), m_nameLabel->height() + 8);
}

} // namespace Ondrel
