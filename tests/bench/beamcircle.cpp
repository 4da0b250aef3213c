#include "beamcircle.h"

#include <cmath>

QVector<emulator::PacketValues> beamCircle(int samples)
{
    constexpr double radiusMv = 2000.0;
    QVector<emulator::PacketValues> circle;
    for (int i = 0; i < samples; ++i) {
        const double angle = 2.0 * M_PI * i / samples;
        emulator::PacketValues values;
        values[0].x = values[1].x = qint16(radiusMv * std::cos(angle));
        values[0].y = values[1].y = qint16(radiusMv * std::sin(angle));
        values[0].intensity = values[1].intensity = quint16(2.0 * radiusMv);
        values[0].actuatorX = values[1].actuatorX = values[0].x;
        values[0].actuatorY = values[1].actuatorY = values[0].y;
        circle.append(values);
    }
    return circle;
}
