#include "params/groupcontrols.h"

#include "controls/exchangebuttons.h"
#include "controls/waitcursor.h"
#include "link/connection.h"
#include "link/streampause.h"
#include "params/grouping.h"

#include <QLabel>
#include <QPushButton>

GroupControls::GroupControls(const Widgets& shown, ExchangeButtons& exchangeButtons,
                             const ParamsSources& window)
    : widgets(shown)
    , buttons(exchangeButtons)
    , sources(window)
{}

void GroupControls::reset()
{
    widgets.partner.clear();
    for (QPushButton* button :
         {&widgets.align, &widgets.lockPartner, widgets.lockStage[0], widgets.lockStage[1]})
        buttons.allow(*button, true);
}

void GroupControls::onQuietLink(Connection& connection, const std::function<void()>& work)
{
    const WaitCursor waiting;
    buttons.lock();
    tellIfInDoubt(::onQuietLink(connection, sources.samplingRateHz(), work));
}

void GroupControls::tellIfInDoubt(StreamStart start)
{
    if (isInDoubt(start))
        emit streamFailed();
}

void GroupControls::noteLocked(const Connection& connection, Stage stage, bool isOff,
                               QPushButton& button)
{
    sources.noteCommonPath(connection, stage, !isOff);
    if (isOff)
        buttons.allow(button, false);
}

void GroupControls::lockStage(Connection& connection, Stage stage)
{
    onQuietLink(connection, [&] {
        QPushButton& button = *widgets.lockStage[indexOf(stage)];
        // Kept: a stage that has left is led away once more, and cannot be asked again.
        if (!sources.stateOf(connection).isOnCommonPath[indexOf(stage)])
            buttons.allow(button, false);
        noteLocked(connection, stage, leaveCommonPath(connection, stage), button);
    });
}

Connection* GroupControls::findPartner(const Systems& systems, std::size_t current)
{
    std::vector<SystemState> states;
    for (const Connection* connection : systems)
        states.push_back(sources.stateOf(*connection));
    const std::optional<std::size_t> place = partnerOf(current, states);
    if (place)
        return systems[*place];
    widgets.partner.setText(tr("Missing"));
    buttons.allow(widgets.align, false);
    emit failed(tr("The partner system was not found. Please check the group identifications"));
    return nullptr;
}

void GroupControls::lockPartner(const Systems& systems, std::size_t current)
{
    Connection* partner = findPartner(systems, current);
    if (!partner) {
        buttons.allow(widgets.lockPartner, false);
        return;
    }
    onQuietLink(*partner, [&] {
        std::array<bool, 2> isOff{};
        for (const Stage stage : bothStages)
            isOff[indexOf(stage)] = leaveCommonPath(*systems[current], stage);
        for (const Stage stage : bothStages)
            noteLocked(*partner, stage, isOff[indexOf(stage)], widgets.lockPartner);
    });
}

void GroupControls::applyPositions(const Systems& systems, std::size_t current)
{
    Connection* partner = findPartner(systems, current);
    if (!partner)
        return;
    const WaitCursor waiting;
    buttons.lock();
    StreamPause pauseOfCurrent(*systems[current]);
    StreamPause pauseOfPartner(*partner);
    std::array<bool, 2> isPartnerThere = sources.stateOf(*partner).isOnCommonPath;
    const Overlay overlay = overlayPartner(*systems[current], *partner, isPartnerThere);
    for (const Stage stage : bothStages)
        sources.noteCommonPath(*partner, stage, isPartnerThere[indexOf(stage)]);
    if (overlay == Overlay::PartnerSilent)
        emit failed(tr("The second subsystem didn't respond. Please retry."));
    else if (overlay == Overlay::ValuesMissing)
        emit failed(tr("The values of the common detector were not available. Please retry."));
    // In the order in which they stopped, so neither pause is inside the other.
    tellIfInDoubt(pauseOfCurrent.resume(sources.samplingRateHz()));
    tellIfInDoubt(pauseOfPartner.resume(sources.samplingRateHz()));
}
