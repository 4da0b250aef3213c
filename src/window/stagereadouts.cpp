#include "window/stagereadouts.h"

#include "model/displayvalue.h"
#include "plots/colorscalesframe.h"
#include "plots/thermoslider.h"

#include <QHBoxLayout>
#include <QLCDNumber>

namespace {

constexpr int intensityDecimals = 2;
constexpr int stripWidthPx = 14;

void dress(QLCDNumber& number)
{
    QPalette palette(Qt::black);
    palette.setColor(QPalette::WindowText, Qt::green);
    number.setPalette(palette);
    number.setAutoFillBackground(true);
    number.setSegmentStyle(QLCDNumber::Flat);
}

ThermoSlider& makeBar(const char* name, Stage stage, QHBoxLayout& layout, QWidget& parent)
{
    auto* strip = new ColorScalesFrame(&parent);
    strip->setFixedWidth(stripWidthPx);
    auto* bar = new ThermoSlider(&parent);
    bar->setObjectName(QLatin1String(name) + QString::number(numberOf(stage)));
    layout.addWidget(strip);
    layout.addWidget(bar);
    return *bar;
}

void display(QLCDNumber& number, double value, int decimals)
{
    number.display(QString::number(value, 'f', decimals));
}

} // namespace

StageReadouts::StageReadouts(Stage stage, const Numbers& lcds, const BarLayouts& layouts,
                             QWidget& parent)
    : numbers(lcds)
    , barX(makeBar("thermoRX", stage, layouts.x, parent))
    , barY(makeBar("thermoRY", stage, layouts.y, parent))
{
    for (QLCDNumber* number : {&numbers.x, &numbers.y, &numbers.intensity})
        dress(*number);
    reset();
}

void StageReadouts::show(const QPointF& position, const StageValues& values, int decimals,
                         std::size_t averagedSamples)
{
    const double intensityV = values.intensity * intensityScale;
    display(numbers.x, averageX.add(position.x(), averagedSamples), decimals);
    display(numbers.y, averageY.add(position.y(), averagedSamples), decimals);
    display(numbers.intensity, averageI.add(intensityV, averagedSamples), intensityDecimals);
    barX.setValue(values.rx * piezoScale);
    barY.setValue(values.ry * piezoScale);
}

void StageReadouts::clearAverages()
{
    averageX.clear();
    averageY.clear();
    averageI.clear();
}

void StageReadouts::reset()
{
    clearAverages();
    for (QLCDNumber* number : {&numbers.x, &numbers.y, &numbers.intensity})
        display(*number, 0.0, intensityDecimals);
    barX.setValue(0.0);
    barY.setValue(0.0);
}
