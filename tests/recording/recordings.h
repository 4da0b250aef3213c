#pragma once

#include "model/measuresample.h"

#include <QFile>
#include <QTest>

/// A sample from its millivolts, in the order of the columns of a recording.
inline MeasureSample sampleAt(quint64 timeMs, qint16 x1, qint16 y1, quint16 i1, qint16 x2,
                              qint16 y2, quint16 i2, qint16 rx1, qint16 ry1, qint16 rx2, qint16 ry2)
{
    MeasureSample sample;
    sample.timeMs = timeMs;
    sample.x1 = x1;
    sample.y1 = y1;
    sample.intensity1 = i1;
    sample.x2 = x2;
    sample.y2 = y2;
    sample.intensity2 = i2;
    sample.rx1 = rx1;
    sample.ry1 = ry1;
    sample.rx2 = rx2;
    sample.ry2 = ry2;
    return sample;
}

/// The bytes of a file; empty if there is none.
inline QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The bytes of a recording that was made by hand.
inline QByteArray madeByHand(const char* name)
{
    return bytesOf(QFINDTESTDATA(QStringLiteral("data/") + name));
}
