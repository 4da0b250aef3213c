#pragma once

#include "model/beamaxis.h"
#include "model/stage.h"

#include <QByteArray>

/// One command to the controller, and the length of the reply that it answers with.
struct CommandFrame
{
    QByteArray message;
    int answerLength = 0;

    bool isStop() const;
    bool startsStream() const;
};

/// Frames and arguments of the controller's protocol. A frame is a mnemonic of three characters,
/// raw argument bytes and a closing ';'. 16-bit values go high byte first.
namespace command {

constexpr char terminator = ';';

/// Length of the shortest reply: status and terminator.
constexpr int statusReplyLength = 2;
/// Where a longer reply, or a packet, has what it tells.
constexpr int payloadOffset = statusReplyLength;
/// Length of the reply with the status flags.
constexpr int statusFlagsReplyLength = 4;
/// Length of the reply with one value of 16 bits, or with a byte for each stage.
constexpr int valueReplyLength = 5;
/// Length of the reply with the command that failed last, and why.
constexpr int errorReplyLength = 7;
/// How many bytes of a controller's memory are read at once.
constexpr int memoryBytes = 255;
constexpr int memoryReplyLength = payloadOffset + memoryBytes + 1;
/// Length of the reply with the identification of the controller.
constexpr int idReplyLength = 50;
/// Length of one packet of the measurement stream.
constexpr int packetLength = 25;
/// Length that a label has on the wire.
constexpr int labelLength = 25;
constexpr int maxSamplingRateHz = 500;

/// Firmware above this knows the detectors' sensitivity.
constexpr int lastFirmwareWithoutSensitivity = 30;

/// A command whose argument, if any, already ends in ';'.
CommandFrame frame(const char* mnemonic, const QByteArray& argument, int answerLength);

/// `GSF;`, which asks for the status flags.
CommandFrame statusRequest();
/// `CLS;`, which stops a stream.
CommandFrame stop();
/// `GID;`, which asks a controller who it is.
CommandFrame identityRequest();
/// `SLA`, which stores the label that is in the argument.
CommandFrame labelling(const QByteArray& labelArgument);

/// Argument bytes with their closing ';'.
QByteArray stageArgument(Stage stage);
QByteArray stageAxisArgument(Stage stage, BeamAxis axis);
QByteArray stageValueArgument(Stage stage, qint16 valueMv);
QByteArray stageAxisValueArgument(Stage stage, BeamAxis axis, qint16 valueMv);
/// The label cut or padded with blanks to its length on the wire.
QByteArray labelArgument(const QByteArray& label);
/// The stream rate in packets per second, behind two zero bytes.
QByteArray streamArgument(quint16 rateHz);
/// The first `memoryBytes` bytes of the memory.
QByteArray memoryArgument();
/// Code of a baud rate of the serial line; just ';' for a rate that has none.
QByteArray baudRateArgument(int baudRate);

/// The start of a stream that follows trigger pulses has no rate.
QByteArray withoutRate(const QByteArray& streamArgument);

/// Signed 16-bit value at `offset` of a reply or packet.
qint16 signedValueAt(const char* bytes, int offset);

} // namespace command
