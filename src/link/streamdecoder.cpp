#include "link/streamdecoder.h"

#include "app/logging.h"
#include "link/packetreader.h"

#include <QDateTime>
#include <QIODevice>

StreamDecoder::StreamDecoder(measureStore& store)
    : samples(store)
{}

bool StreamDecoder::decode(QIODevice& device, Firmware firmware)
{
    while (device.bytesAvailable() >= command::packetLength) {
        const packetreader::Result result = packetreader::read(device);
        if (result.skipped > 0)
            logMessage().debug() << "Incomplete stream message. Bytes skipped:" << result.skipped;
        skipped += static_cast<quint64>(result.skipped);
        if (!result.found) {
            skipped += command::packetLength;
            return false;
        }
        store(result.bytes, firmware);
        if (packet::isLast(result.bytes, firmware.version))
            return true;
    }
    return false;
}

void StreamDecoder::store(const PacketBytes& bytes, Firmware firmware)
{
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    lastPacketMs = nowMs;
    if (!packet::isWithheld(bytes, firmware.version, firmware.isVm))
        samples.storeSample(packet::toSample(bytes, firmware.version, static_cast<quint64>(nowMs)));
}
