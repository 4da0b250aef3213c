#pragma once

#include "emulator/packet.h"

#include <QVector>

/// A beam that runs once around a circle. What fifty computed beams cost is the matter of
/// `fiftyBeams`, and does not belong to what is measured of the application.
QVector<emulator::PacketValues> beamCircle(int samples);
