#include "support/samplefeed.h"

#include "link/connection.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"
#include "window/run.h"

#include <QAction>
#include <QDateTime>
#include <QElapsedTimer>

#include <algorithm>

bool SampleFeed::start() const
{
    const MainWindow& window = fixture.window();
    // The one packet answers the start and is no sample of the stream.
    for (int i = 0; i < int(window.liveConnections().size()); ++i)
        fixture.controller(i).setScript({emulator::PacketValues()});
    if (!fixture.clickAction("startAction"))
        return false;
    clear();
    const QList<int>& shown = window.shownConnections();
    return std::all_of(shown.begin(), shown.end(),
                       [this](int i) { return fixture.connection(i).isStreaming(); });
}

bool SampleFeed::send(const QVector<emulator::PacketValues>& samples, int number, quint8 flagsA,
                      quint8 flagsB) const
{
    const Connection& connection = fixture.connection(number);
    const quint64 wanted = connection.samplesStored() + quint64(samples.size());
    QByteArray bytes;
    for (const emulator::PacketValues& values : samples)
        bytes += emulator::encodePacket(values, flagsA, flagsB);
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
        values[0].x = qint16(first + i);
        values[0].y = qint16(-(first + i) - 1000);
        values[0].intensity = quint16(first + i + 2000);
        values[1].x = qint16(first + i + 300);
        values[1].y = qint16(-(first + i) - 1300);
        values[1].intensity = quint16(first + i + 2300);
        samples.append(values);
    }
    return samples;
}

void waitForNextMs()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    waitWithoutEvents([now] { return QDateTime::currentMSecsSinceEpoch() > now; });
}

void waitForNextText()
{
    QElapsedTimer clock;
    clock.start();
    // A part of the first millisecond was over before.
    waitWithoutEvents([&clock] { return clock.elapsed() > Run::textPeriodMs; });
}
