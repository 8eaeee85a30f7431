#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/widgets/focuseventfilter.h>

#include <QColor>
#include <QLinearGradient>
#include <QPair>
#include <QRectF>
#include <QString>
#include <QVector>
#include <QWidget>

#include <cstdint>
#include <memory>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPainter;

namespace Ondrel
{

class PrecisionSliderAccessible;
struct SliderScale;

// A number with a caption: dragged with the mouse, or typed after a click. Values are whole numbers, or in Double mode
// numbers times 1e9, truncated; the text that is shown has six significant digits of them. Text that is no number
// counts as 0. User-interface thread only.
//
// setValue() keeps any number; setRange(), the mouse and the field for exact entry keep the value in the range. A
// change emits first valueChanged of the mode's type, then valueChanged(QString); setting what is shown already, or
// what is stored already, emits nothing. In Double mode setValue(QString) reports the number as it was parsed.
//
// Dragging sets a Range slider to the place of the mouse; with Shift, and on an Arrows slider, each pixel adds 1, or
// 0.01 in Double mode. A click opens the field; at an end of an Arrows slider it steps by 1, or 0.1, instead. The field
// takes three decimals, with a point in every locale, and drops what it does not accept. Focus that does not come from
// the mouse opens the field too.
class ONDREL_EXPORT PrecisionSlider : public QWidget
{
    Q_OBJECT
public:
    enum NumberMode { Integer = 0, Double = 1 };
    enum DisplayStyle {
        Range = 0, // a caption over a bar with a marker
        Arrows = 1 // a box with a caption between two arrows
    };

    PrecisionSlider(const QString& name, const QString& minimum, const QString& maximum, const QString& value,
                    NumberMode mode, DisplayStyle style, QWidget* parent);
    ~PrecisionSlider() override;

    // The limits in either order. A value outside is moved to the nearer one.
    void setRange(const QString& minimum, const QString& maximum);

    // Shown directly behind the value.
    void setPostfix(const QString& postfix);

    // The groove of a Range slider from left to right; the bar is then left out.
    void setGradient(const QLinearGradient& gradient);
    void setGradient(const QColor& start, const QColor& end);
    void setGradient(const QVector<QPair<double, QColor>>& stops);
    void clearGradient();

    QString valueAsString() const;
    int64_t valueAsInt64() const;
    double valueAsDouble() const; // the value / 1e9: of use in Double mode only

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void valueChanged(int64_t value);
    void valueChanged(double value);
    void valueChanged(QString value);

public Q_SLOTS:
    void setValue(int64_t value);
    void setValue(const QString& newValueString);
    void focusOutLineEdit();
    void finishedEditingLineEdit();

protected:
    double effectiveRange() const;
    double valueToPercentage() const; // 0 to 1 within the range; not a number if the range is empty
    int64_t percentageToValue(double percentage) const;
    QRectF barRect() const;
    void startEditing();
    bool inGraphicsScene() const;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class PrecisionSliderAccessible;
    enum class MouseState { Idle, Pressed, Dragging };

    void makeChildren();
    void showValue();
    void storeLastPosition(const QPoint& position);
    void clickArrows(int x);
    void paintRange(QPainter& painter) const;
    void paintArrows(QPainter& painter) const;

    QString m_name;
    QString m_valueString;
    QString m_postfix;
    NumberMode m_numberMode;
    DisplayStyle m_displayStyle;
    bool m_hasGradient = false;
    QLinearGradient m_gradient;
    int64_t m_value = 0;
    std::unique_ptr<SliderScale> m_scale;
    QLabel* m_label = nullptr;
    QLineEdit* m_lineEdit = nullptr;
    QHBoxLayout* m_layout = nullptr;
    MouseState m_mouseState = MouseState::Idle;
    int m_lastMouseX = 0;
    int m_lastMouseY = 0;
    bool m_hovered = false;
};

// The parts of a Range slider. `start` is in pixels from the left end of `rect`, `length` a share of its width; a
// gradient runs from the left to the right end of what it fills.
ONDREL_EXPORT void PrecisionSliderDrawRangeGroove(QPainter& painter, const QRectF& rect);
ONDREL_EXPORT void PrecisionSliderDrawRangeGroove(QPainter& painter, const QRectF& rect, QLinearGradient gradient);
ONDREL_EXPORT void PrecisionSliderDrawRangeBar(QPainter& painter, const QRectF& rect, float start, float length,
                                               bool hovered);
ONDREL_EXPORT void PrecisionSliderDrawRangeBar(QPainter& painter, const QRectF& rect, float start, float length,
                                               QLinearGradient gradient);
ONDREL_EXPORT void PrecisionSliderDrawRangeBorder(QPainter& painter, const QRectF& rect);

} // namespace Ondrel
