#include "service/servicetexts.h"

#include "link/packet.h"
#include "link/replyforms.h"
#include "service/speedtest.h"

#include <algorithm>

namespace servicetexts {

namespace {

using command::memoryBytes;
using command::payloadOffset;

constexpr int errorLetters = 3;
constexpr int errorCodeOffset = payloadOffset + errorLetters;
constexpr int hexadecimal = 16;

QString pair(int one, int two)
{
    return QStringLiteral("%1 / %2").arg(one).arg(two);
}

/// Replies with values are taken by their length alone.
bool hasValue(const QByteArray& reply)
{
    return reply.size() >= command::valueReplyLength;
}

QString beam(qint16 x, qint16 y, quint16 intensity)
{
    // Signed here, as the controller sends it. Samples of the stream carry it without a sign.
    return QStringLiteral("%1 / %2").arg(pair(x, y)).arg(static_cast<qint16>(intensity));
}

MeasureSample sampleOf(const QByteArray& reply, int firmwareVersion)
{
    PacketBytes bytes;
    std::copy_n(reply.cbegin(), bytes.size(), bytes.begin());
    constexpr quint64 noTimeMs = 0;
    return packet::toSample(bytes, firmwareVersion, noTimeMs);
}

QStringList linesOf(const MeasureSample& sample)
{
    return {
        ServiceText::tr("On/Off Stage 1/2: %1\n").arg(pair(sample.stabilised1, sample.stabilised2)),
        ServiceText::tr("Active Stage 1/2: %1\n").arg(pair(sample.active1, sample.active2)),
        ServiceText::tr("(Multiplex) Stage 1/2: %1\n")
            .arg(pair(sample.multiplex1, sample.multiplex2)),
        ServiceText::tr("Stage 1 x/y/i: %1 [mV]\n")
            .arg(beam(sample.x1, sample.y1, sample.intensity1)),
        ServiceText::tr("Stage 2 x/y/i: %1 [mV]\n")
            .arg(beam(sample.x2, sample.y2, sample.intensity2)),
        ServiceText::tr("Range 1 x/y: %1 [mV]\n").arg(pair(sample.rx1, sample.ry1)),
        ServiceText::tr("Range 2 x/y: %1 [mV]\n").arg(pair(sample.rx2, sample.ry2)),
    };
}

} // namespace

QString boardId(const QByteArray& reply)
{
    return QString::fromUtf8(reply.mid(payloadOffset)).remove(QLatin1Char(command::terminator));
}

QString outcome(const QString& what, const QByteArray& reply)
{
    return what
           + (command::isAcceptedByTwo(reply) ? ServiceText::tr(": Success\n")
                                              : ServiceText::tr(": Failed\n"));
}

QString outcomeOfMillivolts(const QString& what, const QByteArray& reply)
{
    return outcome(command::isAcceptedByTwo(reply) ? what + QStringLiteral("mV") : what, reply);
}

QString intensity(const QByteArray& reply)
{
    if (!hasValue(reply))
        return ServiceText::tr("Get Intensity: failed - no response\n");
    return ServiceText::tr("Get Intensity:%1\n")
        .arg(command::signedValueAt(reply.constData(), payloadOffset));
}

QString activeSignal(const QByteArray& reply)
{
    if (!hasValue(reply))
        return ServiceText::tr("Get Active Signal: failed - no response\n");
    const auto isActive = [&](int stage) { return reply.at(payloadOffset + stage) != 0 ? 1 : 0; };
    return ServiceText::tr("Get Active Signal: \n  Active 1: %1\n  Active 2: %2\n")
        .arg(isActive(0))
        .arg(isActive(1));
}

QStringList oneShot(const QByteArray& reply, int firmwareVersion)
{
    QStringList texts{outcome(ServiceText::tr("Trigger One Shot"), reply)};
    if (command::isAcceptedByTwo(reply) && packet::isWhole(reply))
        texts += linesOf(sampleOf(reply, firmwareVersion));
    return texts;
}

QString lastError(const QByteArray& reply)
{
    if (!command::isAcceptedByOne(reply) || reply.size() < command::errorReplyLength)
        return ServiceText::tr("Get Error: Failed\n");
    // Put together, as a damaged reply can have anything in the place of the letters.
    return ServiceText::tr("Get Error: Command:")
           + QString::fromLatin1(reply.mid(payloadOffset, errorLetters))
           + ServiceText::tr(" Code: ")
           + QString::number(static_cast<qint8>(reply.at(errorCodeOffset))) + QLatin1Char('\n');
}

QStringList memory(const QByteArray& reply)
{
    if (reply.size() != command::memoryReplyLength)
        return {ServiceText::tr("Not supported! \n")};
    QStringList lines;
    for (int index = 0; index < memoryBytes; ++index) {
        // Kept: a byte is read as a signed number, so that AB is written as ffffffffffffffab.
        const int byte = static_cast<qint8>(reply.at(payloadOffset + index));
        lines.append(QStringLiteral("%1: %2").arg(QString::number(index),
                                                  QString::number(byte, hexadecimal)));
    }
    return lines;
}

QString speed(const SpeedResult& result)
{
    switch (result.outcome) {
    case SpeedResult::Outcome::NotStarted:
        return ServiceText::tr("Speed Test: Failed - stream couldn't start\n");
    case SpeedResult::Outcome::NotStopped:
        return ServiceText::tr(
            "Speed Test: Failed - stream couldn't be stopped - maybe reconnect\n");
    case SpeedResult::Outcome::Counted:
        break;
    }
    return ServiceText::tr("Speed Test: %1 of 500 received").arg(result.received);
}

} // namespace servicetexts
