#pragma once

#include "emulator/packet.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class QIODevice;

namespace emulator {

/// A recording file of the application that is streamed again. Values come at the times of the
/// file, independent of the stream's rate, and start again after the last line.
///
/// The file says the unit of each position but not the detector, so lengths go back to volts with
/// fixed scales: 1.2 V per mm, and 50 mV per µm.
class Replay final
{
public:
    /// Reads a file. Null on failure, with the reason and the line in `error`.
    static std::shared_ptr<const Replay> load(const QString& path, QString& error);
    static std::shared_ptr<const Replay> read(QIODevice& device, QString& error);

    int lineCount() const { return lines.size(); }
    /// Values at a time since the start of the replay.
    PacketValues at(qint64 timeMs) const;

private:
    struct Line
    {
        qint64 timeMs = 0;
        PacketValues values;
    };

    QString append(const QStringList& texts, const QVector<double>& scales);

    QVector<Line> lines;
    qint64 lengthMs = 0;
};

} // namespace emulator
