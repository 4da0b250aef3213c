#include "link/identification.h"

#include "link/connection.h"
#include "link/replyforms.h"

namespace {

constexpr char maker[] = "Zev";
constexpr int makerOffset = 2;
constexpr int triggerMarkOffset = 10;
constexpr char triggerMark = 'A';

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
    QByteArray reply;
    connection.clearLiveStream();
    connection.fetchReply(reply);
    connection.clearLiveStream();
    if (connection.fetchReply(reply) || clearing == LineClearing::TwoStops)
        return;
    connection.clearLiveStream();
    connection.fetchReply(reply);
}

ControllerIdentity identify(Connection& connection, LineClearing clearing)
{
    clearLine(connection, clearing);
    QByteArray reply;
    connection.getControllerId();
    connection.fetchReply(reply);

    const ControllerIdentity identity = readIdentity(reply);
    if (identity.isController) {
        connection.setFirmwareVersion(identity.firmwareVersion);
        connection.setVmFirmware(identity.vmFirmware);
        connection.setTriggerCapable(identity.triggerCapable);
    }
    return identity;
}

void labelController(Connection& connection, const QString& label)
{
    connection.setLabel(label);
    connection.storeLabel(command::labelArgument(label.toLocal8Bit()));
    QByteArray reply;
    connection.fetchReply(reply);
}
