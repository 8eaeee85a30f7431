#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/color.h>

#include <QPointer>
#include <QVariant>
#include <QWidget>

#include <memory>

class QComboBox;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace Ondrel
{

class LabConverter;
class PrecisionSlider;
class RadialColorPickerWidget;

// Chooses a colour on a wheel, with sliders for RGB, HSL or CIELab, or from the screen with an eye dropper. The RGB
// sliders hold the colour; everything else follows them. RGB numbers are taken to be in the display's profile.
// User-interface thread only.
class ONDREL_EXPORT ColorPickerWidget : public QWidget
{
    Q_OBJECT
public:
    enum ColorSpacePage { RGB = 0, HSL = 1, CIELab = 2 };

    // Without `showAlpha` the slider of alpha is hidden.
    ColorPickerWidget(QWidget* parent, unsigned short red, unsigned short green, unsigned short blue,
                      unsigned short alpha, bool showAlpha);
    ~ColorPickerWidget() override;

    // Handed back with each change.
    void setUserData(const QVariant& userData);

    ColorSpacePage colorSpacePage() const;
    void setColorSpacePage(ColorSpacePage page); // anything else counts as RGB

    // The widget that gets the mouse and the keyboard for the eye dropper: in a popup or a scene this one cannot. Null
    // for this one.
    void setGrabMouseAndKeyboardWidget(QWidget* widget);
    bool isEyeDropperActive() const;
    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    // Once for each action of the user.
    void valueChanged(const Ondrel::Color& color, const QVariant& userData);
    void eyeDropperStarted();
    void eyeDropperCompleted();

public Q_SLOTS:
    void setColor(const Ondrel::Color& color); // emits nothing
    void replaceColorspaceComboBox();
    void rgbChanged();
    void hslChanged();
    void cieLabChanged();
    void radialChanged();
    void signalValueChanged();

    // The colour under the mouse is taken while a button is held and at its release, which ends it; any key ends it
    // too.
    void beginEyeDropper();
    void endEyeDropper();

protected:
    void blockColorSpaceFieldSignals(bool block); // of the nine sliders of colours
    void updateHSL();
    void updateCIELab();
    void updateSliderGradients();
    void prepareTransforms();
    void pickColorUnderCursor();

private:
    PrecisionSlider* makeSlider(const char* objectName, const QString& caption, const char* minimum,
                                const char* maximum, const char* value, bool integer);
    QComboBox* makeColorSpaceComboBox();
    QWidget* makePage(PrecisionSlider* first, PrecisionSlider* second, PrecisionSlider* third);
    void makeSliders();
    void arrange(bool showAlpha);
    void connectHandlers();
    void writeRgb(int red, int green, int blue);
    void updateHslGradients();
    void updateLabGradients();
    void releaseGrabs();

    RadialColorPickerWidget* m_radialPicker;
    QComboBox* m_colorSpaceComboBox;
    PrecisionSlider *m_redSlider, *m_greenSlider, *m_blueSlider;
    PrecisionSlider *m_hueSlider, *m_saturationSlider, *m_lightnessSlider;
    PrecisionSlider *m_labLSlider, *m_labASlider, *m_labBSlider;
    QStackedWidget* m_pages;
    PrecisionSlider* m_alphaSlider;
    QPushButton* m_eyeDropperButton;
    QVBoxLayout* m_layout;
    bool m_eyeDropperActive = false;
    bool m_eyeDropperMouseDown = false;
    QPointer<QWidget> m_grabMouseAndKeyboardWidget, m_grabbingWidget, m_previousMouseGrabber, m_previousKeyboardGrabber;
    std::unique_ptr<LabConverter> m_lab;
    QVariant m_userData;
};

} // namespace Ondrel
