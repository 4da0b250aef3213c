#include "params/holding.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/replyforms.h"
#include "params/packetpositions.h"

namespace {

std::optional<QPointF> readPosition(Connection& connection, Stage stage)
{
    const QByteArray packet = ask(connection, &Connection::triggerOneShot);
    if (!isPacket(packet))
        return std::nullopt;
    return shownHoldPosition(packet, stage);
}

bool hold(Connection& connection, Stage stage)
{
    return command::isAcceptedByTwo(
        ask(connection, &Connection::setAndHold, command::stageArgument(stage)));
}

double shownValue(const QByteArray& packet, int offset)
{
    const auto high = static_cast<qint8>(packet.at(offset));
    const auto low = static_cast<quint8>(packet.at(offset + 1));
    return high * 256 + low / 1000.0;
}

} // namespace

QPointF shownHoldPosition(const QByteArray& packet, Stage stage)
{
    const int offset = positionOffset(stage);
    return {shownValue(packet, offset), shownValue(packet, offset + 2)};
}

HoldResult holdPosition(Connection& connection, Stage stage)
{
    HoldResult result;
    if (stage == Stage::One)
        result.shownPosition = readPosition(connection, stage);
    result.isTaken = hold(connection, stage);
    if (stage == Stage::Two && result.isTaken)
        result.shownPosition = readPosition(connection, stage);
    return result;
}
