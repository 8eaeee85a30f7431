#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QLinearGradient>
#include <QMetaType>
#include <QPair>
#include <QRectF>
#include <QString>
#include <QVector>
#include <QWidget>

#include <cstdint>

class QIntValidator;
class QLabel;
class QLineEdit;
class QPainter;

namespace Ondrel
{

// Two whole numbers, the ends of an interval within fixed limits, on one bar with two markers; each end can be typed
// too. User-interface thread only.
//
// A drag moves the nearer marker, or with Meta the whole interval; with Shift each pixel adds 1. Markers stop at one
// another. A click left of the middle, or on it, opens the left field, one right of it the right field; a field accepts
// nothing beyond the other end. The Tab key walks from the left field to the right one, to the left marker, to the
// right marker, and out; Backtab walks back. Left and Right move the marker that has the focus by 1.
//
// The markers and the bar stand at value / (maximum - minimum) of the width: with a minimum other than 0 they are
// shifted. Hosts know that look.
class ONDREL_EXPORT PrecisionRangeSlider : public QWidget
{
    Q_OBJECT
public:
    struct RangeValue {
        QString left;
        QString right;
    };

    // Limits in either order, all as decimal text; text that is no whole number counts as 0.
    PrecisionRangeSlider(const QString& name, const QString& minimum, const QString& maximum, const QString& left,
                         const QString& right, QWidget* parent);

    RangeValue value() const;

    // From the left to the right end of the groove, and of the bar between the markers.
    void setGrooveGradient(const QVector<QPair<double, QColor>>& stops);
    void clearGrooveGradient();
    void setBarGradient(const QVector<QPair<double, QColor>>& stops);
    void clearBarGradient();

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void valueChanged(RangeValue rangeValue);

public Q_SLOTS:
    // Limited to the range and put in order; a change emits valueChanged once.
    void setValue(const QString& newLeftValueString, const QString& newRightValueString);
    void setValue(const RangeValue& newRangeValue);
    void focusOutLeft();
    void finishedEditingLeft();
    void focusOutRight();
    void finishedEditingRight();

protected:
    void setLeftArrowValue(double value);
    void setRightArrowValue(double value);
    void setBothArrowsValue(double value); // of the middle; the width stays
    double percentageToValue(double percentage) const;
    QRectF barRect() const;
    float leftArrowHorizontalCenter() const;
    float rightArrowHorizontalCenter() const;
    void startEditingLeft();
    void startEditingRight();
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class MouseState { Idle, Pressed, Dragging };
    enum class DragTarget { Left, Right, Both };

    void makeLabels(const QString& name);
    void makeFields();
    QLineEdit* makeField(QIntValidator*& validator, const char* finished, const char* focusOut);
    void startEditing(QLabel* label, QLineEdit* edit, const QString& text);
    bool leaveField(QLabel* label, QLineEdit* edit);
    DragTarget targetAt(const QMouseEvent& event, int x) const;
    double relativeValue(int delta) const;
    bool focusForward();
    bool focusBackward();
    void focusArrow(int arrow);
    void paintMarker(QPainter& painter, bool left) const;
    float arrowCenter(std::int64_t value) const;

    bool m_hasGrooveGradient = false;
    QLinearGradient m_grooveGradient;
    bool m_hasBarGradient = false;
    QLinearGradient m_barGradient;
    RangeValue m_rangeValue;
    std::int64_t m_leftValue = 0;
    std::int64_t m_rightValue = 0;
    std::int64_t m_minimum;
    std::int64_t m_maximum;
    QLabel* m_leftLabel = nullptr;
    QLabel* m_nameLabel = nullptr;
    QLabel* m_rightLabel = nullptr;
    QLineEdit* m_leftEdit = nullptr;
    QIntValidator* m_leftValidator = nullptr;
    QLineEdit* m_rightEdit = nullptr;
    QIntValidator* m_rightValidator = nullptr;
    MouseState m_mouseState = MouseState::Idle;
    int m_lastMouseX = 0;
    int m_lastMouseY = 0;
    bool m_hovered = false;
    DragTarget m_dragTarget = DragTarget::Left;
    QLineEdit* m_currentEdit = nullptr; // the field that the Tab key has reached
    int m_keyboardArrow = -1;           // the marker with the keyboard: 0 left, 1 right
    bool m_hidingField = false;
};

} // namespace Ondrel

Q_DECLARE_METATYPE(Ondrel::PrecisionRangeSlider::RangeValue)
