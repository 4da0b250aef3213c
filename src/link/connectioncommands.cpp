#include "link/commandframe.h"
#include "link/connection.h"

namespace {

using command::errorReplyLength;
using command::frame;
using command::idReplyLength;
using command::memoryReplyLength;
using command::packetLength;
using command::statusFlagsReplyLength;
using command::statusReplyLength;
using command::valueReplyLength;

constexpr int fourValuesReplyLength = 11;
constexpr int labelReplyLength = 29;

} // namespace

void Connection::getControllerId()
{
    send(command::identityRequest());
}

void Connection::storeLabel(const QByteArray& argument)
{
    send(command::labelling(argument));
}

void Connection::setControllerBaudRate(const QByteArray& argument)
{
    send(frame("SBR", argument, statusReplyLength));
}

void Connection::triggerOneShot()
{
    send(frame("S1S", {}, packetLength));
}

void Connection::startRatedStream(const QByteArray& argument)
{
    send(frame("SLS", argument, packetLength));
}

void Connection::startVmStream(const QByteArray& argument)
{
    send(frame("SGS", argument, packetLength));
}

void Connection::startPulsedStream(const QByteArray& argument)
{
    send(frame("SPS", argument, statusReplyLength));
}

void Connection::clearLiveStream()
{
    send(command::stop());
}

void Connection::getStatusFlags()
{
    send(command::statusRequest());
}

void Connection::getActiveSignal()
{
    send(frame("GAS", {}, valueReplyLength));
}

void Connection::getIntensity(const QByteArray& argument)
{
    send(frame("GIN", argument, valueReplyLength));
}

void Connection::switchStabilisationOn(const QByteArray& argument)
{
    send(frame("SEA", argument, statusReplyLength));
}

void Connection::switchStabilisationOff(const QByteArray& argument)
{
    send(frame("CEA", argument, statusReplyLength));
}

void Connection::setAndHold(const QByteArray& argument)
{
    send(frame("SSH", argument, statusReplyLength));
}

void Connection::clearSetAndHold(const QByteArray& argument)
{
    send(frame("CSH", argument, statusReplyLength));
}

void Connection::setTriggerFreeze(const QByteArray& argument)
{
    // Controllers answer with two bytes, which are taken as a short reply after the time-out. The
    // length stays, and with it the time that the exchange takes.
    send(frame("STF", argument, valueReplyLength));
}

void Connection::clearTriggerFreeze(const QByteArray& argument)
{
    send(frame("CTF", argument, statusReplyLength));
}

void Connection::setPFactor(const QByteArray& argument)
{
    send(frame("SPF", argument, statusReplyLength));
}

void Connection::getPFactor(const QByteArray& argument)
{
    send(frame("GPF", argument, valueReplyLength));
}

void Connection::setAdjustIn(const QByteArray& argument)
{
    send(frame("SAI", argument, statusReplyLength));
}

void Connection::getAdjustIn(const QByteArray& argument)
{
    send(frame("GAI", argument, valueReplyLength));
}

void Connection::setDetectorSensitivity(const QByteArray& argument)
{
    send(frame("SDS", argument, statusReplyLength));
}

void Connection::getDetectorSensitivity(const QByteArray& argument)
{
    send(frame("GDS", argument, valueReplyLength));
}

void Connection::setDriveActuator(const QByteArray& argument)
{
    send(frame("SDA", argument, statusReplyLength));
}

void Connection::switchMultiplexingOn(const QByteArray& argument)
{
    send(frame("SMD", argument, statusReplyLength));
}

void Connection::switchMultiplexingOff(const QByteArray& argument)
{
    send(frame("CMD", argument, statusReplyLength));
}

void Connection::setSubsystem(const QByteArray& argument)
{
    send(frame("SSE", argument, statusReplyLength));
}

void Connection::getCommonAdjustment()
{
    send(frame("GCA", {}, fourValuesReplyLength));
}

void Connection::getError()
{
    send(frame("GER", {}, errorReplyLength));
}

void Connection::readFram(const QByteArray& argument)
{
    send(frame("RFR", argument, memoryReplyLength));
}

void Connection::sendGda()
{
    send(frame("GDA", {}, fourValuesReplyLength));
}

void Connection::sendShs()
{
    send(frame("SHS", {}, statusReplyLength));
}

void Connection::sendChs()
{
    send(frame("CHS", {}, statusReplyLength));
}

void Connection::sendGmf()
{
    send(frame("GMF", {}, statusFlagsReplyLength));
}

void Connection::sendGla()
{
    send(frame("GLA", {}, labelReplyLength));
}

void Connection::sendUnchanged(const QByteArray& message)
{
    send({message, idReplyLength});
}
