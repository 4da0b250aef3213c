#include "params/holding.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/packet.h"
#include "link/replyforms.h"

namespace {

std::optional<QPointF> readPosition(Connection& connection, Stage stage)
{
    const QByteArray reply = ask(connection, &Connection::triggerOneShot);
    if (!packet::isWhole(reply))
        return std::nullopt;
    return shownHoldPosition(reply, stage);
}

bool hold(Connection& connection, Stage stage)
{
    return command::isAcceptedByTwo(
        ask(connection, &Connection::setAndHold, command::stageArgument(stage)));
}

double shownValue(const QByteArray& packetBytes, int offset)
{
    const auto high = static_cast<qint8>(packetBytes.at(offset));
    const auto low = static_cast<quint8>(packetBytes.at(offset + 1));
    return high * 256 + low / 1000.0;
}

} // namespace

QPointF shownHoldPosition(const QByteArray& packetBytes, Stage stage)
{
    const packet::ValueOffsets offsets = packet::offsetsOf(stage);
    return {shownValue(packetBytes, offsets.x), shownValue(packetBytes, offsets.y)};
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
