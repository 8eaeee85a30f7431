#include "tests/widgets/widgetevents.h"

#include <ondrel/widgets/precisionslider.h>

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QValidator>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

using namespace OndrelTest;
using Ondrel::PrecisionSlider;

struct Slider : PrecisionSlider {
    Slider(NumberMode mode, DisplayStyle style, const QString& minimum = "0", const QString& maximum = "100",
           const QString& value = "50")
        : PrecisionSlider("Gain", minimum, maximum, value, mode, style, nullptr)
    {
        resize(210, 34); // the bar is 200 pixels wide, from 5 on
    }
    using PrecisionSlider::barRect;
    using PrecisionSlider::effectiveRange;
    using PrecisionSlider::focusNextPrevChild;
    using PrecisionSlider::inGraphicsScene;
    using PrecisionSlider::percentageToValue;
    using PrecisionSlider::startEditing;
    using PrecisionSlider::valueToPercentage;

    QLabel& label() const { return *findChild<QLabel*>(); }
    QLineEdit& edit() const { return *findChild<QLineEdit*>(); }
};

// All three signals in their order, with the caption at that time.
class Log
{
public:
    explicit Log(Slider& slider)
    {
        QObject::connect(&slider, qOverload<int64_t>(&PrecisionSlider::valueChanged),
                         [this, &slider](int64_t v) { add(slider, "int " + QString::number(v)); });
        QObject::connect(&slider, qOverload<double>(&PrecisionSlider::valueChanged),
                         [this, &slider](double v) { add(slider, "double " + QString::number(v, 'g', 12)); });
        QObject::connect(&slider, qOverload<QString>(&PrecisionSlider::valueChanged),
                         [this, &slider](const QString& v) { add(slider, "text " + v); });
    }
    QStringList signalsOnly;
    QStringList captions;

private:
    void add(const Slider& slider, const QString& entry)
    {
        signalsOnly << entry;
        captions << slider.label().text();
    }
};

TEST(PrecisionSlider, WholeNumbersAreCutAtThePoint)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    Log log(slider);
    slider.setValue("3.7");
    EXPECT_EQ(slider.valueAsInt64(), 3);
    EXPECT_EQ(slider.valueAsString(), "3");
    EXPECT_EQ(slider.label().text(), "Gain: 3");
    EXPECT_EQ(log.signalsOnly, (QStringList{"int 3", "text 3"}));
    EXPECT_EQ(log.captions, (QStringList{"Gain: 50", "Gain: 3"}));
}

TEST(PrecisionSlider, WholeNumbersStayAsTyped)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    slider.setValue("007");
    EXPECT_EQ(slider.valueAsString(), "007");
    EXPECT_EQ(slider.valueAsInt64(), 7);
    slider.setValue("abc");
    EXPECT_EQ(slider.valueAsString(), "abc");
    EXPECT_EQ(slider.valueAsInt64(), 0);
    slider.setValue("");
    EXPECT_EQ(slider.valueAsString(), "");
    EXPECT_EQ(slider.label().text(), "Gain: ");
}

TEST(PrecisionSlider, FractionsCarryTheParsedNumber)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Range);
    Log log(slider);
    slider.setValue("0.1");
    EXPECT_EQ(slider.valueAsInt64(), 100000000);
    EXPECT_EQ(slider.valueAsDouble(), 0.1);
    slider.setValue("0.12345678987");
    EXPECT_EQ(slider.valueAsInt64(), 123456789);
    EXPECT_EQ(log.signalsOnly, (QStringList{"double 0.1", "text 0.1", "double 0.12345678987", "text 0.123457"}));
    EXPECT_EQ(log.captions, (QStringList{"Gain: 50", "Gain: 0.1", "Gain: 0.1", "Gain: 0.123457"}));
}

TEST(PrecisionSlider, NumbersAreCaptionedAfterTheSignals)
{
    Slider whole(PrecisionSlider::Integer, PrecisionSlider::Range);
    Log wholeLog(whole);
    whole.setValue(int64_t{7});
    EXPECT_EQ(wholeLog.signalsOnly, (QStringList{"int 7", "text 7"}));
    EXPECT_EQ(wholeLog.captions, (QStringList{"Gain: 50", "Gain: 50"}));
    EXPECT_EQ(whole.label().text(), "Gain: 7");

    Slider slider(PrecisionSlider::Double, PrecisionSlider::Range);
    Log log(slider);
    slider.setValue(int64_t{1234567891});
    EXPECT_EQ(log.signalsOnly, (QStringList{"double 1.234567891", "text 1.23457"}));
    EXPECT_EQ(log.captions, (QStringList{"Gain: 50", "Gain: 50"}));
    EXPECT_EQ(slider.valueAsString(), "1.23457");
}

TEST(PrecisionSlider, TheSameValueEmitsNothing)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Range);
    slider.setValue(int64_t{1234567891});
    Log log(slider);
    slider.setValue(int64_t{1234567891});
    slider.setValue("1.23457");
    EXPECT_EQ(log.signalsOnly, QStringList());
    EXPECT_EQ(slider.valueAsInt64(), 1234567891) << "the shown text leaves the stored value alone";
    slider.setValue("1.234570");
    EXPECT_EQ(slider.valueAsInt64(), 1234570000);
    EXPECT_EQ(log.signalsOnly.size(), 2);
}

TEST(PrecisionSlider, SettingDoesNotLimit)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    slider.setValue(int64_t{500});
    EXPECT_EQ(slider.valueAsInt64(), 500);
    slider.setValue("-500");
    EXPECT_EQ(slider.valueAsInt64(), -500);
    EXPECT_EQ(slider.valueAsDouble(), -500 / 1e9);
}

TEST(PrecisionSlider, RangeComesInEitherOrder)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range, "10", "0", "5");
    EXPECT_EQ(slider.percentageToValue(0), 0);
    EXPECT_EQ(slider.percentageToValue(1), 10);
    EXPECT_EQ(slider.effectiveRange(), 10);
    EXPECT_EQ(slider.valueToPercentage(), 0.5);
}

TEST(PrecisionSlider, NewRangeMovesTheValueIn)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range, "0", "100", "15");
    Log log(slider);
    slider.setRange("0", "10");
    EXPECT_EQ(slider.valueAsInt64(), 10);
    EXPECT_EQ(log.signalsOnly, (QStringList{"int 10", "text 10"}));
    slider.setRange("20", "30");
    EXPECT_EQ(slider.valueAsInt64(), 20);
    EXPECT_EQ(log.signalsOnly.size(), 4);
}

TEST(PrecisionSlider, ConstructionLimitsTheValue)
{
    EXPECT_EQ(Slider(PrecisionSlider::Integer, PrecisionSlider::Range, "0", "10", "15").valueAsInt64(), 10);
    EXPECT_EQ(Slider(PrecisionSlider::Double, PrecisionSlider::Arrows, "0.5", "1", "0").valueAsString(), "0.5");
}

TEST(PrecisionSlider, HostileNumbersAreDefined)
{
    for (auto mode : {PrecisionSlider::Integer, PrecisionSlider::Double}) {
        for (auto style : {PrecisionSlider::Range, PrecisionSlider::Arrows}) {
            const QStringList texts = {
                "", "nan", "inf", "-inf", "1e308", "-1e308", "9223372036854775807", "-9223372036854775808", "0"};
            for (const QString& minimum : texts) {
                for (const QString& maximum : texts) {
                    Slider slider(mode, style, minimum, maximum, maximum);
                    press(slider, {100, 10});
                    move(slider, {150, 10}, Qt::ShiftModifier);
                    move(slider, {-5000, 10});
                    release(slider, {150, 10});
                    slider.setValue(std::numeric_limits<int64_t>::min());
                    EXPECT_FALSE(slider.grab().isNull());
                }
            }
        }
    }
}

TEST(PrecisionSlider, AnEmptyRangeHasNoFraction)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range, "4", "4", "4");
    EXPECT_TRUE(std::isnan(slider.valueToPercentage()));
    EXPECT_EQ(slider.percentageToValue(0.5), 4);
}

TEST(PrecisionSlider, PostfixIsShownBehindTheValue)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    slider.setPostfix(" px");
    slider.setValue("4");
    EXPECT_EQ(slider.label().text(), "Gain: 4 px");
    EXPECT_EQ(slider.valueAsString(), "4");
}

TEST(PrecisionSlider, DragSetsThePlaceOfTheMouse)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    press(slider, {20, 10});
    EXPECT_EQ(slider.valueAsInt64(), 50) << "a press alone changes nothing";
    move(slider, {63, 10});
    EXPECT_EQ(slider.valueAsInt64(), 28) << "58 of 200 pixels, truncated";
    move(slider, {400, 10});
    EXPECT_EQ(slider.valueAsInt64(), 100);
    move(slider, {-400, 10});
    EXPECT_EQ(slider.valueAsInt64(), 0);
    release(slider, {-400, 10});
    EXPECT_TRUE(slider.edit().isHidden()) << "a drag opens no field";
}

TEST(PrecisionSlider, ShiftDragIsRelative)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    press(slider, {105, 10});
    move(slider, {115, 10}, Qt::ShiftModifier);
    EXPECT_EQ(slider.valueAsInt64(), 60);
    move(slider, {105, 10});
    EXPECT_EQ(slider.valueAsInt64(), 50);
    move(slider, {116, 10}, Qt::ShiftModifier);
    EXPECT_EQ(slider.valueAsInt64(), 51) << "an absolute move does not store the position";
    move(slider, {1000, 10}, Qt::ShiftModifier);
    EXPECT_EQ(slider.valueAsInt64(), 100);
}

TEST(PrecisionSlider, ArrowsDragIsRelative)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Arrows, "-10", "10", "0");
    press(slider, {100, 10});
    move(slider, {103, 10});
    EXPECT_EQ(slider.valueAsInt64(), 30000000);
    move(slider, {102, 10});
    EXPECT_EQ(slider.valueAsInt64(), 20000000);
    release(slider, {102, 10});
    EXPECT_TRUE(slider.edit().isHidden());
}

TEST(PrecisionSlider, ALongMoveOfFractionsWraps)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Arrows, "-10", "10", "0");
    press(slider, {0, 10});
    move(slider, {215, 10});
    EXPECT_EQ(slider.valueAsInt64(), -2144967296);
}

TEST(PrecisionSlider, ClicksOnArrowsStep)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Arrows);
    const int right = slider.contentsRect().right();
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {17, 10});
    EXPECT_EQ(slider.valueAsInt64(), 49);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {right - 17, 10});
    EXPECT_EQ(slider.valueAsInt64(), 50);
    EXPECT_TRUE(slider.edit().isHidden());
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {right - 18, 10});
    EXPECT_FALSE(slider.edit().isHidden());
    slider.focusOutLineEdit();
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {18, 10});
    EXPECT_FALSE(slider.edit().isHidden());
    EXPECT_EQ(slider.valueAsInt64(), 50);
}

TEST(PrecisionSlider, AStepLeavesTheMousePressed)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Arrows);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {5, 10});
    release(slider, {5, 10});
    EXPECT_EQ(slider.valueAsInt64(), 48) << "a second release steps again";
    move(slider, {5, 10});
    release(slider, {5, 10});
    release(slider, {5, 10});
    EXPECT_EQ(slider.valueAsInt64(), 48) << "a move ends that";
}

TEST(PrecisionSlider, StepsOfFractionsAreTenthsAndStayInTheRange)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Arrows, "0", "1", "0.95");
    Log log(slider);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {205, 10});
    EXPECT_EQ(slider.valueAsInt64(), 1000000000);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {5, 10});
    EXPECT_EQ(slider.valueAsInt64(), 900000000);
    EXPECT_EQ(log.signalsOnly, (QStringList{"double 1", "text 1", "double 0.9", "text 0.9"}));
}

// A slider beside another field, in an active window.
class PrecisionSliderFocus : public testing::Test
{
protected:
    void SetUp() override
    {
        auto* layout = new QVBoxLayout(&m_window);
        m_other = new QLineEdit;
        layout->addWidget(m_other);
        m_slider = new Slider(PrecisionSlider::Double, PrecisionSlider::Range, "0", "10", "2");
        layout->addWidget(m_slider);
        m_other->setFocus();
        showActive(m_window);
    }

    QWidget m_window;
    QLineEdit* m_other = nullptr;
    Slider* m_slider = nullptr;
};

TEST_F(PrecisionSliderFocus, AClickOpensTheFieldWithItsTextSelected)
{
    Log log(*m_slider);
    QTest::mouseClick(&m_slider->label(), Qt::LeftButton, {}, {30, 5});
    EXPECT_TRUE(m_slider->edit().isVisible());
    EXPECT_FALSE(m_slider->label().isVisible());
    EXPECT_TRUE(m_slider->edit().hasFocus());
    EXPECT_EQ(m_slider->edit().text(), "2");
    EXPECT_EQ(m_slider->edit().selectedText(), "2");
    EXPECT_EQ(m_slider->focusProxy(), &m_slider->edit());
    EXPECT_EQ(log.signalsOnly, QStringList());
}

TEST_F(PrecisionSliderFocus, LeavingTheFieldAppliesItsText)
{
    m_slider->startEditing();
    QTest::keyClicks(&m_slider->edit(), "3.5");
    QTest::keyClick(&m_slider->edit(), Qt::Key_Escape);
    EXPECT_TRUE(m_slider->edit().isVisible());
    EXPECT_EQ(m_slider->valueAsDouble(), 2);
    m_other->setFocus();
    EXPECT_EQ(m_slider->valueAsDouble(), 3.5);
    EXPECT_FALSE(m_slider->edit().isVisible());
    EXPECT_TRUE(m_slider->label().isVisible());
    EXPECT_EQ(m_slider->focusProxy(), nullptr);
}

TEST_F(PrecisionSliderFocus, LeavingTheFieldAppliesTwice)
{
    m_slider->startEditing();
    QTest::keyClicks(&m_slider->edit(), "0.50");
    Log log(*m_slider);
    m_other->setFocus();
    EXPECT_EQ(log.signalsOnly, (QStringList{"double 0.5", "text 0.5", "double 0.5", "text 0.5"}));
}

TEST_F(PrecisionSliderFocus, ReturnAppliesAndKeepsTheFieldOpen)
{
    m_slider->startEditing();
    QTest::keyClicks(&m_slider->edit(), "7");
    QTest::keyClick(&m_slider->edit(), Qt::Key_Return);
    EXPECT_EQ(m_slider->valueAsDouble(), 7);
    EXPECT_TRUE(m_slider->edit().isVisible());
    EXPECT_EQ(m_slider->edit().selectedText(), "7");
}

TEST_F(PrecisionSliderFocus, OnlyAcceptableTextIsApplied)
{
    Log log(*m_slider);
    for (const char* text : {"1.2345", "11", "-1", "word", ""}) {
        m_slider->startEditing();
        m_slider->edit().setText(text);
        m_other->setFocus();
        EXPECT_EQ(m_slider->valueAsDouble(), 2) << text;
    }
    EXPECT_EQ(log.signalsOnly, QStringList());
}

TEST_F(PrecisionSliderFocus, TypingStopsAtThreeDecimals)
{
    m_slider->startEditing();
    QTest::keyClicks(&m_slider->edit(), "1.2345");
    EXPECT_EQ(m_slider->edit().text(), "1.234");
    m_other->setFocus();
    EXPECT_EQ(m_slider->valueAsInt64(), 1234000000);
}

TEST_F(PrecisionSliderFocus, FocusFromTheKeyboardOpensTheField)
{
    QTest::keyClick(m_other, Qt::Key_Tab);
    EXPECT_TRUE(m_slider->edit().isVisible());
    EXPECT_TRUE(m_slider->edit().hasFocus());
    m_other->setFocus();
    m_slider->setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(m_slider->edit().isVisible()) << "the mouse decides that at the release";
    m_other->setFocus();
    m_slider->setFocus();
    EXPECT_TRUE(m_slider->edit().isVisible());
    EXPECT_FALSE(m_slider->focusNextPrevChild(true));
    EXPECT_FALSE(m_slider->focusNextPrevChild(false));
}

TEST(PrecisionSlider, ValidatorsFollowTheRange)
{
    Slider whole(PrecisionSlider::Integer, PrecisionSlider::Range, "-5", "5000000000", "1");
    const auto* integers = qobject_cast<const QIntValidator*>(whole.edit().validator());
    ASSERT_NE(integers, nullptr);
    EXPECT_EQ(integers->bottom(), -5);
    EXPECT_EQ(integers->top(), 705032704) << "cut to 32 bits";

    Slider slider(PrecisionSlider::Double, PrecisionSlider::Range, "-0.5", "2.25", "1");
    const auto* doubles = qobject_cast<const QDoubleValidator*>(slider.edit().validator());
    ASSERT_NE(doubles, nullptr);
    EXPECT_EQ(doubles->bottom(), -0.5);
    EXPECT_EQ(doubles->top(), 2.25);
    EXPECT_EQ(doubles->decimals(), 3);
    EXPECT_EQ(doubles->notation(), QDoubleValidator::StandardNotation);
}

TEST(PrecisionSlider, LayoutAndHints)
{
    Slider range(PrecisionSlider::Integer, PrecisionSlider::Range);
    EXPECT_EQ(range.focusPolicy(), Qt::StrongFocus);
    EXPECT_EQ(range.label().font().pixelSize(), 13);
    EXPECT_EQ(range.edit().font().pixelSize(), 13);
    EXPECT_EQ(range.label().alignment(), Qt::AlignTop | Qt::AlignHCenter);
    EXPECT_EQ(range.edit().textMargins(), QMargins(0, -3, 0, 0));
    EXPECT_EQ(range.label().focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(range.minimumSizeHint(), QSize(150, range.label().minimumSize().height() + 8));
    EXPECT_GE(range.minimumSizeHint().height(), 20);
    EXPECT_EQ(range.minimumHeight(), range.minimumSizeHint().height());
    EXPECT_EQ(range.barRect(), QRectF(5, range.label().height() + 1, 200, 4));

    Slider arrows(PrecisionSlider::Integer, PrecisionSlider::Arrows, "-100000", "10", "1");
    arrows.setPostfix("%");
    EXPECT_EQ(arrows.label().alignment(), Qt::AlignVCenter | Qt::AlignHCenter);
    EXPECT_EQ(arrows.edit().textMargins(), QMargins());
    const QFontMetrics metrics(arrows.font());
    const int numbers = std::max(metrics.horizontalAdvance("10") + metrics.horizontalAdvance("%"),
                                 metrics.horizontalAdvance("-100000"));
    EXPECT_EQ(arrows.minimumSizeHint().width(), metrics.horizontalAdvance("Gain: ") + numbers + 36);
    EXPECT_EQ(arrows.barRect(), QRectF(arrows.contentsRect()));
}

QColor pixel(QWidget& widget, double x, double y)
{
    return widget.grab().toImage().pixelColor(static_cast<int>(x), static_cast<int>(y));
}

TEST(PrecisionSlider, PaintsBarGrooveAndMarker)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    const QRectF bar = slider.barRect();
    slider.grab();
    const double y = slider.barRect().top() + 2;
    EXPECT_EQ(pixel(slider, 40, y), QColor(201, 198, 198));
    const QColor groove = pixel(slider, 160, y);
    EXPECT_GT(groove.red(), 60);
    EXPECT_LT(groove.red(), 156);
    EXPECT_EQ(pixel(slider, bar.left() + 0.5 * 199, y), QColor(201, 198, 198)) << "the marker";
    setHovered(slider, true);
    EXPECT_EQ(pixel(slider, 40, y), QColor(222, 219, 219));
    setHovered(slider, false);
    EXPECT_EQ(pixel(slider, 40, y), QColor(201, 198, 198));
}

TEST(PrecisionSlider, AGradientReplacesBarAndGroove)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    slider.grab();
    const double y = slider.barRect().top() + 2;
    slider.setGradient(QColor(255, 0, 0), QColor(0, 0, 255));
    EXPECT_GT(pixel(slider, 15, y).red(), 230);
    EXPECT_GT(pixel(slider, 195, y).blue(), 230);
    slider.setGradient(QVector<QPair<double, QColor>>{{0.0, Qt::green}, {1.0, Qt::green}});
    EXPECT_EQ(pixel(slider, 40, y), QColor(0, 255, 0));
    QLinearGradient gradient(0, 0, 1, 1);
    gradient.setColorAt(0, Qt::cyan);
    gradient.setColorAt(1, Qt::cyan);
    slider.setGradient(gradient);
    EXPECT_EQ(pixel(slider, 40, y), QColor(0, 255, 255));
    slider.clearGradient();
    EXPECT_EQ(pixel(slider, 40, y), QColor(201, 198, 198));
}

TEST(PrecisionSlider, PaintsTheBoxWithArrows)
{
    Slider slider(PrecisionSlider::Integer, PrecisionSlider::Arrows);
    const int middle = slider.height() / 2;
    EXPECT_EQ(pixel(slider, 30, 8), QColor(28, 28, 28));
    EXPECT_EQ(pixel(slider, 10, middle), QColor(201, 198, 198));
    EXPECT_EQ(pixel(slider, slider.contentsRect().right() - 10, middle), QColor(201, 198, 198));
    setHovered(slider, true);
    EXPECT_EQ(pixel(slider, 10, middle), QColor(222, 219, 219));
}

TEST(PrecisionSlider, NoFocusProxyInAScene)
{
    auto* slider = new Slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    EXPECT_FALSE(slider->inGraphicsScene());
    auto* node = new QWidget;
    auto* layout = new QVBoxLayout(node);
    layout->addWidget(slider);
    SceneHost host(node);
    EXPECT_TRUE(slider->inGraphicsScene()) << "a parent has the proxy";
    host.click(slider->mapTo(node, QPoint(40, 8)));
    EXPECT_FALSE(slider->edit().isHidden());
    EXPECT_EQ(slider->focusProxy(), nullptr);
    EXPECT_EQ(slider->edit().selectedText(), "50");
    QTest::keyClicks(host.view.viewport(), "42");
    QTest::keyClick(host.view.viewport(), Qt::Key_Return);
    EXPECT_EQ(slider->valueAsInt64(), 42);
    slider->focusOutLineEdit();
    EXPECT_TRUE(slider->edit().isHidden());
}

TEST(PrecisionSlider, DragsInAScene)
{
    auto* slider = new Slider(PrecisionSlider::Integer, PrecisionSlider::Range);
    SceneHost host(slider, 2);
    slider->resize(210, 34);
    press(*host.view.viewport(), host.at({20, 10}));
    move(*host.view.viewport(), host.at({155, 10}));
    release(*host.view.viewport(), host.at({155, 10}));
    EXPECT_EQ(slider->valueAsInt64(), 75);
    EXPECT_TRUE(slider->edit().isHidden());
}

TEST(PrecisionSlider, IsASliderToAScreenReader)
{
    Slider slider(PrecisionSlider::Double, PrecisionSlider::Arrows, "0", "10", "2.5");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&slider);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Slider);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Gain");
    QAccessibleValueInterface* value = accessible->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toDouble(), 2.5);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 10);
    value->setCurrentValue(4.5);
    EXPECT_EQ(slider.valueAsDouble(), 4.5);
}

} // namespace
