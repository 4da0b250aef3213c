#pragma once

#include "model/measuresample.h"
#include "model/stage.h"

#include <QByteArray>

struct ConnectionStatus;
struct LiveSystem;

// What controllers tell of their stages, and how it comes into the record of a system.

namespace statusflags {

/// Takes the flags of a reply to `GSF`. A reply that is too short changes nothing.
void takeReply(ConnectionStatus& status, const QByteArray& reply);
/// Takes the flags of a packet from a firmware that sends them.
void takeSample(ConnectionStatus& status, const MeasureSample& sample);
/// Notes what an accepted switch of a stage says, until the controller says more: a stage
/// that is switched off can not be active.
void noteSwitch(ConnectionStatus& status, Stage stage, bool on);
/// Forgets all flags.
void forget(ConnectionStatus& status);

/// Brings the record of a system up to date, once a tick. A connected system that does not stream
/// is asked for its status, and the reply to an earlier request is taken if it is there: nothing
/// here waits.
void poll(LiveSystem& system);

} // namespace statusflags
