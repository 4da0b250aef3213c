#pragma once

#include "model/stage.h"

#include <QObject>

class Connection;
class LiveSystems;
class MonitorToolBar;
class TickTimer;
struct LiveSystem;

/// Leads the stages of systems to the common detector of their group or back. This blocks for the
/// exchanges with the controller; a stream is stopped for them and started again, and no tick comes
/// meanwhile.
class Multiplexing final : public QObject
{
    Q_OBJECT

public:
    Multiplexing(LiveSystems& systems, const MonitorToolBar& toolBar, TickTimer& timer);

    /// Switches a stage of the system with this address. The flag in its record says afterwards
    /// what the controller does: the wanted direction if the controller accepted it, else the
    /// opposite one. An address that no system has, a `stage` other than 1 and 2, a direction that
    /// is set already and a call during another one send nothing.
    void switchStage(const QString& address, bool on, int stage);

signals:
    /// A controller did not start its stream again.
    void streamFailed();

private:
    bool switchSystem(LiveSystem& system, Stage stage, bool on);
    bool carryOut(Connection& connection, Stage stage, bool on);

    LiveSystems& systems;
    const MonitorToolBar& toolBar;
    TickTimer& timer;
    bool multiplexBusy = false;
};
