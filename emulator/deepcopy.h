#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/wirelog.h"

namespace emulator {

// Copies that share no data with their originals. Values that go from one thread to another are
// copied this way while one thread waits for the other. Implicitly shared data would have a
// reference count that both threads change later, and the thread sanitizer can not see in which
// order.

QByteArray deepCopy(const QByteArray& bytes);
QString deepCopy(const QString& text);
QByteArrayList deepCopy(const QByteArrayList& list);
QVector<WireEvent> deepCopy(const QVector<WireEvent>& events);
QVector<PacketValues> deepCopy(const QVector<PacketValues>& samples);
Rule deepCopy(const Rule& rule);
QList<Rule> deepCopy(const QList<Rule>& rules);
Faults deepCopy(const Faults& faults);
ControllerOptions deepCopy(const ControllerOptions& options);

} // namespace emulator
