#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/wirelog.h"

namespace emulator {

// Copies that share no data with their originals. A value that crosses threads is copied so, while
// one thread waits for the other: the reference counts of shared data would otherwise be touched by
// both threads at any later time, in an order that nothing makes visible.

QByteArray deepCopy(const QByteArray& bytes);
QString deepCopy(const QString& text);
QByteArrayList deepCopy(const QByteArrayList& list);
QVector<WireEvent> deepCopy(const QVector<WireEvent>& events);
QVector<PacketValues> deepCopy(const QVector<PacketValues>& samples);
Faults deepCopy(const Faults& faults);
ControllerOptions deepCopy(const ControllerOptions& options);

} // namespace emulator
