// The view of the editor, by a user's events.

#include "editorfixture.h"
#include "imagepane.h"
#include "pictureitem.h"
#include "pictures.h"
#include "scene.h"
#include "wipehandle.h"

#include "../../examples/mode/canvasview.h"

#include <ondrel/color/colormanager.h>

#include <QLabel>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace Host;

namespace
{

class View : public Editor
{
protected:
    ImagePane& pane() { return window.imagePane(); }
    WipeHandle& handle() { return *pane().findChild<WipeHandle*>("wipe"); }

    // The photo as the primary, and a brighter form of it as the secondary picture.
    void addBrighter()
    {
        addChain();
        play("set Levels gain 40\nshow photo\nselect Levels\nkey 2\nwait");
        first = renderForView(freshPicture(id("photo")), DisplayOptions());
        second = renderForView(freshPicture(id("Levels")), DisplayOptions());
        ASSERT_NE(first, second);
    }

    // The part of the picture from column x on, `width` wide, as it is on the screen. The picture is shown in its own
    // pixels, as it is smaller than the view.
    QImage onScreen(CanvasView& view, int x, int width)
    {
        QApplication::processEvents();
        const QImage all = view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        return all.copy(QRect(view.mapFromScene(QPointF(x, 20)), QSize(width, 35))); // below the caption
    }
    static QImage part(const QImage& image, int x, int width)
    {
        return image.copy(x, 20, width, 35).convertToFormat(QImage::Format_RGB32);
    }

    // Lines of one pixel, black and white: where pixels are left out, all is black or all is white.
    void importLines()
    {
        QImage lines(2000, 1600, QImage::Format_RGB888);
        for (int x = 0; x < lines.width(); ++x) {
            for (int y = 0; y < lines.height(); ++y)
                lines.setPixelColor(x, y, x % 2 == 0 ? Qt::black : Qt::white);
        }
        ASSERT_TRUE(lines.save(path("lines.png")));
        play("import " + path("lines.png") + " 0 300\nshow lines\nwait");
    }

    // Each is one pixel of the device wide.
    void expectLines()
    {
        QApplication::processEvents();
        const QImage shown = pane().view().viewport()->grab().toImage();
        for (int x = 200; x < 220; ++x)
            EXPECT_GT(std::abs(qGray(shown.pixel(x, 100)) - qGray(shown.pixel(x + 1, 100))), 250) << x;
    }

    QImage first, second;
};

void wheel(CanvasView& view, QPoint at, int delta)
{
    QWheelEvent event(at, view.viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &event);
}

void mouse(QWidget& target, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, at, target.mapToGlobal(at), button, held, modifiers);
    QApplication::sendEvent(&target, &event);
}

} // namespace

TEST_F(View, SecondaryPictureTakesThePlaceOfThePrimaryByAKey)
{
    addBrighter();
    EXPECT_EQ(onScreen(pane().view(), 0, 90), part(first, 0, 90));
    play("key S\nwait");
    EXPECT_EQ(onScreen(pane().view(), 0, 90), part(second, 0, 90));
    EXPECT_TRUE(equalPictures(pane().shownPicture(), freshPicture(id("Levels"))));
    play("key S\nwait");
    EXPECT_EQ(onScreen(pane().view(), 0, 90), part(first, 0, 90));
    EXPECT_TRUE(equalPictures(pane().shownPicture(), freshPicture(id("photo"))));
}

TEST_F(View, WipeLineIsDraggedByItself)
{
    addBrighter();
    EXPECT_FALSE(handle().isVisible());
    play("key W\nwait");
    ASSERT_TRUE(handle().isVisible());
    EXPECT_EQ(onScreen(pane().view(), 0, 30), part(first, 0, 30));
    EXPECT_EQ(onScreen(pane().view(), 60, 30), part(second, 60, 30));

    const QPoint grip = handle().rect().center();
    QTest::mousePress(&handle(), Qt::LeftButton, Qt::NoModifier, grip);
    mouse(handle(), QEvent::MouseMove, grip + QPoint(-30, 0), Qt::NoButton, Qt::LeftButton);
    QTest::mouseRelease(&handle(), Qt::LeftButton, Qt::NoModifier, grip);
    EXPECT_NEAR(pane().options().wipe, 15 / 90.0, 0.02);
    EXPECT_EQ(onScreen(pane().view(), 30, 60), part(second, 30, 60));
    EXPECT_NEAR(handle().geometry().center().x(), pane().view().mapFromScene(QPointF(15, 0)).x(), 2);

    mouse(handle(), QEvent::MouseMove, grip + QPoint(40, 0), Qt::NoButton, Qt::NoButton); // without a button
    EXPECT_NEAR(pane().options().wipe, 15 / 90.0, 0.02);
    play("key W\nwait");
    EXPECT_FALSE(handle().isVisible());
    EXPECT_EQ(onScreen(pane().view(), 0, 90), part(first, 0, 90));
}

TEST_F(View, WipeMovesByKeysAndByTheMouseWithControl)
{
    addBrighter();
    play("key W\nwait");
    QTest::keyClick(&handle(), Qt::Key_Right);
    QTest::keyClick(&handle(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_NEAR(pane().options().wipe, 0.41, 1e-9);
    QWidget& viewport = *pane().view().viewport();
    mouse(viewport, QEvent::MouseButtonPress, pane().view().mapFromScene(QPointF(72, 30)), Qt::LeftButton,
          Qt::LeftButton, Qt::ControlModifier);
    EXPECT_NEAR(pane().options().wipe, 0.8, 0.02);
}

TEST_F(View, WipeFollowsZoomAndScroll)
{
    addBrighter();
    play("key W\nwait");
    CanvasView& view = pane().view();
    wheel(view, view.mapFromScene(QPointF(20, 30)), 600);
    EXPECT_NEAR(handle().geometry().center().x(), view.mapFromScene(QPointF(45, 0)).x(), 2);
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->value() + 50);
    EXPECT_NEAR(handle().geometry().center().x(), view.mapFromScene(QPointF(45, 0)).x(), 2);
}

TEST_F(View, ModeKeepsTheMouseBesideTheGripOfTheWipe)
{
    addBrighter();
    play("add essentials/paint 260 400 Paint\nkey A\nwire photo image Paint image\nselect Paint\nshow Paint\nedit "
         "Paint\n"
         "key W\nwait");
    ASSERT_TRUE(handle().isVisible());
    const auto strokes = [&] { return value("Paint", "strokes").toList().size(); };
    const double before = pane().options().wipe;
    const QPoint onLine(handle().rect().center().x(), 4);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        mouse(handle(), type, onLine, Qt::LeftButton, type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton);
    EXPECT_EQ(strokes(), 1);
    EXPECT_EQ(pane().options().wipe, before);
    QTest::mousePress(&handle(), Qt::LeftButton, Qt::NoModifier, handle().rect().center());
    mouse(handle(), QEvent::MouseMove, handle().rect().center() + QPoint(20, 0), Qt::NoButton, Qt::LeftButton);
    QTest::mouseRelease(&handle(), Qt::LeftButton);
    EXPECT_EQ(strokes(), 1);
    EXPECT_GT(pane().options().wipe, before);
}

TEST_F(View, BothPicturesSideBySideZoomAndScrollTogether)
{
    addBrighter();
    EXPECT_FALSE(pane().secondView().isVisible());
    play("key B\nwait");
    CanvasView &left = pane().view(), &right = pane().secondView();
    ASSERT_TRUE(right.isVisible());
    EXPECT_EQ(onScreen(left, 0, 90), part(first, 0, 90));
    EXPECT_EQ(onScreen(right, 0, 90), part(second, 0, 90));

    const auto expectTogether = [&] {
        EXPECT_EQ(left.transform(), right.transform());
        EXPECT_EQ(left.mapFromScene(QPointF(10, 10)), right.mapFromScene(QPointF(10, 10)));
    };
    expectTogether();
    wheel(right, right.mapFromScene(QPointF(70, 50)), 900);
    EXPECT_GT(pane().zoom(), 2);
    expectTogether();
    const QPoint before = left.mapFromScene(QPointF(10, 10));
    mouse(*right.viewport(), QEvent::MouseButtonPress, QPoint(100, 100), Qt::MiddleButton, Qt::MiddleButton);
    mouse(*right.viewport(), QEvent::MouseMove, QPoint(130, 80), Qt::NoButton, Qt::MiddleButton);
    expectTogether();
    EXPECT_EQ(left.mapFromScene(QPointF(10, 10)), before + QPoint(30, -20));
    play("key Ctrl+0\nkey B\nwait");
    EXPECT_FALSE(right.isVisible());
    EXPECT_EQ(onScreen(left, 0, 90), part(first, 0, 90));
}

TEST_F(View, OneWayToCompareEndsTheOther)
{
    addBrighter();
    play("key B\nkey W\nwait");
    EXPECT_FALSE(pane().secondView().isVisible());
    EXPECT_TRUE(handle().isVisible());
    play("key S\nwait");
    EXPECT_FALSE(handle().isVisible());
    EXPECT_EQ(pane().options().compare, ViewOptions::Second);
}

TEST_F(View, ReadOutIsOfThePictureUnderThePointer)
{
    addBrighter();
    play("key W\nwait");
    const QLabel* readOut = nullptr;
    for (const QLabel* const label : pane().findChildren<QLabel*>()) {
        if (label->objectName() == "readOut")
            readOut = label;
    }
    ASSERT_TRUE(readOut);
    const auto expectAt = [&](CanvasView& view, int x, const Picture& picture) {
        mouse(*view.viewport(), QEvent::MouseMove, view.mapFromScene(QPointF(x, 30)), Qt::NoButton, Qt::NoButton);
        const std::uint16_t* const p = picture.image->data + (30 * 90 + x) * 4;
        const QString wanted = QString("%1, 30   R %2  G %3  B %4 ").arg(x).arg(p[0]).arg(p[1]).arg(p[2]);
        EXPECT_TRUE(readOut->text().startsWith(wanted)) << qPrintable(readOut->text()) << qPrintable(wanted);
    };
    const Picture photo = freshPicture(id("photo")), bright = freshPicture(id("Levels"));
    expectAt(pane().view(), 10, photo);
    expectAt(pane().view(), 80, bright);
    play("key B\nwait");
    expectAt(pane().view(), 80, photo);
    expectAt(pane().secondView(), 10, bright);
}

TEST_F(View, MarksClippingAndProofs)
{
    play("key M\nwait");
    const Picture picture = freshPicture(id("photo"));
    const QImage marked = pane().rendered();
    const QImage plain = renderForView(picture, DisplayOptions());
    int marks = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 90; ++x) {
            const std::uint16_t* const p = picture.image->data + (y * 90 + x) * 4;
            const bool high = p[0] == 65535 || p[1] == 65535 || p[2] == 65535, low = p[0] + p[1] + p[2] == 0;
            marks += high || low ? 1 : 0;
            const QRgb wanted = high ? qRgb(255, 0, 0) : low ? qRgb(0, 0, 255) : plain.pixel(x, y);
            ASSERT_EQ(marked.pixel(x, y), wanted) << x << ", " << y;
        }
    }
    EXPECT_GT(marks, 0);
    play("key M\nkey P\nkey Shift+P\nwait");
    DisplayOptions options;
    options.proofs = options.marksGamut = true;
    options.proofProfile = QByteArray(reinterpret_cast<const char*>(Ondrel::DefaultColorProfileHash.data()), 32);
    EXPECT_EQ(pane().options().proofProfile, options.proofProfile);
    EXPECT_EQ(pane().rendered(), renderForView(picture, options));
}

TEST_F(View, ShrinksSmoothly)
{
    importLines();
    ASSERT_LT(pane().zoom(), 0.5);
    const QImage shown = pane().view().viewport()->grab().toImage();
    const QPoint middle = pane().view().mapFromScene(QPointF(1000, 800));
    for (int x = -20; x < 20; ++x) {
        const int grey = qGray(shown.pixel(middle + QPoint(x, x)));
        EXPECT_GT(grey, 80) << x;
        EXPECT_LT(grey, 180) << x;
    }
    play("key Ctrl+1"); // each pixel is to be seen again
    expectLines();
}

// The ratio is one of the whole process; ctest runs this at 1.5 and 2 as well.
TEST_F(View, AsksForAndDrawsDevicePixels)
{
    const double ratio = pane().devicePixelRatioF();
    ASSERT_EQ(ratio, qEnvironmentVariable("QT_SCALE_FACTOR", "1").toDouble());
    std::vector<double> asked;
    QObject::connect(&window.pictures().evaluator(), &Evaluator::pictureReady,
                     [&](int, const Picture&, double scale) { asked.push_back(scale); });
    importLines();
    ASSERT_LT(pane().zoom(), 0.5);
    EXPECT_NE(std::find(asked.begin(), asked.end(), ratio * pane().zoom()), asked.end());
    play("key Ctrl+1");
    EXPECT_EQ(pane().zoom(), 1 / ratio);
    expectLines();

    addBrighter();
    play("key W\nwait");
    const QPoint grip = handle().rect().center();
    QTest::mousePress(&handle(), Qt::LeftButton, Qt::NoModifier, grip);
    mouse(handle(), QEvent::MouseMove, grip + QPoint(-15, 0), Qt::NoButton, Qt::LeftButton);
    EXPECT_NEAR(pane().options().wipe, 0.5 - 15 * ratio / 90, 0.03); // of the 90 pixels of the picture
}

TEST_F(View, CornersOfAPerspectiveAreHeldWhereTheyAreSeen)
{
    play("add essentials/perspective 260 0 Tilt\nkey A\nwire photo image Tilt image\nshow Tilt\nwait\nedit Tilt\n"
         "stroke 0 0 18 12\nwait\nstroke 18 12 27 20\nwait\nstroke 90 60 80 50\nwait");
    const QVariantList corners = value("Tilt", "corners").toList();
    EXPECT_NEAR(corners.value(0).toPointF().x(), 27 / 90.0, 0.02);
    EXPECT_NEAR(corners.value(0).toPointF().y(), 20 / 60.0, 0.02);
    EXPECT_NEAR(corners.value(2).toPointF().x(), 80 / 90.0, 0.02);
    EXPECT_NEAR(corners.value(2).toPointF().y(), 50 / 60.0, 0.02);
}

TEST_F(View, NudgesSoonAfterEachOtherAreOneStep)
{
    play("add essentials/crop 260 0 Crop\nkey A\nwire photo image Crop image\nset Crop left 10\nset Crop width 40\n"
         "set Crop top 5\nset Crop height 30\nshow Crop\nwait\nedit Crop\nwait");
    const int steps = window.document().undoStack().count();
    play("viewkey Right\nviewkey Right\nviewkey Down");
    EXPECT_EQ(value("Crop", "left").toInt(), 12);
    EXPECT_EQ(value("Crop", "top").toInt(), 6);
    EXPECT_EQ(window.document().undoStack().count(), steps + 1);
    play("key Ctrl+Z");
    EXPECT_EQ(value("Crop", "left").toInt(), 10);
    EXPECT_EQ(value("Crop", "top").toInt(), 5);
    play("viewkey Right"); // the undo ends what goes together
    EXPECT_EQ(window.document().undoStack().count(), steps + 1);
    QTest::qWait(1100); // and so does a pause
    play("viewkey Right\nviewkey Right");
    EXPECT_EQ(window.document().undoStack().count(), steps + 2);
    play("key Ctrl+Z");
    EXPECT_EQ(value("Crop", "left").toInt(), 11);
    play("viewkey Right\nstroke 31 20 34 20\nviewkey Right"); // and the mouse
    EXPECT_EQ(window.document().undoStack().count(), steps + 4);
}

// One clipped pixel of a picture that is shown at a fifth of its size.
TEST_F(View, ClippingIsSeenInASmallViewToo)
{
    QImage grey(4000, 3000, QImage::Format_RGB888);
    grey.fill(QColor(120, 120, 120));
    grey.setPixelColor(2003, 1501, Qt::white);
    grey.setPixelColor(1003, 701, Qt::black);
    ASSERT_TRUE(grey.save(path("grey.png")));
    play("import " + path("grey.png") + " 0 300\nshow grey\nkey M\nwait");
    ASSERT_LT(pane().zoom(), 0.25);
    const QImage shown = pane().view().viewport()->grab().toImage();
    const auto around = [&](QPointF at) {
        return shown.copy(QRect(pane().view().mapFromScene(at) - QPoint(3, 3), QSize(7, 7)));
    };
    const auto reddest = [](const QImage& part) {
        int most = 0;
        for (int i = 0; i < 49; ++i)
            most = std::max(most, qRed(part.pixel(i % 7, i / 7)) - qGreen(part.pixel(i % 7, i / 7)));
        return most;
    };
    EXPECT_GT(reddest(around(QPointF(2003.5, 1501.5))), 100);
    EXPECT_GT(reddest(around(QPointF(1003.5, 701.5)).rgbSwapped()), 100); // blue
    EXPECT_EQ(reddest(around(QPointF(3000, 2000))), 0);
    play("key M\nwait");
}

TEST(PictureItem, ComparedPictureLiesInTheMiddleOfTheOther)
{
    EXPECT_EQ(placeOver(QSize(50, 50), QSize(100, 60)), QRectF(20, 0, 60, 60));
    EXPECT_EQ(placeOver(QSize(200, 50), QSize(100, 60)), QRectF(0, 17.5, 100, 25));
    EXPECT_EQ(placeOver(QSize(33, 20), QSize(100, 60)), QRectF(0, 0, 100, 60)); // rounded
    EXPECT_TRUE(placeOver(QSize(), QSize(100, 60)).isEmpty());
}

TEST_F(View, OneClippedPixelIsMarkedAtEveryZoom)
{
    const QPoint clipped(1503, 1001);
    QImage grey(3000, 2000, QImage::Format_RGB888);
    grey.fill(QColor(120, 120, 120));
    grey.setPixelColor(clipped, Qt::white);
    ASSERT_TRUE(grey.save(path("grey.png")));
    play("import " + path("grey.png") + " 0 300\nshow grey\nkey M\nwait");
    CanvasView& view = pane().view();
    const double ratio = pane().devicePixelRatioF();
    for (const double zoom : {1.0, 0.97, 0.9, 0.75, 0.66, 0.51, 0.5, 0.49, 0.31, 0.25, 0.13, 0.07}) {
        pane().setZoom(zoom / ratio, view.viewport()->rect().center());
        play("wait");
        view.centerOn(clipped);
        for (const int pan : {0, 1, 1}) {
            pane().scrollBy(QPoint(pan, pan));
            const QImage shown = view.viewport()->grab().toImage();
            const QTransform toDevice = view.viewportTransform() * QTransform::fromScale(ratio, ratio);
            const QRectF place = toDevice.mapRect(QRectF(clipped, QSizeF(1, 1)));
            const QPoint first(int(std::floor(place.left() + 1e-6)), int(std::floor(place.top() + 1e-6)));
            const QPoint last(int(std::ceil(place.right() - 1e-6)) - 1, int(std::ceil(place.bottom() - 1e-6)) - 1);
            const QRect cover(first, last);
            int marks = 0;
            for (int y = 0; y < shown.height(); ++y) {
                for (int x = 0; x < shown.width(); ++x) {
                    if (shown.pixel(x, y) != qRgb(255, 0, 0))
                        continue;
                    ++marks;
                    ASSERT_TRUE(cover.adjusted(-1, -1, 1, 1).contains(x, y)) << zoom << ": " << x << ", " << y;
                }
            }
            for (int y = cover.top(); y <= cover.bottom(); ++y) {
                for (int x = cover.left(); x <= cover.right(); ++x)
                    EXPECT_EQ(shown.pixel(x, y), qRgb(255, 0, 0)) << zoom << ": " << x << ", " << y;
            }
            EXPECT_LE(marks, 9) << zoom;
            EXPECT_TRUE(zoom < 1 || marks == 1);
        }
    }
    play("key M\nwait");
    EXPECT_EQ(view.viewport()->grab().toImage().pixel(view.mapFromScene(clipped)), qRgb(120, 120, 120));
}

TEST(ClippingMarksOfAPicture, AreFoundAtEverySizeAndPlace)
{
    Ondrel::Image image(37, 21);
    std::fill_n(image.data, 37 * 21 * 4, std::uint16_t(30000));
    image.data[(13 * 37 + 29) * 4 + 1] = 65535;
    std::fill_n(image.data + (4 * 37 + 36) * 4, 3, std::uint16_t(0));
    const ClippingMarks marks(image);
    for (const double scale : {4.0, 1.0, 0.8, 0.5, 0.3, 0.1, 0.03}) {
        const QTransform transform = QTransform::fromScale(scale, scale) * QTransform::fromTranslate(3.25, -1.5);
        const QImage seen = marks.on(QRect(-5, -5, 170, 100), transform);
        ASSERT_FALSE(seen.isNull()) << scale;
        const auto at = [&](QPointF pixel) { // below its middle
            const QPointF point = transform.map(pixel);
            return seen.pixel(int(std::floor(point.x())) + 5, int(std::floor(point.y())) + 5);
        };
        EXPECT_EQ(at(QPointF(29.5, 13.5)), qRgb(255, 0, 0)) << scale;
        if (scale > 0.1) {
            EXPECT_EQ(at(QPointF(36.5, 4.5)), qRgb(0, 0, 255)) << scale;
        }
        if (scale > 0.3) {
            EXPECT_EQ(at(QPointF(10, 10)), 0u) << scale;
        }
    }
    EXPECT_TRUE(marks.on(QRect(0, 0, 8, 8), QTransform()).isNull());
    EXPECT_TRUE(marks.on(QRect(500, 500, 8, 8), QTransform()).isNull());
    EXPECT_TRUE(marks.on(QRect(0, 0, 50, 50), QTransform::fromScale(0, 0)).isNull());
    EXPECT_TRUE(ClippingMarks(Ondrel::Image()).on(QRect(0, 0, 8, 8), QTransform()).isNull());
}
