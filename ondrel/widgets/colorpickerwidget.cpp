#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/hsl_p.h>
#include <ondrel/widgets/labconverter_p.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>
#include <ondrel/widgets/sliderscale_p.h>

#include <QComboBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <climits>
#include <cmath>

namespace Ondrel
{
namespace
{

double share(const PrecisionSlider& slider)
{
    return double(slider.valueAsInt64()) / 65535.0;
}

unsigned short sample(const PrecisionSlider& slider)
{
    return static_cast<unsigned short>(slider.valueAsInt64());
}

// Towards zero. A number beyond all samples, which a slider takes from a program, still has to fit.
int truncated(double v)
{
    return int(std::clamp<int64_t>(truncatedToInt64(v), INT_MIN, INT_MAX));
}

QString shortText(double v)
{
    return QString::number(v, 'g', 6);
}

} // namespace

ColorPickerWidget::ColorPickerWidget(QWidget* parent, unsigned short red, unsigned short green, unsigned short blue,
                                     unsigned short alpha, bool showAlpha)
    : QWidget(parent)
    , m_radialPicker(new RadialColorPickerWidget(this))
    , m_lab(std::make_unique<LabConverter>())
{
    m_radialPicker->setObjectName(QStringLiteral("radialPicker"));
    setAccessibleName(tr("Color"));
    m_colorSpaceComboBox = makeColorSpaceComboBox();
    makeSliders();
    arrange(showAlpha);
    connectHandlers();
    setColor(Color(red, green, blue, alpha));
}

ColorPickerWidget::~ColorPickerWidget()
{
    if (m_eyeDropperActive)
        releaseGrabs();
}

PrecisionSlider* ColorPickerWidget::makeSlider(const char* objectName, const QString& caption, const char* minimum,
                                               const char* maximum, const char* value, bool integer)
{
    auto* slider = new PrecisionSlider(
        caption, QString::fromLatin1(minimum), QString::fromLatin1(maximum), QString::fromLatin1(value),
        integer ? PrecisionSlider::Integer : PrecisionSlider::Double, PrecisionSlider::Range, this);
    slider->setObjectName(QString::fromLatin1(objectName));
    return slider;
}

void ColorPickerWidget::makeSliders()
{
    m_redSlider = makeSlider("redSlider", QStringLiteral("Red"), "0", "65535", "0", true);
    m_greenSlider = makeSlider("greenSlider", QStringLiteral("Green"), "0", "65535", "0", true);
    m_blueSlider = makeSlider("blueSlider", QStringLiteral("Blue"), "0", "65535", "0", true);
    m_hueSlider = makeSlider("hueSlider", QStringLiteral("Hue"), "0", "360", "0", false);
    m_saturationSlider = makeSlider("saturationSlider", QStringLiteral("Saturation"), "0", "1", "0", false);
    m_lightnessSlider = makeSlider("lightnessSlider", QStringLiteral("Lightness"), "0", "1", "0", false);
    m_labLSlider = makeSlider("labLSlider", QStringLiteral("L"), "0", "65535", "0", true);
    m_labASlider = makeSlider("labASlider", QStringLiteral("a"), "0", "65535", "32896", true);
    m_labBSlider = makeSlider("labBSlider", QStringLiteral("b"), "0", "65535", "32896", true);
    m_alphaSlider = makeSlider("alphaSlider", QStringLiteral("Alpha"), "0", "65535", "65535", true);
}

QComboBox* ColorPickerWidget::makeColorSpaceComboBox()
{
    auto* comboBox = new QComboBox(this);
    comboBox->setObjectName(QStringLiteral("colorSpaceComboBox"));
    comboBox->setAccessibleName(tr("Color space"));
    comboBox->addItems({QStringLiteral("RGB"), QStringLiteral("HSL"), QStringLiteral("CIELab")});
    return comboBox;
}

QWidget* ColorPickerWidget::makePage(PrecisionSlider* first, PrecisionSlider* second, PrecisionSlider* third)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    for (PrecisionSlider* slider : {first, second, third})
        layout->addWidget(slider);
    return page;
}

void ColorPickerWidget::arrange(bool showAlpha)
{
    m_pages = new QStackedWidget(this);
    m_pages->setObjectName(QStringLiteral("pages"));
    m_pages->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
    m_pages->addWidget(makePage(m_redSlider, m_greenSlider, m_blueSlider));
    m_pages->addWidget(makePage(m_hueSlider, m_saturationSlider, m_lightnessSlider));
    m_pages->addWidget(makePage(m_labLSlider, m_labASlider, m_labBSlider));

    auto* alpha = new QWidget(this);
    auto* alphaLayout = new QVBoxLayout(alpha);
    alphaLayout->setContentsMargins(0, 0, 0, 0);
    alphaLayout->addWidget(m_alphaSlider, 0, Qt::AlignTop);
    m_alphaSlider->setVisible(showAlpha);
    m_eyeDropperButton = new QPushButton(QStringLiteral("Eye Dropper"), this);
    m_eyeDropperButton->setObjectName(QStringLiteral("eyeDropperButton"));

    m_layout = new QVBoxLayout(this);
    m_layout->addWidget(m_radialPicker);
    m_layout->addWidget(m_colorSpaceComboBox);
    m_layout->addWidget(m_pages);
    m_layout->addWidget(alpha);
    m_layout->addWidget(m_eyeDropperButton);
}

// What follows a change is connected before what reports it, so that the RGB sliders are right by then.
void ColorPickerWidget::connectHandlers()
{
    connect(m_colorSpaceComboBox, SIGNAL(activated(int)), m_pages, SLOT(setCurrentIndex(int)));
    connect(m_colorSpaceComboBox, SIGNAL(activated(QString)), this, SLOT(replaceColorspaceComboBox()));
    for (PrecisionSlider* slider : {m_redSlider, m_greenSlider, m_blueSlider})
        connect(slider, SIGNAL(valueChanged(int64_t)), this, SLOT(rgbChanged()));
    for (PrecisionSlider* slider : {m_hueSlider, m_saturationSlider, m_lightnessSlider})
        connect(slider, SIGNAL(valueChanged(double)), this, SLOT(hslChanged()));
    for (PrecisionSlider* slider : {m_labLSlider, m_labASlider, m_labBSlider})
        connect(slider, SIGNAL(valueChanged(int64_t)), this, SLOT(cieLabChanged()));
    connect(m_radialPicker, SIGNAL(changed()), this, SLOT(radialChanged()));
    connect(m_eyeDropperButton, SIGNAL(clicked()), this, SLOT(beginEyeDropper()));

    for (PrecisionSlider* slider :
         {m_redSlider, m_greenSlider, m_blueSlider, m_labLSlider, m_labASlider, m_labBSlider, m_alphaSlider})
        connect(slider, SIGNAL(valueChanged(int64_t)), this, SLOT(signalValueChanged()));
    for (PrecisionSlider* slider : {m_hueSlider, m_saturationSlider, m_lightnessSlider})
        connect(slider, SIGNAL(valueChanged(double)), this, SLOT(signalValueChanged()));
    connect(m_radialPicker, SIGNAL(changed()), this, SLOT(signalValueChanged()));
}

void ColorPickerWidget::setUserData(const QVariant& userData)
{
    m_userData = userData;
}

ColorPickerWidget::ColorSpacePage ColorPickerWidget::colorSpacePage() const
{
    return ColorSpacePage(m_pages->currentIndex());
}

void ColorPickerWidget::setColorSpacePage(ColorSpacePage page)
{
    const int index = int(page);
    m_pages->setCurrentIndex(index >= 0 && index < m_pages->count() ? index : int(RGB));
    m_colorSpaceComboBox->setCurrentIndex(m_pages->currentIndex());
}

// Inside a proxy a combo box whose popup was open once does not open it in the right place again.
void ColorPickerWidget::replaceColorspaceComboBox()
{
    QComboBox* const old = m_colorSpaceComboBox;
    const int index = old->currentIndex();
    old->setObjectName(QString());
    old->disconnect(this);
    m_colorSpaceComboBox = makeColorSpaceComboBox();
    m_colorSpaceComboBox->setCurrentIndex(index);
    delete m_layout->replaceWidget(old, m_colorSpaceComboBox);
    old->hide();
    old->deleteLater(); // it may be the sender
    connect(m_colorSpaceComboBox, SIGNAL(activated(int)), m_pages, SLOT(setCurrentIndex(int)));
    connect(m_colorSpaceComboBox, SIGNAL(activated(QString)), this, SLOT(replaceColorspaceComboBox()));
    m_colorSpaceComboBox->show();
}

void ColorPickerWidget::setGrabMouseAndKeyboardWidget(QWidget* widget)
{
    m_grabMouseAndKeyboardWidget = widget;
}

void ColorPickerWidget::blockColorSpaceFieldSignals(bool block)
{
    for (PrecisionSlider* slider : {m_redSlider, m_greenSlider, m_blueSlider, m_hueSlider, m_saturationSlider,
                                    m_lightnessSlider, m_labLSlider, m_labASlider, m_labBSlider})
        slider->blockSignals(block);
}

void ColorPickerWidget::writeRgb(int red, int green, int blue)
{
    m_redSlider->setValue(int64_t{red});
    m_greenSlider->setValue(int64_t{green});
    m_blueSlider->setValue(int64_t{blue});
}

void ColorPickerWidget::setColor(const Ondrel::Color& color)
{
    blockColorSpaceFieldSignals(true);
    m_alphaSlider->blockSignals(true);
    writeRgb(color.red, color.green, color.blue);
    m_alphaSlider->setValue(int64_t{color.alpha});
    updateHSL();
    updateCIELab();
    updateSliderGradients();
    m_alphaSlider->blockSignals(false);
    blockColorSpaceFieldSignals(false);
}

void ColorPickerWidget::rgbChanged()
{
    blockColorSpaceFieldSignals(true);
    updateHSL();
    updateCIELab();
    blockColorSpaceFieldSignals(false);
    updateSliderGradients();
}

void ColorPickerWidget::updateHSL()
{
    const Hsl hsl = toHsl({share(*m_redSlider), share(*m_greenSlider), share(*m_blueSlider)});
    m_hueSlider->setValue(shortText(hsl.hue));
    m_saturationSlider->setValue(shortText(hsl.saturation));
    m_lightnessSlider->setValue(shortText(hsl.lightness));
    m_radialPicker->setColor(hsl.hue, hsl.saturation, hsl.lightness);
}

void ColorPickerWidget::hslChanged()
{
    blockColorSpaceFieldSignals(true);
    const Hsl hsl = {m_hueSlider->valueAsDouble(), m_saturationSlider->valueAsDouble(),
                     m_lightnessSlider->valueAsDouble()};
    if (hsl.saturation == 0) {
        const int grey = truncated(hsl.lightness * 65535.0);
        writeRgb(grey, grey, grey);
    } else {
        const auto rounded = [](double v) { return truncated(std::round(v * 65535.0) + 0.5); };
        const Rgb rgb = toRgb(hsl);
        writeRgb(rounded(rgb.red), rounded(rgb.green), rounded(rgb.blue));
    }
    updateCIELab();
    m_radialPicker->setColor(hsl.hue, hsl.saturation, hsl.lightness);
    blockColorSpaceFieldSignals(false);
    updateSliderGradients();
}

void ColorPickerWidget::radialChanged()
{
    double hue = 0, saturation = 0, lightness = 0;
    m_radialPicker->color(hue, saturation, lightness);
    blockColorSpaceFieldSignals(true);
    m_hueSlider->setValue(shortText(hue));
    m_saturationSlider->setValue(shortText(saturation));
    m_lightnessSlider->setValue(shortText(lightness));
    blockColorSpaceFieldSignals(false);
    hslChanged();
}

void ColorPickerWidget::prepareTransforms()
{
    m_lab->prepare();
}

void ColorPickerWidget::cieLabChanged()
{
    blockColorSpaceFieldSignals(true);
    const LabConverter::Pixel lab = {sample(*m_labLSlider), sample(*m_labASlider), sample(*m_labBSlider)};
    LabConverter::Pixel rgb;
    prepareTransforms();
    if (m_lab->toRgb(&lab, &rgb, 1))
        writeRgb(rgb[0], rgb[1], rgb[2]);
    updateHSL();
    blockColorSpaceFieldSignals(false);
    updateSliderGradients();
}

void ColorPickerWidget::updateCIELab()
{
    const LabConverter::Pixel rgb = {sample(*m_redSlider), sample(*m_greenSlider), sample(*m_blueSlider)};
    LabConverter::Pixel lab;
    prepareTransforms();
    if (!m_lab->toLab(&rgb, &lab, 1))
        return;
    m_labLSlider->setValue(int64_t{lab[0]});
    m_labASlider->setValue(int64_t{lab[1]});
    m_labBSlider->setValue(int64_t{lab[2]});
}

void ColorPickerWidget::signalValueChanged()
{
    const Color color(sample(*m_redSlider), sample(*m_greenSlider), sample(*m_blueSlider), sample(*m_alphaSlider));
    Q_EMIT valueChanged(color, m_userData);
}

} // namespace Ondrel
