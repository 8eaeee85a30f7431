#include "sheets.h"
#include "controls.h"

#include <ondrel/widgets/comboboxbase.h>
#include <ondrel/widgets/comboboxpopup.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>

#include <memory>

namespace
{

constexpr int kMargin = 12, kTitle = 20, kGap = 14, kCellWidth = 224;

// Lets timers, layouts and background work go on.
void settle()
{
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 30;)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
}

QImage pictureOf(QWidget* widget, double scale)
{
    QImage image((QSizeF(widget->size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(widget->palette().color(QPalette::Window));
    widget->render(&image);
    return image;
}

QImage pictureOf(const Control& control, const State& state, const QPalette& palette, double scale)
{
    QWidget window;
    window.setPalette(palette);
    window.resize(control.size);
    window.setFocusPolicy(Qt::StrongFocus); // takes the focus that the control is not to have yet
    window.setFocus();
    QWidget* const widget = control.make(&window);
    widget->setGeometry(QRect(QPoint(0, 0), control.size));
    window.show();
    settle();
    state.apply(widget);
    settle();
    return pictureOf(&window, scale);
}

} // namespace

QImage stateSheet(const QPalette& palette, double scale)
{
    QApplication::setPalette(palette);
    const std::vector<Control> controls = allControls();
    const std::vector<State> states = allStates();
    int height = 2 * kMargin + 2 * kTitle;
    for (const Control& control : controls)
        height += kTitle + control.size.height() + kGap;
    const QSizeF size(2 * kMargin + int(states.size()) * kCellWidth, height);
    QImage sheet((size * scale).toSize(), QImage::Format_RGB32);
    sheet.setDevicePixelRatio(scale);
    sheet.fill(palette.color(QPalette::Window));

    QPainter painter(&sheet);
    painter.setPen(palette.color(QPalette::WindowText));
    for (std::size_t column = 0; column < states.size(); ++column)
        painter.drawText(kMargin + int(column) * kCellWidth, kMargin + 14, states[column].name);
    int y = kMargin + 2 * kTitle;
    for (const Control& control : controls) {
        painter.drawText(kMargin, y + 14, control.name);
        y += kTitle;
        for (std::size_t column = 0; column < states.size(); ++column)
            painter.drawImage(kMargin + int(column) * kCellWidth, y,
                              pictureOf(control, states[column], palette, scale));
        y += control.size.height() + kGap;
    }
    return sheet;
}

QImage sceneSheet(double zoom)
{
    QApplication::setPalette(darkPalette());
    QGraphicsScene scene;
    scene.setBackgroundBrush(QColor(32, 32, 32));
    int y = 0;
    for (const Control& control : allControls()) {
        if (control.size.height() > 120)
            continue;
        QWidget* const widget = control.make(nullptr);
        widget->resize(control.size);
        scene.addWidget(widget)->setPos(0, y);
        y += control.size.height() + 6;
    }
    QGraphicsView view(&scene);
    view.setRenderHint(QPainter::Antialiasing);
    view.setFrameShape(QFrame::NoFrame);
    view.scale(zoom, zoom);
    view.resize(int(230 * zoom), int((y + 20) * zoom));
    view.show();
    settle();
    return pictureOf(&view, 1.0);
}

QImage popupSheet(double scale)
{
    QApplication::setPalette(darkPalette());
    std::vector<QImage> pictures;
    for (const Control& control : allControls()) {
        std::unique_ptr<QWidget> widget(control.make(nullptr));
        auto* const box = qobject_cast<Ondrel::ComboBoxBase*>(widget.get());
        if (!box)
            continue;
        box->resize(control.size);
        box->show();
        box->showPopup();
        if (auto* const thumbnails = qobject_cast<Ondrel::ThumbnailComboBox*>(box)) {
            thumbnails->updateLoadingAnimation();
            thumbnails->setRequestedThumbnail(1, nullptr);
        }
        settle();
        pictures.push_back(pictureOf(box->popup(), scale));
        box->hidePopup();
    }
    QSizeF size(2 * kMargin, 2 * kMargin);
    for (const QImage& picture : pictures) {
        const QSizeF own = QSizeF(picture.size()) / scale;
        size = QSizeF(std::max(size.width(), own.width() + 2 * kMargin), size.height() + own.height() + kGap);
    }
    QImage sheet((size * scale).toSize(), QImage::Format_RGB32);
    sheet.setDevicePixelRatio(scale);
    sheet.fill(darkPalette().color(QPalette::Window));
    QPainter painter(&sheet);
    double y = kMargin;
    for (const QImage& picture : pictures) {
        painter.drawImage(QPointF(kMargin, y), picture);
        y += picture.height() / scale + kGap;
    }
    return sheet;
}
