#include "window/monitortoolbar.h"

#include "app/logging.h"
#include "plots/counter.h"
#include "plots/qor_toolbar.h"
#include "window/ratelimits.h"
#include "window/windowtext.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QRadioButton>
#include <QSpinBox>

#include <algorithm>

namespace {

constexpr int iconPx = 22;
constexpr int defaultRateHz = 100;
constexpr int defaultSamplesToTake = 1000000;
constexpr int maxSamplesToTake = 10000000;
constexpr int samplesToTakeStep = 1000;
constexpr QSize logoSize(77, 30);
constexpr int logoMarginPx = 20;
constexpr int recordingTextMarginPx = 4;

template <typename Object>
Object* named(Object* object, const char* name)
{
    object->setObjectName(QLatin1String(name));
    return object;
}

QLabel* scaledPicture(const QString& file, const QSize& maximum, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setPixmap(QIcon(file).pixmap(maximum));
    label->setScaledContents(true);
    label->setMaximumSize(maximum);
    return label;
}

} // namespace

MonitorToolBar::MonitorToolBar(QMainWindow& window)
    : bar(named(new Qor_ToolBar(&window), "toolBar"))
{
    logMessage().debug() << "Constructing ToolBar";
    bar->setAllowedAreas(Qt::TopToolBarArea);
    bar->setMovable(false);
    bar->setFloatable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setIconSize(QSize(iconPx, iconPx));
    addActions();
    bar->addSeparator();
    addCounters();
    bar->addSeparator();
    addModes();
    bar->addSeparator();
    addRecordingState();
    addLogo();
    window.addToolBar(Qt::TopToolBarArea, bar);
}

void MonitorToolBar::addActions()
{
    start = named(bar->addAction(QIcon(QStringLiteral(":/images/go.xpm")), WindowText::tr("Start")),
                  "startAction");
    start->setCheckable(true);
    clear =
        named(bar->addAction(QIcon(QStringLiteral(":/images/clear.png")), WindowText::tr("Clear")),
              "clearAction");
}

void MonitorToolBar::addCounters()
{
    samplingRate = named(new Counter(bar, WindowText::tr("Sampling rate [Hz]"), QString(), 1,
                                     RateLimits::slowLineMaxHz, 1, nullptr),
                         "samplingRateCounter");
    samplingRate->spinBox->setValue(defaultRateHz);
    updateRate = named(new Counter(bar, WindowText::tr("Update rate [Hz]"), QString(), 1,
                                   RateLimits::slowLineMaxHz, 1, samplingRate),
                       "updateRateCounter");
    updateRate->spinBox->setValue(defaultRateHz);
    updateRate->wishedValue = defaultRateHz;
    bar->addWidget(updateRate);
    bar->addWidget(samplingRate);
}

void MonitorToolBar::addModes()
{
    oscilloscope =
        named(new QRadioButton(WindowText::tr("Oscilloscope"), bar), "oscilloscopeRadio");
    oscilloscope->setChecked(true);
    pointing = named(new QRadioButton(WindowText::tr("Pointing mode"), bar), "pointingRadio");
    samplesToTake = named(new Counter(bar, WindowText::tr("Samples to take"), QString(), 1,
                                      maxSamplesToTake, samplesToTakeStep, nullptr),
                          "samplesToTakeCounter");
    samplesToTake->spinBox->setValue(defaultSamplesToTake);
    // On the way to 2000 the digits read 2: a run that is being lengthened must not end there.
    samplesToTake->spinBox->setKeyboardTracking(false);
    samplesToTake->setEnabled(false);
    for (QWidget* item : {static_cast<QWidget*>(oscilloscope), static_cast<QWidget*>(pointing),
                          static_cast<QWidget*>(samplesToTake)})
        bar->addWidget(item);
}

void MonitorToolBar::addRecordingState()
{
    recordingLight = named(scaledPicture(QString(), QSize(iconPx, iconPx), bar), "recordingLight");
    recordingText = named(new QLabel(bar), "recordingText");
    recordingText->setMargin(recordingTextMarginPx);
    // What stands behind the text stays where it is, whatever the text says.
    int width = 0;
    for (const bool recording : {true, false}) {
        showRecording(recording);
        width = std::max(width, recordingText->sizeHint().width());
    }
    recordingText->setMinimumWidth(width);
    bar->addWidget(recordingLight);
    bar->addWidget(recordingText);
}

void MonitorToolBar::showRecording(bool recording)
{
    const QIcon light(recording ? QStringLiteral(":/images/green_light.png")
                                : QStringLiteral(":/images/red_light.png"));
    recordingLight->setPixmap(light.pixmap(recordingLight->maximumSize()));
    recordingText->setText(recording ? WindowText::tr("Data recording enabled")
                                     : WindowText::tr("Data recording disabled"));
}

void MonitorToolBar::addLogo()
{
    auto* stretch = new QWidget(bar);
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    QLabel* logo = named(
        scaledPicture(QStringLiteral(":/images/Zevlogo1_freigestellt.gif"), logoSize, bar), "logo");
    auto* margin = new QWidget(bar);
    margin->setFixedWidth(logoMarginPx);
    bar->addWidget(stretch);
    bar->addWidget(logo);
    bar->addWidget(margin);
}

bool MonitorToolBar::isRunning() const
{
    return start->isChecked();
}

bool MonitorToolBar::isPointing() const
{
    return pointing->isChecked();
}

int MonitorToolBar::samplingRateHz() const
{
    return samplingRate->spinBox->value();
}

int MonitorToolBar::updateRateHz() const
{
    return updateRate->spinBox->value();
}

int MonitorToolBar::wantedSamples() const
{
    samplesToTake->spinBox->interpretText();
    return samplesToTake->spinBox->value();
}

void MonitorToolBar::showRunning(bool running, bool rateLocked)
{
    if (isPointing())
        samplesToTake->setEnabled(true);
    samplingRate->setEnabled(!running && !rateLocked);
    start->setText(running ? WindowText::tr("Stop") : WindowText::tr("Start"));
    // Kept as it always was: the icon shows the state of the button before this call. Whoever
    // starts or stops the acquisition has set that already.
    start->setIcon(QIcon(isRunning() ? QStringLiteral(":/images/stop.xpm")
                                     : QStringLiteral(":/images/go.xpm")));
    start->setChecked(running);
}

void MonitorToolBar::enableStart(bool on) const
{
    start->setEnabled(on);
}

void MonitorToolBar::enableSamplesToTake(bool on)
{
    samplesToTake->setEnabled(on);
}

RateField MonitorToolBar::rateField() const
{
    const QSpinBox& box = *samplingRate->spinBox;
    return {box.maximum(), box.value(), samplingRate->isEnabled()};
}

void MonitorToolBar::showRateField(const RateField& field)
{
    QSpinBox& box = *samplingRate->spinBox;
    // Setting an equal value would throw away what the user is typing.
    if (box.maximum() != field.maximumHz)
        box.setMaximum(field.maximumHz);
    if (box.value() != field.valueHz)
        box.setValue(field.valueHz);
    samplingRate->setEnabled(field.enabled);
}

void MonitorToolBar::setMaxRate(int maxHz)
{
    samplingRate->spinBox->setMaximum(maxHz);
    updateRate->spinBox->setMaximum(maxHz);
}
