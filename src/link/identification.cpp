#include "link/identification.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/replyforms.h"

namespace {

constexpr char maker[] = "Zev";
constexpr int makerOffset = command::payloadOffset;
constexpr int triggerMarkOffset = 10;
constexpr char triggerMark = 'A';

StopTalk clearingTalk(Connection& connection, LineClearing clearing)
{
    constexpr int stops = 2;
    return StopTalk(connection, stops,
                    clearing == LineClearing::TwoStops ? StopTalk::Unanswered::Left
                                                       : StopTalk::Unanswered::Repeated);
}

} // namespace

bool namesMaker(const QByteArray& idReply)
{
    return idReply.mid(makerOffset, int(sizeof maker) - 1) == maker;
}

ControllerIdentity readIdentity(const QByteArray& idReply)
{
    ControllerIdentity identity;
    identity.isController = command::isAccepted(idReply) && namesMaker(idReply);

    constexpr int markLength = 2;
    const int mark = idReply.indexOf("-V");
    identity.vmFirmware = mark >= 0 && idReply.mid(mark + markLength, 1) == "M";
    const int versionStart = mark + markLength + (identity.vmFirmware ? 1 : 0);
    const QByteArray version = mark < 0 ? QByteArray() : idReply.mid(versionStart);
    identity.firmwareVersion = version.left(version.indexOf('-')).toInt();

    identity.triggerCapable =
        idReply.size() > triggerMarkOffset && idReply.at(triggerMarkOffset) == triggerMark;
    identity.id =
        QString::fromUtf8(idReply.mid(makerOffset).chopped(idReply.size() > makerOffset ? 1 : 0));
    return identity;
}

void clearLine(Connection& connection, LineClearing clearing)
{
    StopTalk talk = clearingTalk(connection, clearing);
    finish(talk, connection);
}

IdentityTalk::IdentityTalk(Connection& talkedTo, LineClearing lineClearing)
    : connection(talkedTo)
    , clearing(clearingTalk(talkedTo, lineClearing))
{}

bool IdentityTalk::advance()
{
    if (isOver)
        return true;
    QByteArray reply;
    if (!clearing.advance()
        || !turn.advance(connection, command::identityRequest(), reply).has_value())
        return false;
    keep(reply);
    isOver = true;
    return true;
}

void IdentityTalk::keep(const QByteArray& reply)
{
    found = readIdentity(reply);
    if (!found.isController)
        return;
    connection.setFirmwareVersion(found.firmwareVersion);
    connection.setVmFirmware(found.vmFirmware);
    connection.setTriggerCapable(found.triggerCapable);
}

ControllerIdentity identify(Connection& connection, LineClearing clearing)
{
    IdentityTalk talk(connection, clearing);
    finish(talk, connection);
    return talk.identity();
}

void labelController(Connection& connection, const QString& label)
{
    connection.setLabel(label);
    ask(connection, &Connection::storeLabel, command::labelArgument(label.toLocal8Bit()));
}
