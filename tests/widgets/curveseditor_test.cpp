#include "widgetevents.h"

#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/gradientwidget.h>

#include <QAccessible>
#include <QSignalSpy>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

unsigned int endRed(const CurvesEditorWidget& editor)
{
    const auto strips = editor.findChildren<GradientWidget*>();
    EXPECT_EQ(strips.size(), 2);
    const auto first = strips[0]->stops(), second = strips[1]->stops();
    EXPECT_EQ(first.back().red, second.back().red);
    return first.back().red;
}

} // namespace

TEST(CurvesEditorWidget, showsBlackToThePrimaryOfItsChannel)
{
    CurvesEditorWidget editor(nullptr);
    EXPECT_EQ(endRed(editor), 65535u);
    editor.setChannel(CurvesWidget::Green);
    EXPECT_EQ(endRed(editor), 0u);
    const std::vector<GradientStop> stops = {{0.0f, 0, 0, 0, 65535}, {1.0f, 1234, 0, 0, 65535}};
    editor.setChannelGradient(CurvesWidget::Green, {stops[1]}); // one stop is no gradient
    EXPECT_EQ(endRed(editor), 0u);
    editor.setChannelGradient(CurvesWidget::Blue, stops); // not the channel that is shown
    EXPECT_EQ(endRed(editor), 0u);
    editor.setChannelGradient(CurvesWidget::Green, stops);
    EXPECT_EQ(endRed(editor), 1234u);
    editor.setChannel(CurvesWidget::Blue);
    editor.setChannel(CurvesWidget::Green);
    EXPECT_EQ(endRed(editor), 0u); // back to the primary
}

TEST(CurvesEditorWidget, saysWhatTheUserChanges)
{
    CurvesEditorWidget editor(nullptr);
    QSignalSpy changed(&editor, SIGNAL(changed()));
    Curves curves = editor.curves();
    curves.red = {{0, 0}, {40000, 1000}, {65535, 65535}};
    editor.setCurves(curves);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(editor.curves().red.size(), 3u);
    EXPECT_EQ(editor.curves().blue.size(), 2u);
    editor.setChannel(CurvesWidget::Red);
    editor.resetCurrentChannel();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(editor.curves().red.size(), 2u);

    auto& widget = *editor.findChild<CurvesWidget*>();
    widget.resize(320, 320);
    press(widget, {160, 20});
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(editor.curves().red.size(), 3u);
}

TEST(CurvesEditorWidget, laysTheStripsLeftOfAndBelowTheCurves)
{
    CurvesEditorWidget editor(nullptr);
    editor.resize(400, 400);
    showActive(editor);
    const QRect curves = editor.findChild<CurvesWidget*>()->geometry();
    int left = 0, below = 0;
    const auto strips = editor.findChildren<GradientWidget*>();
    for (const GradientWidget* strip : strips) {
        left += strip->geometry().right() < curves.left() ? 1 : 0;
        below += strip->geometry().top() > curves.bottom() ? 1 : 0;
    }
    EXPECT_EQ(left, 1);
    EXPECT_EQ(below, 1);
    EXPECT_GT(curves.width(), 300);
    EXPECT_EQ(curves.right(), 399);
}
