#include "app/logging.h"
#include "plots/counter.h"
#include "plots/qor_toolbar.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>

namespace {

constexpr int iconPx = 22;
constexpr int defaultRateHz = 100;
constexpr int maxRateHz = 430;
constexpr int defaultSamplesToTake = 1000000;
constexpr int maxSamplesToTake = 10000000;
constexpr int samplesToTakeStep = 1000;
constexpr QSize logoSize(77, 30);
constexpr int logoMarginPx = 20;

QLabel* scaledPicture(const QString& file, const QSize& maximum, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setPixmap(QIcon(file).pixmap(maximum));
    label->setScaledContents(true);
    label->setMaximumSize(maximum);
    return label;
}

} // namespace

void MainWindow::addToolBar()
{
    logMessage().debug() << "Constructing ToolBar";
    auto* toolBar = new Qor_ToolBar(this);
    toolBar->setObjectName(QStringLiteral("toolBar"));
    toolBar->setAllowedAreas(Qt::TopToolBarArea);
    toolBar->setMovable(false);
    toolBar->setFloatable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolBar->setIconSize(QSize(iconPx, iconPx));

    startAction = toolBar->addAction(QIcon(QStringLiteral(":/images/go.xpm")), tr("Start"));
    startAction->setObjectName(QStringLiteral("startAction"));
    startAction->setCheckable(true);
    clearAction = toolBar->addAction(QIcon(QStringLiteral(":/images/clear.png")), tr("Clear"));
    clearAction->setObjectName(QStringLiteral("clearAction"));

    samplingRateCounter =
        new Counter(toolBar, tr("Sampling rate [Hz]"), QString(), 1, maxRateHz, 1, nullptr);
    samplingRateCounter->setObjectName(QStringLiteral("samplingRateCounter"));
    samplingRateCounter->spinBox->setValue(defaultRateHz);
    updateRateCounter = new Counter(toolBar, tr("Update rate [Hz]"), QString(), 1, maxRateHz, 1,
                                    samplingRateCounter);
    updateRateCounter->setObjectName(QStringLiteral("updateRateCounter"));
    updateRateCounter->spinBox->setValue(defaultRateHz);
    updateRateCounter->wishedValue = defaultRateHz;

    oscilloscopeRadio = new QRadioButton(tr("Oscilloscope"), toolBar);
    oscilloscopeRadio->setObjectName(QStringLiteral("oscilloscopeRadio"));
    oscilloscopeRadio->setChecked(true);
    pointingRadio = new QRadioButton(tr("Pointing mode"), toolBar);
    pointingRadio->setObjectName(QStringLiteral("pointingRadio"));
    samplesToTakeCounter = new Counter(toolBar, tr("Samples to take"), QString(), 1,
                                       maxSamplesToTake, samplesToTakeStep, nullptr);
    samplesToTakeCounter->setObjectName(QStringLiteral("samplesToTakeCounter"));
    samplesToTakeCounter->spinBox->setValue(defaultSamplesToTake);
    // On the way to 2000 the digits read 2: a run that is being lengthened must not end there.
    samplesToTakeCounter->spinBox->setKeyboardTracking(false);
    samplesToTakeCounter->setEnabled(false);

    toolBar->addSeparator();
    toolBar->addWidget(updateRateCounter);
    toolBar->addWidget(samplingRateCounter);
    toolBar->addSeparator();
    toolBar->addWidget(oscilloscopeRadio);
    toolBar->addWidget(pointingRadio);
    toolBar->addWidget(samplesToTakeCounter);
    toolBar->addSeparator();
    addToolBarEnd(*toolBar);
    QMainWindow::addToolBar(Qt::TopToolBarArea, toolBar);
}

void MainWindow::addToolBarEnd(QToolBar& toolBar)
{
    recordingLight =
        scaledPicture(QStringLiteral(":/images/red_light.png"), QSize(iconPx, iconPx), &toolBar);
    recordingLight->setObjectName(QStringLiteral("recordingLight"));
    recordingText = new QLabel(tr("Data recording disabled"), &toolBar);
    recordingText->setObjectName(QStringLiteral("recordingText"));
    recordingText->setMargin(4);

    auto* stretch = new QWidget(&toolBar);
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    QLabel* logo =
        scaledPicture(QStringLiteral(":/images/Zevlogo1_freigestellt.gif"), logoSize, &toolBar);
    logo->setObjectName(QStringLiteral("logo"));
    auto* margin = new QWidget(&toolBar);
    margin->setFixedWidth(logoMarginPx);

    toolBar.addWidget(recordingLight);
    toolBar.addWidget(recordingText);
    toolBar.addWidget(stretch);
    toolBar.addWidget(logo);
    toolBar.addWidget(margin);
}
