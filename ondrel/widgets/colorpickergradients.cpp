#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/labconverter_p.h>
#include <ondrel/widgets/precisionslider.h>

#include <QColor>

#include <algorithm>
#include <array>

// What the grooves of the sliders show: the colours that moving one slider alone would give.

namespace Ondrel
{
namespace
{

double inUnit(double v)
{
    return std::clamp(v, 0.0, 1.0);
}

double share(const PrecisionSlider& slider)
{
    return inUnit(double(slider.valueAsInt64()) / 65535.0);
}

} // namespace

void ColorPickerWidget::updateSliderGradients()
{
    const double r = share(*m_redSlider), g = share(*m_greenSlider), b = share(*m_blueSlider);
    m_redSlider->setGradient(QColor::fromRgbF(0, g, b), QColor::fromRgbF(1, g, b));
    m_greenSlider->setGradient(QColor::fromRgbF(r, 0, b), QColor::fromRgbF(r, 1, b));
    m_blueSlider->setGradient(QColor::fromRgbF(r, g, 0), QColor::fromRgbF(r, g, 1));
    updateHslGradients();
    updateLabGradients();
}

void ColorPickerWidget::updateHslGradients()
{
    m_hueSlider->setGradient(QVector<QPair<double, QColor>>{{0.0, Qt::red},
                                                            {0.166, Qt::yellow},
                                                            {0.333, Qt::green},
                                                            {0.5, Qt::cyan},
                                                            {0.666, Qt::blue},
                                                            {0.833, Qt::magenta},
                                                            {1.0, Qt::red}});
    const double h = inUnit(m_hueSlider->valueAsDouble() / 360);
    const double s = inUnit(m_saturationSlider->valueAsDouble()), l = inUnit(m_lightnessSlider->valueAsDouble());
    m_saturationSlider->setGradient(QColor::fromHslF(h, 0, l), QColor::fromHslF(h, 1, l));
    m_lightnessSlider->setGradient(QColor::fromHslF(h, s, 0), QColor::fromHslF(h, s, 1));
}

void ColorPickerWidget::updateLabGradients()
{
    constexpr std::size_t stops = 5;
    PrecisionSlider* const sliders[] = {m_labLSlider, m_labASlider, m_labBSlider};
    LabConverter::Pixel current;
    for (std::size_t i = 0; i < 3; ++i)
        current[i] = static_cast<std::uint16_t>(sliders[i]->valueAsInt64());
    std::array<LabConverter::Pixel, 3 * stops> lab, rgb;
    for (std::size_t i = 0; i < lab.size(); ++i) {
        lab[i] = current;
        lab[i][i / stops] = static_cast<std::uint16_t>(double(i % stops) * 0.25 * 65535);
    }
    if (!m_lab->toRgb(lab.data(), rgb.data(), lab.size()))
        return;
    for (std::size_t slider = 0; slider < 3; ++slider) {
        QVector<QPair<double, QColor>> gradient;
        for (std::size_t i = 0; i < stops; ++i) {
            const LabConverter::Pixel& pixel = rgb[slider * stops + i];
            gradient.append(
                {double(i) * 0.25, QColor::fromRgbF(pixel[0] / 65535.0, pixel[1] / 65535.0, pixel[2] / 65535.0)});
        }
        sliders[slider]->setGradient(gradient);
    }
}

} // namespace Ondrel
