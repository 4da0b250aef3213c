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

void StageReadouts::take(const QPointF& position, const StageValues& values,
                         std::size_t averagedSamples)
{
    averageX.add(position.x(), averagedSamples);
    averageY.add(position.y(), averagedSamples);
    averageI.add(values.intensity * intensityScale, averagedSamples);
    latest = values;
}

void StageReadouts::show(int decimals)
{
    display(numbers.x, averageX.mean(), decimals);
    display(numbers.y, averageY.mean(), decimals);
    display(numbers.intensity, averageI.mean(), intensityDecimals);
    barX.setValue(latest.rx * piezoScale);
    barY.setValue(latest.ry * piezoScale);
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
