#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/precisionslider.h>

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

// The part of the colour picker that takes a colour from the screen.

namespace Ondrel
{
namespace
{

// Invalid where the screen cannot be read.
QColor colorUnderCursor()
{
    QScreen* const screen = QGuiApplication::primaryScreen();
    if (!screen)
        return QColor();
    const QPoint at = QCursor::pos();
    const QImage pixel = screen->grabWindow(0, at.x(), at.y(), 1, 1).toImage();
    return pixel.isNull() ? QColor() : pixel.pixelColor(0, 0);
}

// All digits; the slider cuts the text at its point.
QString sampleText(double share)
{
    return QString::number(share * 65535.0, 'g', 17);
}

} // namespace

bool ColorPickerWidget::isEyeDropperActive() const
{
    return m_eyeDropperActive;
}

void ColorPickerWidget::beginEyeDropper()
{
    if (m_eyeDropperActive)
        return;
    m_grabbingWidget = m_grabMouseAndKeyboardWidget ? m_grabMouseAndKeyboardWidget.data() : this;
    m_previousMouseGrabber = QWidget::mouseGrabber();
    m_previousKeyboardGrabber = QWidget::keyboardGrabber();
    m_grabbingWidget->grabMouse(Qt::CrossCursor);
    m_grabbingWidget->grabKeyboard();
    m_eyeDropperActive = true;
    m_grabbingWidget->installEventFilter(this);
    Q_EMIT eyeDropperStarted();
}

void ColorPickerWidget::releaseGrabs()
{
    m_eyeDropperActive = false;
    m_eyeDropperMouseDown = false;
    if (m_grabbingWidget) {
        m_grabbingWidget->releaseMouse();
        m_grabbingWidget->releaseKeyboard();
        m_grabbingWidget->removeEventFilter(this);
    }
    if (m_previousMouseGrabber)
        m_previousMouseGrabber->grabMouse();
    if (m_previousKeyboardGrabber)
        m_previousKeyboardGrabber->grabKeyboard();
}

void ColorPickerWidget::endEyeDropper()
{
    if (!m_eyeDropperActive)
        return;
    releaseGrabs();
    Q_EMIT eyeDropperCompleted();
}

bool ColorPickerWidget::eventFilter(QObject* object, QEvent* event)
{
    if (!m_eyeDropperActive)
        return QWidget::eventFilter(object, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_eyeDropperMouseDown = true;
        return true;
    case QEvent::MouseMove:
        if (!m_eyeDropperMouseDown)
            break;
        pickColorUnderCursor();
        return true;
    case QEvent::MouseButtonRelease:
        pickColorUnderCursor();
        endEyeDropper();
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        endEyeDropper();
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(object, event);
}

void ColorPickerWidget::pickColorUnderCursor()
{
    const QColor color = colorUnderCursor();
    if (!color.isValid())
        return;
    blockColorSpaceFieldSignals(true);
    m_alphaSlider->blockSignals(true);
    m_redSlider->setValue(sampleText(color.redF()));
    m_greenSlider->setValue(sampleText(color.greenF()));
    m_blueSlider->setValue(sampleText(color.blueF()));
    m_alphaSlider->setValue(int64_t{65535});
    updateHSL();
    updateCIELab();
    m_alphaSlider->blockSignals(false);
    blockColorSpaceFieldSignals(false);
    updateSliderGradients();
    signalValueChanged();
}

} // namespace Ondrel
