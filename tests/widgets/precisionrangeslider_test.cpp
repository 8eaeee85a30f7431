#include "tests/widgets/widgetevents.h"

#include <ondrel/widgets/precisionrangeslider.h>

#include <QAccessible>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>

namespace
{

using namespace OndrelTest;
using Ondrel::PrecisionRangeSlider;

struct RangeSlider : PrecisionRangeSlider {
    explicit RangeSlider(const QString& minimum = "0", const QString& maximum = "100", const QString& left = "20",
                         const QString& right = "60")
        : PrecisionRangeSlider("Levels", minimum, maximum, left, right, nullptr)
    {
        resize(215, 34); // the bar is 205 pixels wide, from 5 on: two pixels a unit between the markers' centres
        connect(this, &PrecisionRangeSlider::valueChanged,
                [this](const RangeValue& v) { log << v.left + " " + v.right; });
    }
    using PrecisionRangeSlider::barRect;
    using PrecisionRangeSlider::focusNextPrevChild;
    using PrecisionRangeSlider::leftArrowHorizontalCenter;
    using PrecisionRangeSlider::percentageToValue;
    using PrecisionRangeSlider::rightArrowHorizontalCenter;
    using PrecisionRangeSlider::setBothArrowsValue;
    using PrecisionRangeSlider::setLeftArrowValue;
    using PrecisionRangeSlider::setRightArrowValue;
    using PrecisionRangeSlider::startEditingLeft;
    using PrecisionRangeSlider::startEditingRight;

    QString text() const { return value().left + " " + value().right; }
    QLineEdit& leftEdit() const { return *findChildren<QLineEdit*>().at(0); }
    QLineEdit& rightEdit() const { return *findChildren<QLineEdit*>().at(1); }

    QStringList log;
};

TEST(PrecisionRangeSlider, ValuesArePutInOrder)
{
    RangeSlider slider;
    slider.setValue("50", "20");
    EXPECT_EQ(slider.text(), "20 50");
    EXPECT_EQ(slider.log, QStringList{"20 50"});
}

TEST(PrecisionRangeSlider, ValuesOutsideAreLimitedAndEmitOnce)
{
    RangeSlider slider;
    slider.setValue("-5", "500");
    EXPECT_EQ(slider.text(), "0 100");
    slider.setValue("-5", "500");
    slider.setValue("0", "100");
    slider.setValue("00", "100");
    EXPECT_EQ(slider.log, QStringList{"0 100"});
}

TEST(PrecisionRangeSlider, TextIsNotCutAtThePoint)
{
    RangeSlider slider;
    slider.setValue("3.7", "word");
    EXPECT_EQ(slider.text(), "0 0");
    slider.setValue(PrecisionRangeSlider::RangeValue{"7", "8"});
    EXPECT_EQ(slider.text(), "7 8");
}

TEST(PrecisionRangeSlider, LimitsComeInEitherOrder)
{
    RangeSlider slider("100", "0", "90", "10");
    EXPECT_EQ(slider.text(), "10 90");
    EXPECT_EQ(slider.percentageToValue(0.125), 12.5) << "not truncated";
    EXPECT_EQ(slider.percentageToValue(-1), 0);
    EXPECT_EQ(slider.percentageToValue(2), 100);
}

TEST(PrecisionRangeSlider, ValuesTravelInVariants)
{
    RangeSlider slider;
    QSignalSpy spy(&slider, SIGNAL(valueChanged(RangeValue)));
    ASSERT_TRUE(spy.isValid());
    slider.setValue("1", "2");
    ASSERT_EQ(spy.count(), 1);
    const auto variant = QVariant::fromValue(slider.value());
    EXPECT_EQ(variant.value<PrecisionRangeSlider::RangeValue>().right, "2");
}

TEST(PrecisionRangeSlider, HostileNumbersAreDefined)
{
    const QStringList texts = {"",      "nan", "9223372036854775807", "-9223372036854775808", "9223372036854775808",
                               "1e308", "0"};
    for (const QString& minimum : texts) {
        for (const QString& maximum : texts) {
            RangeSlider slider(minimum, maximum, minimum, maximum);
            for (auto modifier : {Qt::NoModifier, Qt::ShiftModifier, Qt::MetaModifier}) {
                press(slider, {20, 10});
                move(slider, {150, 10}, modifier);
                move(slider, {-5000, 10}, modifier);
                release(slider, {-5000, 10});
            }
            slider.setBothArrowsValue(1e300);
            slider.setLeftArrowValue(-1e300);
            slider.setRightArrowValue(1e300);
            EXPECT_FALSE(slider.grab().isNull());
        }
    }
}

TEST(PrecisionRangeSlider, MarkersIgnoreTheMinimum)
{
    RangeSlider slider;
    EXPECT_FLOAT_EQ(slider.leftArrowHorizontalCenter(), 47.5F);
    EXPECT_FLOAT_EQ(slider.rightArrowHorizontalCenter(), 127.5F);
    RangeSlider shifted("100", "200", "100", "150");
    shifted.resize(215, 34);
    EXPECT_FLOAT_EQ(shifted.leftArrowHorizontalCenter(), 207.5F);
    EXPECT_FLOAT_EQ(shifted.rightArrowHorizontalCenter(), 307.5F);
}

TEST(PrecisionRangeSlider, MarkersStopAtOneAnother)
{
    RangeSlider slider;
    slider.setLeftArrowValue(60.9);
    EXPECT_EQ(slider.text(), "60 60");
    slider.setValue("20", "60");
    slider.setLeftArrowValue(33.9);
    EXPECT_EQ(slider.text(), "33 60");
    slider.setRightArrowValue(10);
    EXPECT_EQ(slider.text(), "33 33");
    slider.setRightArrowValue(70.9);
    EXPECT_EQ(slider.text(), "33 70");
}

TEST(PrecisionRangeSlider, BothMarkersKeepTheirDistance)
{
    RangeSlider slider("0", "100", "20", "25");
    slider.setBothArrowsValue(50);
    EXPECT_EQ(slider.text(), "48 53");
    slider.setBothArrowsValue(1000);
    EXPECT_EQ(slider.text(), "95 100");
    slider.setBothArrowsValue(0);
    EXPECT_EQ(slider.text(), "0 5");
}

TEST(PrecisionRangeSlider, ADragMovesTheNearerMarkerUpToTheOther)
{
    RangeSlider slider;
    press(slider, {40, 10});
    EXPECT_EQ(slider.text(), "20 60");
    move(slider, {50, 10});
    EXPECT_EQ(slider.text(), "21 60") << "45 of 205 pixels";
    move(slider, {200, 10});
    EXPECT_EQ(slider.text(), "60 60");
    move(slider, {5, 10});
    EXPECT_EQ(slider.text(), "0 60") << "the marker stays the same through the drag";
    release(slider, {5, 10});
    EXPECT_TRUE(slider.leftEdit().isHidden());
    press(slider, {120, 10});
    move(slider, {400, 10});
    release(slider, {400, 10});
    EXPECT_EQ(slider.text(), "0 100");
}

TEST(PrecisionRangeSlider, OnATieTheSideDecides)
{
    RangeSlider slider("0", "100", "40", "40");
    press(slider, {50, 10});
    move(slider, {50, 10});
    release(slider, {50, 10});
    EXPECT_EQ(slider.text(), "21 40") << "left of both markers";
    slider.setValue("40", "40");
    press(slider, {150, 10});
    move(slider, {150, 10});
    EXPECT_EQ(slider.text(), "40 70");
}

TEST(PrecisionRangeSlider, AMetaDragMovesTheInterval)
{
    RangeSlider slider("0", "100", "50", "60");
    press(slider, {110, 10});
    move(slider, {110, 10}, Qt::MetaModifier);
    EXPECT_EQ(slider.text(), "46 56") << "centred on 105 of 205 pixels";
    move(slider, {209, 10});
    EXPECT_EQ(slider.text(), "90 100");
    move(slider, {-50, 10});
    EXPECT_EQ(slider.text(), "0 10");
}

TEST(PrecisionRangeSlider, AShiftDragIsRelative)
{
    RangeSlider slider;
    press(slider, {40, 10});
    move(slider, {43, 10}, Qt::ShiftModifier);
    EXPECT_EQ(slider.text(), "23 60");
    move(slider, {44, 10}, Qt::ShiftModifier);
    EXPECT_EQ(slider.text(), "24 60");
    release(slider, {44, 10});

    slider.setValue("21", "61");
    press(slider, {80, 10});
    move(slider, {81, 10}, Qt::ShiftModifier | Qt::MetaModifier);
    EXPECT_EQ(slider.text(), "21 61") << "each half of the centre is truncated: 10 + 30, plus 1";
    release(slider, {81, 10});
}

TEST(PrecisionRangeSlider, AClickOpensTheFieldOfItsSide)
{
    RangeSlider slider;
    const int middle = (slider.contentsRect().left() + slider.contentsRect().right()) / 2;
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {middle, 10});
    EXPECT_FALSE(slider.leftEdit().isHidden());
    EXPECT_EQ(slider.leftEdit().selectedText(), "20");
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {middle + 1, 10});
    EXPECT_TRUE(slider.leftEdit().isHidden());
    EXPECT_FALSE(slider.rightEdit().isHidden());
    EXPECT_EQ(slider.rightEdit().selectedText(), "60");
    QTest::mouseClick(&slider, Qt::LeftButton, {}, {middle - 50, 10});
    EXPECT_FALSE(slider.leftEdit().isHidden());
    EXPECT_TRUE(slider.rightEdit().isHidden());
    EXPECT_EQ(slider.log, QStringList());
}

TEST(PrecisionRangeSlider, FieldsRefuseToCross)
{
    RangeSlider slider;
    const auto* left = qobject_cast<const QIntValidator*>(slider.leftEdit().validator());
    const auto* right = qobject_cast<const QIntValidator*>(slider.rightEdit().validator());
    ASSERT_TRUE(left && right);
    EXPECT_EQ(left->bottom(), 0);
    EXPECT_EQ(left->top(), 60);
    EXPECT_EQ(right->bottom(), 20);
    EXPECT_EQ(right->top(), 100);
    slider.startEditingLeft();
    slider.leftEdit().setText("61");
    slider.focusOutLeft();
    EXPECT_EQ(slider.text(), "20 60");
    slider.startEditingLeft();
    slider.leftEdit().setText("60");
    slider.focusOutLeft();
    EXPECT_EQ(slider.text(), "60 60");
    slider.startEditingRight();
    slider.rightEdit().setText("59");
    slider.finishedEditingRight();
    EXPECT_EQ(slider.text(), "60 60");
    slider.rightEdit().setText("90");
    slider.finishedEditingRight();
    EXPECT_EQ(slider.rightEdit().selectedText(), "90");
    EXPECT_EQ(slider.log, (QStringList{"60 60", "60 90"}));
    EXPECT_EQ(left->top(), 90);
    EXPECT_EQ(right->bottom(), 60);
}

TEST(PrecisionRangeSlider, LayoutAndHints)
{
    RangeSlider slider("-5", "1000");
    const auto labels = slider.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 3);
    EXPECT_EQ(labels[1]->text(), "Levels");
    const QFontMetrics metrics(labels[0]->font());
    const int width = metrics.horizontalAdvance("1000") + 10;
    for (QWidget* widget : QList<QWidget*>{labels[0], labels[2], &slider.leftEdit(), &slider.rightEdit()}) {
        EXPECT_EQ(widget->minimumWidth(), width);
        EXPECT_EQ(widget->maximumWidth(), width);
        EXPECT_EQ(widget->font().pixelSize(), 13);
    }
    EXPECT_EQ(slider.leftEdit().textMargins(), QMargins(0, -5, 0, 0));
    EXPECT_EQ(slider.minimumSizeHint().height(), labels[1]->height() + 8);
    EXPECT_EQ(slider.barRect(), QRectF(5, labels[1]->height() + 1, 205, 4));
    EXPECT_EQ(slider.focusPolicy(), Qt::StrongFocus);
}

// A range slider between two other fields, in an active window.
class PrecisionRangeSliderFocus : public testing::Test
{
protected:
    void SetUp() override
    {
        auto* layout = new QVBoxLayout(&m_window);
        layout->addWidget(m_before = new QLineEdit);
        layout->addWidget(m_slider = new RangeSlider);
        layout->addWidget(m_after = new QLineEdit);
        m_before->setFocus();
        showActive(m_window);
    }

    void tab() { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab); }
    void backtab() { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier); }

    QWidget m_window;
    QLineEdit* m_before = nullptr;
    RangeSlider* m_slider = nullptr;
    QLineEdit* m_after = nullptr;
};

TEST_F(PrecisionRangeSliderFocus, FiveTabsWalkThroughAndOut)
{
    tab();
    EXPECT_TRUE(m_slider->leftEdit().hasFocus());
    tab();
    EXPECT_TRUE(m_slider->rightEdit().hasFocus());
    EXPECT_TRUE(m_slider->leftEdit().isHidden());
    tab();
    EXPECT_TRUE(m_slider->rightEdit().isHidden());
    EXPECT_TRUE(m_slider->hasFocus());
    QTest::keyClick(m_slider, Qt::Key_Right);
    QTest::keyClick(m_slider, Qt::Key_Right);
    QTest::keyClick(m_slider, Qt::Key_Left);
    EXPECT_EQ(m_slider->log, (QStringList{"21 60", "22 60", "21 60"}));
    tab();
    EXPECT_TRUE(m_slider->hasFocus());
    QTest::keyClick(m_slider, Qt::Key_Left);
    EXPECT_EQ(m_slider->text(), "21 59");
    tab();
    EXPECT_FALSE(m_slider->hasFocus());
    EXPECT_TRUE(m_slider->leftEdit().isHidden());
    EXPECT_TRUE(m_slider->rightEdit().isHidden());
}

TEST_F(PrecisionRangeSliderFocus, FiveBacktabsWalkBack)
{
    m_after->setFocus();
    backtab();
    EXPECT_TRUE(m_slider->hasFocus());
    QTest::keyClick(m_slider, Qt::Key_Right);
    EXPECT_EQ(m_slider->text(), "20 61") << "first the right marker";
    backtab();
    QTest::keyClick(m_slider, Qt::Key_Right);
    EXPECT_EQ(m_slider->text(), "21 61");
    backtab();
    EXPECT_TRUE(m_slider->rightEdit().hasFocus());
    backtab();
    EXPECT_TRUE(m_slider->leftEdit().hasFocus());
    EXPECT_TRUE(m_slider->rightEdit().isHidden());
    EXPECT_FALSE(m_slider->focusNextPrevChild(false)) << "the next one leaves";
    EXPECT_TRUE(m_slider->leftEdit().isHidden());
    m_before->setFocus();
    tab();
    EXPECT_TRUE(m_slider->leftEdit().hasFocus()) << "and the walk starts anew";
}

TEST_F(PrecisionRangeSliderFocus, KeysWithoutAMarkerAreLeftToParents)
{
    m_slider->setFocus(Qt::MouseFocusReason);
    for (int key : {Qt::Key_Left, Qt::Key_Right}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        event.accept();
        static_cast<QObject*>(m_slider)->event(&event);
        EXPECT_FALSE(event.isAccepted());
    }
    EXPECT_EQ(m_slider->log, QStringList());
}

TEST_F(PrecisionRangeSliderFocus, LosingTheFocusForgetsTheMarker)
{
    tab();
    tab();
    tab();
    m_after->setFocus(Qt::MouseFocusReason);
    m_slider->setFocus(Qt::MouseFocusReason);
    QTest::keyClick(m_slider, Qt::Key_Right);
    EXPECT_EQ(m_slider->text(), "20 60");
}

TEST_F(PrecisionRangeSliderFocus, LeavingAFieldAppliesIt)
{
    tab();
    QTest::keyClicks(&m_slider->leftEdit(), "33");
    tab();
    EXPECT_EQ(m_slider->text(), "33 60");
    QTest::keyClicks(&m_slider->rightEdit(), "44");
    QTest::keyClick(&m_slider->rightEdit(), Qt::Key_Return);
    EXPECT_EQ(m_slider->text(), "33 44");
    EXPECT_TRUE(m_slider->rightEdit().isVisible());
    EXPECT_EQ(m_slider->log, (QStringList{"33 60", "33 44"}));
}

TEST_F(PrecisionRangeSliderFocus, TheFocusedMarkerIsFramedInTheHighlight)
{
    const auto highlighted = [this] {
        const QImage image = m_slider->grab().toImage();
        int count = 0; // of pixels with a colour: all else is grey
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y).hsvSaturation() > 80;
        return count;
    };
    ASSERT_GT(QApplication::palette().color(QPalette::Highlight).hsvSaturation(), 80);
    EXPECT_EQ(highlighted(), 0);
    tab();
    tab();
    tab();
    EXPECT_GT(highlighted(), 0);
}

QColor pixel(QWidget& widget, double x, double y)
{
    return widget.grab().toImage().pixelColor(static_cast<int>(x), static_cast<int>(y));
}

TEST(PrecisionRangeSlider, PaintsTheBarBetweenTheMarkers)
{
    RangeSlider slider;
    slider.grab();
    const double y = slider.barRect().top() + 2;
    EXPECT_EQ(pixel(slider, 85, y), QColor(201, 198, 198));
    EXPECT_LT(pixel(slider, 15, y).red(), 156);
    EXPECT_LT(pixel(slider, 180, y).red(), 156);
    setHovered(slider, true);
    EXPECT_EQ(pixel(slider, 85, y), QColor(222, 219, 219));
}

TEST(PrecisionRangeSlider, GradientsOfGrooveAndBar)
{
    RangeSlider slider;
    slider.grab();
    const double y = slider.barRect().top() + 2;
    slider.setGrooveGradient({{0.0, Qt::green}, {1.0, Qt::green}});
    slider.setBarGradient({{0.0, Qt::red}, {1.0, Qt::red}});
    EXPECT_EQ(pixel(slider, 20, y), QColor(0, 255, 0));
    EXPECT_EQ(pixel(slider, 85, y), QColor(255, 0, 0));
    EXPECT_EQ(pixel(slider, 180, y), QColor(0, 255, 0));
    slider.clearBarGradient();
    EXPECT_EQ(pixel(slider, 85, y), QColor(201, 198, 198));
    slider.clearGrooveGradient();
    EXPECT_NE(pixel(slider, 20, y), QColor(0, 255, 0));
}

TEST(PrecisionRangeSlider, WorksInAScene)
{
    auto* slider = new RangeSlider;
    SceneHost host(slider, 2);
    slider->resize(215, 34);
    press(*host.view.viewport(), host.at({130, 10}));
    move(*host.view.viewport(), host.at({169, 10}));
    release(*host.view.viewport(), host.at({169, 10}));
    EXPECT_EQ(slider->text(), "20 80");
    host.click({20, 8});
    EXPECT_FALSE(slider->leftEdit().isHidden());
    QTest::keyClicks(host.view.viewport(), "5");
    QTest::keyClick(host.view.viewport(), Qt::Key_Return);
    EXPECT_EQ(slider->text(), "5 80");
}

TEST(PrecisionRangeSlider, IsReadByAScreenReader)
{
    RangeSlider slider;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&slider);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Slider);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Levels");
    EXPECT_TRUE(accessible->text(QAccessible::Value).contains("20"));
    EXPECT_TRUE(accessible->text(QAccessible::Value).contains("60"));
}

} // namespace
