#include "params/paramsdialog.h"

#include "app/logging.h"
#include "app/switches.h"
#include "controls/waitcursor.h"
#include "link/commandframe.h"
#include "link/connection.h"
#include "link/packet.h"
#include "link/streampause.h"
#include "params/holding.h"
#include "params/parameterreading.h"
#include "params/parametersaving.h"
#include "ui_paramsdialog.h"

#include <QMessageBox>
#include <QShowEvent>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr quint8 pFactorBySoftware = 0x01;
/// By stage.
constexpr std::array<quint8, 2> adjustBySoftware{0x02, 0x04};

/// The firmware that lets software set the sensitivity also sends packets by triggers.
bool isRecent(const Connection& connection)
{
    return connection.firmwareVersion() > command::lastFirmwareWithoutSensitivity;
}

Source sourceOf(quint8 flags, quint8 bySoftware)
{
    return (flags & bySoftware) != 0 ? Source::Software : Source::External;
}

} // namespace

ParamsDialog::ParamsDialog(ParamsSources sourcesOfWindow, QWidget* parent)
    : QDialog(parent)
    , sources(std::move(sourcesOfWindow))
    , ui(makeForm())
    , views{StageParametersView(stage1Widgets()), StageParametersView(stage2Widgets())}
    , buttons(*this, exchangeButtons())
    , group(groupWidgets(), buttons, sources)
    , errorBox(new QMessageBox(QMessageBox::NoIcon, tr("Information"), tr("An error has occurred."),
                               QMessageBox::Ok, this))
{
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                   | Qt::WindowCloseButtonHint);
    setWindowModality(Qt::NonModal);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    hideGroupControls();
    connect(&group, &GroupControls::failed, this, &ParamsDialog::tell);
    connect(&group, &GroupControls::streamFailed, this, &ParamsDialog::errorStream);
    errorBox->setObjectName(QStringLiteral("errorBox"));
    errorBox->setDefaultButton(QMessageBox::Ok);
    errorBox->setModal(false);
    logMessage().debug() << "Finished constructing ParamsDialog";
}

ParamsDialog::~ParamsDialog() = default;

// The registered systems.

DetectorPair& ParamsDialog::addDetectors(Connection& connection, const ConnectionSettings& stored)
{
    systems.push_back({&connection, DetectorPair(stored)});
    return systems.back().detectors;
}

void ParamsDialog::removeDetectors(const Connection* connection)
{
    if (current && current->connection == connection) {
        current = nullptr;
        close();
    }
    systems.remove_if([&](const System& system) { return system.connection == connection; });
}

void ParamsDialog::closeIfDisconnected()
{
    if (current && !current->connection->isConnected())
        close();
}

// Opening.

void ParamsDialog::open()
{
    setWindowModality(Qt::NonModal);
    show();
}

void ParamsDialog::openDialog(QString address)
{
    const auto found = std::find_if(systems.cbegin(), systems.cend(), [&](const System& system) {
        return system.connection->address() == address;
    });
    openFor(found == systems.cend() ? nullptr : found->connection);
}

void ParamsDialog::openFor(const Connection* connection)
{
    if (isVisible())
        close();
    const auto found = std::find_if(systems.begin(), systems.end(), [&](const System& system) {
        return system.connection == connection;
    });
    if (found == systems.end())
        return;
    current = &*found;
    reset();
    open();
    raise();
    showState();
    // Showing has read once already. Who did not answer then is not waited for again.
    if (wasAnswered)
        readAndShow();
}

void ParamsDialog::reset()
{
    for (const Stage stage : bothStages) {
        viewOf(stage).reset();
        viewOf(stage).showDetector(*current->detectors[indexOf(stage)]);
        buttons.allow(holdButton(stage), false);
    }
    group.reset();
    ui->checkBoxDisplayLowRepetitionWithTriggers->setChecked(false);
}

void ParamsDialog::showState()
{
    const SystemState state = sources.stateOf(*current->connection);
    const auto path = [&](Stage stage) {
        return state.isOnCommonPath[indexOf(stage)] ? tr("Common") : tr("Subsystem");
    };
    ui->nameLabel->setText(state.label);
    ui->detectorLabel1->setText(path(Stage::One));
    ui->detectorLabel2->setText(path(Stage::Two));
}

void ParamsDialog::showEvent(QShowEvent* event)
{
    // The window system tells of a window that is not minimised any more. That is no opening.
    if (!event->spontaneous()) {
        showWhatIsOffered();
        wasAnswered = readAndShow();
    }
    QDialog::showEvent(event);
}

bool ParamsDialog::offersSensitivity() const
{
    return switches::sensitivityTuning && current && isRecent(*current->connection);
}

void ParamsDialog::showWhatIsOffered()
{
    ui->label_15->setVisible(offersSensitivity());
    for (StageParametersView& view : views)
        view.offerSensitivity(offersSensitivity());
    const bool offersTriggers =
        current && isRecent(*current->connection) && current->connection->triggerCapable();
    for (QWidget* widget : std::initializer_list<QWidget*>{
             ui->frame, ui->frame_4, ui->checkBoxDisplayLowRepetitionWithTriggers})
        widget->setVisible(offersTriggers);
}

// Exchanges.

bool ParamsDialog::isOperable() const
{
    return current && current->connection->isConnected();
}

void ParamsDialog::onQuietLink(const std::function<void()>& work)
{
    const WaitCursor waiting;
    buttons.lock();
    if (isInDoubt(::onQuietLink(*current->connection, sources.samplingRateHz(), work)))
        emit errorStream();
}

/// There is one box, so the last failure is the one that is read.
void ParamsDialog::tell(const QString& failure)
{
    errorBox->setInformativeText(failure);
    errorBox->show();
    errorBox->raise();
}

bool ParamsDialog::readAndShow()
{
    if (!isOperable())
        return false;
    ParameterReading reading;
    onQuietLink([&] {
        reading = readParameters(*current->connection);
        showReading(reading);
    });
    return reading.isAnswered;
}

void ParamsDialog::showReading(const ParameterReading& reading)
{
    if (!reading.unread.isEmpty()) {
        // An Apply behind it writes the values that are shown.
        logMessage().warning() << "Not read from" << current->connection->address()
                               << "(missing values are shown as 0):"
                               << reading.unread.join(QStringLiteral(", "));
    }
    if (reading.statusFlags)
        showFlags(*reading.statusFlags);
    for (const Stage stage : bothStages) {
        StageParametersView& view = viewOf(stage);
        const StageParameters& parameters = reading.stages[indexOf(stage)];
        if (reading.positions)
            view.showPosition((*reading.positions)[indexOf(stage)]);
        view.showParameters(parameters);
        view.showSensitivity(parameters.sensitivityMv, offersSensitivity());
        view.showDetector(*current->detectors[indexOf(stage)]);
        if (reading.statusFlags)
            offerHold(stage, statusflag::isStabilised(*reading.statusFlags, stage));
    }
    if (isRecent(*current->connection))
        ui->checkBoxDisplayLowRepetitionWithTriggers->setChecked(current->detectors.pulsedLaser
                                                                 != 0);
}

void ParamsDialog::showFlags(quint8 flags)
{
    selectPFactorSource(sourceOf(flags, pFactorBySoftware));
    for (const Stage stage : bothStages)
        viewOf(stage).selectAdjustSource(sourceOf(flags, adjustBySoftware[indexOf(stage)]));
}

void ParamsDialog::apply()
{
    if (!isOperable())
        return;
    onQuietLink([this] {
        const std::vector<ApplyFailure> failures = applyParameters(
            *current->connection, {viewOf(Stage::One).wishes(), viewOf(Stage::Two).wishes()});
        storeDetectors();
        for (const ApplyFailure& failure : failures)
            fallBack(failure);
    });
}

void ParamsDialog::storeDetectors()
{
    for (const Stage stage : bothStages)
        viewOf(stage).storeDetector(current->detectors, stage);
    const bool byTriggers = ui->checkBoxDisplayLowRepetitionWithTriggers->isChecked();
    current->connection->setTriggerMode(byTriggers);
    current->detectors.pulsedLaser = byTriggers ? 1 : 0;
}

void ParamsDialog::fallBack(const ApplyFailure& failure)
{
    StageParametersView& view = viewOf(failure.stage);
    switch (failure.what) {
    case ApplyFailure::What::PFactor:
        selectPFactorSource(Source::External);
        break;
    case ApplyFailure::What::ExternalPFactor:
        break;
    case ApplyFailure::What::Sensitivity:
        view.showSensitivity(0, false);
        break;
    case ApplyFailure::What::AdjustIn:
        view.selectAdjustSource(Source::External);
        break;
    }
    const QString message = messageOf(failure);
    logMessage().warning() << qUtf8Printable(message);
    tell(message);
}

void ParamsDialog::save()
{
    if (!isOperable())
        return;
    onQuietLink([this] {
        if (!saveDetectors(*current->connection, current->detectors, settings))
            tell(tr("The settings were not saved."));
    });
}

void ParamsDialog::hold(Stage stage)
{
    StageParametersView& view = viewOf(stage);
    // Kept: stage 2 shuts its fields without a system, too.
    if (current || stage == Stage::Two)
        view.shutPosition();
    if (!current)
        return;
    onQuietLink([&] {
        const HoldResult result = holdPosition(*current->connection, stage);
        if (result.shownPosition)
            view.showPosition(*result.shownPosition);
        if (result.isTaken)
            buttons.allow(holdButton(stage), false);
    });
    view.storeDetector(current->detectors, stage);
    // Kept: holding stage 1 leaves it.
    if (stage == Stage::Two)
        current->detectors.pulsedLaser =
            ui->checkBoxDisplayLowRepetitionWithTriggers->isChecked() ? 1 : 0;
    readAndShow();
}

void ParamsDialog::offerHold(Stage stage, bool isStabilised)
{
    buttons.allow(holdButton(stage), viewOf(stage).isPositionSensitive() && !isStabilised);
}

// The common detector of a group.

void ParamsDialog::lockStage(Stage stage)
{
    if (current)
        group.lockStage(*current->connection, stage);
}

GroupControls::Systems ParamsDialog::connections() const
{
    GroupControls::Systems all;
    for (const System& system : systems)
        all.push_back(system.connection);
    return all;
}

std::size_t ParamsDialog::currentPlace() const
{
    const auto found = std::find_if(systems.begin(), systems.end(),
                                    [this](const System& system) { return &system == current; });
    return std::size_t(std::distance(systems.begin(), found));
}
