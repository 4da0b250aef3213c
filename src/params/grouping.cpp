#include "params/grouping.h"

#include "link/ask.h"
#include "link/commandframe.h"
#include "link/connection.h"
#include "link/replyforms.h"

#include <algorithm>

namespace {

bool isAcceptedOf(Connection& connection, ArgumentCommand setter, Stage stage)
{
    return command::isAcceptedByOne(ask(connection, setter, command::stageArgument(stage)));
}

/// Whether both stages are there behind it.
bool bringToCommonPath(Connection& partner, std::array<bool, 2>& isThere)
{
    if (isThere[0] && isThere[1])
        return true;
    for (const Stage stage : bothStages)
        isThere[indexOf(stage)] |= isAcceptedOf(partner, &Connection::switchMultiplexingOn, stage);
    return isThere[0] && isThere[1];
}

bool setTarget(Connection& partner, Stage stage, BeamAxis axis, int positionMv)
{
    const QByteArray argument =
        command::stageAxisValueArgument(stage, axis, static_cast<qint16>(positionMv));
    return command::isAccepted(ask(partner, &Connection::setAdjustIn, argument));
}

bool setTargets(Connection& partner, const std::array<AxisValues, 2>& positions)
{
    return std::all_of(bothStages.begin(), bothStages.end(), [&](Stage stage) {
        const AxisValues& position = positions[indexOf(stage)];
        return setTarget(partner, stage, BeamAxis::X, position.xMv)
               && setTarget(partner, stage, BeamAxis::Y, position.yMv);
    });
}

} // namespace

std::optional<std::size_t> partnerOf(std::size_t current, const std::vector<SystemState>& systems)
{
    for (std::size_t i = 0; i < systems.size(); ++i) {
        if (i == current || systems[i].groupId != systems[current].groupId)
            continue;
        return systems[i].isValid ? std::make_optional(i) : std::nullopt;
    }
    return std::nullopt;
}

bool leaveCommonPath(Connection& connection, Stage stage)
{
    return isAcceptedOf(connection, &Connection::setSubsystem, stage);
}

std::optional<std::array<AxisValues, 2>> commonPositions(const QByteArray& reply)
{
    constexpr int stageBytes = 4;
    constexpr int lastValueEnd = command::payloadOffset + 2 * stageBytes;
    if (!command::isLongerThan(reply, command::statusReplyLength)
        || !command::isAcceptedByOne(reply))
        return std::nullopt;
    const QByteArray whole = reply.leftJustified(lastValueEnd, '\0');
    std::array<AxisValues, 2> positions;
    for (const Stage stage : bothStages) {
        const int offset = command::payloadOffset + int(indexOf(stage)) * stageBytes;
        positions[indexOf(stage)] = {command::signedValueAt(whole.constData(), offset),
                                     command::signedValueAt(whole.constData(), offset + 2)};
    }
    return positions;
}

Overlay overlayPartner(Connection& reference, Connection& partner,
                       std::array<bool, 2>& isPartnerThere)
{
    if (!bringToCommonPath(partner, isPartnerThere))
        return Overlay::PartnerSilent;
    const auto positions = commonPositions(ask(reference, &Connection::getCommonAdjustment));
    if (!positions)
        return Overlay::ValuesMissing;
    return setTargets(partner, *positions) ? Overlay::Applied : Overlay::PartnerSilent;
}
