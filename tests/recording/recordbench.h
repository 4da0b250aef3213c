#pragma once

#include "model/detectorpair.h"
#include "recording/recorder.h"
#include "recordings.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <array>
#include <map>
#include <utility>

/// Three systems and a folder for their recordings. Connections are only compared, so any address
/// serves as one.
class RecordBench
{
public:
    static const Connection* connection(int system)
    {
        static const std::array<char, 8> places{};
        return reinterpret_cast<const Connection*>(&places.at(std::size_t(system)));
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    QByteArray bytes(const QString& name) const { return bytesOf(path(name)); }
    /// The lines of data.
    QList<QByteArray> lines(const QString& name) const
    {
        QByteArray data = bytes(name);
        data.remove(0, data.indexOf("\n\n") + 2);
        QList<QByteArray> all = data.split('\n');
        // Behind the last line feed there is nothing.
        all.removeLast();
        return all;
    }
    /// The values of x in stage 1, which `take` numbers from 1 on.
    QList<int> numbers(const QString& name) const
    {
        QList<int> found;
        for (const QByteArray& line : lines(name))
            found.append(qRound(line.split('\t').at(1).toDouble() * 1000));
        return found;
    }

    /// Those that are displayed, in this order; system 0 has the label "A", 1 "B" and so on.
    RecordableSystems displayed(const QList<int>& order)
    {
        RecordableSystems systems;
        for (const int system : order)
            systems.append({connection(system), QString(QChar('A' + system)),
                            &detectors[std::size_t(system)]});
        return systems;
    }

    /// Starts a recording of all of these systems to run.csv and so on.
    std::optional<RecordFailure> startAll(const QList<int>& order, const RecordRates& rates)
    {
        const RecordableSystems systems = displayed(order);
        return recorder.start(planForAll(path("run.csv"), systems), systems, rates, now);
    }
    /// Starts a recording of one of them to run.csv.
    std::optional<RecordFailure> startOne(int system, const QList<int>& order,
                                          const RecordRates& rates)
    {
        const RecordableSystems systems = displayed(order);
        const RecordPlan plan = planForOne(path("run.csv"), systems, connection(system));
        return recorder.start(plan, systems, rates, now);
    }

    /// Gives the recorder `count` samples of a system, 2 ms apart, if it is recorded.
    void take(int system, int count, const SamplePlace& place = {true, false})
    {
        std::vector<MeasureSample> samples;
        for (int i = 0; i < count; ++i) {
            const int number = ++taken[system];
            MeasureSample sample;
            sample.timeMs = firstTimeMs + quint64(number) * 2;
            sample.x1 = qint16(number);
            samples.push_back(sample);
        }
        if (SystemRecord* record = recorder.recordOf(connection(system)))
            record->take(std::move(samples), place);
    }

    static constexpr quint64 firstTimeMs = 1772368496000;
    const QDateTime now{QDate(2026, 3, 1), QTime(12, 34, 56)};
    QTemporaryDir folder;
    std::array<DetectorPair, 3> detectors;
    std::map<int, int> taken;
    Recorder recorder;
};
