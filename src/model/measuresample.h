#pragma once

#include <QtGlobal>

/// One decoded packet of the measurement stream. Signals are millivolts as the controller sent
/// them; what they mean as a length is the detector's knowledge.
struct MeasureSample
{
    /// Milliseconds since the epoch at which the host read the packet.
    quint64 timeMs = 0;

    quint8 stabilised1 = 0;
    quint8 stabilised2 = 0;
    quint8 active1 = 0;
    quint8 active2 = 0;
    quint8 multiplex1 = 0;
    quint8 multiplex2 = 0;

    qint16 x1 = 0;
    qint16 y1 = 0;
    qint16 x2 = 0;
    qint16 y2 = 0;

    /// Piezo drives of stage 1 and 2.
    qint16 rx1 = 0;
    qint16 ry1 = 0;
    qint16 rx2 = 0;
    qint16 ry2 = 0;

    quint16 intensity1 = 0;
    quint16 intensity2 = 0;
};
