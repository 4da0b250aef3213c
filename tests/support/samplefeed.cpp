#include "support/samplefeed.h"

#include "link/connection.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QDateTime>

bool SampleFeed::start() const
{
    const auto& connections = fixture.window().liveConnections();
    std::vector<quint64> before;
    for (std::size_t i = 0; i < connections.size(); ++i) {
        fixture.controller(int(i)).setScript({emulator::PacketValues()});
        before.push_back(connections[i]->samplesStored());
    }
    if (!fixture.clickAction("startAction"))
        return false;
    const bool answered = waitWithoutEvents([&] {
        for (const int i : fixture.window().shownConnections()) {
            if (connections[std::size_t(i)]->samplesStored() == before[std::size_t(i)])
                return false;
        }
        return true;
    });
    fixture.tick();
    clear();
    return answered && fixture.find<QAction>("startAction")->isChecked();
}

bool SampleFeed::send(const QVector<emulator::PacketValues>& samples, int number,
                      quint8 flagsA) const
{
    const Connection& connection = fixture.connection(number);
    const quint64 wanted = connection.samplesStored() + quint64(samples.size());
    QByteArray bytes;
    for (const emulator::PacketValues& values : samples)
        bytes += emulator::encodePacket(values, flagsA, 0);
    fixture.controller(number).sendRaw(bytes);
    return waitWithoutEvents([&] { return connection.samplesStored() == wanted; });
}

bool SampleFeed::show(const QVector<emulator::PacketValues>& samples, int number) const
{
    const bool sent = send(samples, number);
    fixture.tick();
    return sent;
}

void SampleFeed::clear() const
{
    waitForNextMs();
    fixture.find<QAction>("clearAction")->trigger();
}

QVector<emulator::PacketValues> countedSamples(int count, int first)
{
    QVector<emulator::PacketValues> samples;
    for (int i = 0; i < count; ++i) {
        emulator::PacketValues values;
        values.x1 = qint16(first + i);
        values.y1 = qint16(-(first + i) - 1000);
        values.i1 = quint16(first + i + 2000);
        values.x2 = qint16(first + i + 300);
        values.y2 = qint16(-(first + i) - 1300);
        values.i2 = quint16(first + i + 2300);
        samples.append(values);
    }
    return samples;
}

void waitForNextMs()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    waitWithoutEvents([now] { return QDateTime::currentMSecsSinceEpoch() > now; });
}
