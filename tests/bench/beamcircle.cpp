#include "beamcircle.h"

#include <cmath>

QVector<emulator::PacketValues> beamCircle(int samples)
{
    constexpr double radiusMv = 2000.0;
    QVector<emulator::PacketValues> circle;
    for (int i = 0; i < samples; ++i) {
        const double angle = 2.0 * M_PI * i / samples;
        emulator::PacketValues values;
        values.x1 = values.x2 = qint16(radiusMv * std::cos(angle));
        values.y1 = values.y2 = qint16(radiusMv * std::sin(angle));
        values.i1 = values.i2 = quint16(2.0 * radiusMv);
        values.rx1 = values.rx2 = values.x1;
        values.ry1 = values.ry2 = values.y1;
        circle.append(values);
    }
    return circle;
}
