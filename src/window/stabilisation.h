#pragma once

#include "window/stageview.h"

#include <QObject>

#include <functional>

class Connection;
class LiveSystems;
class MonitorToolBar;
class QByteArray;
struct LiveSystem;

/// Switches the stabilisation of the stages and reads the status of the system that the window's
/// buttons stand for. Everything here blocks for the exchanges with the controller; a stream is
/// stopped for them and started again.
class Stabilisation final : public QObject
{
    Q_OBJECT

public:
    Stabilisation(LiveSystems& systems, Stages& stages, const MonitorToolBar& toolBar);

    /// Switches a stage of the current system as its button, which was clicked, says. Without a
    /// good reply the button waits for the status to correct it.
    void switchAsClicked(StageView& stage);
    /// Switches a stage of a connected system. No widget is touched: the next ticks show
    /// what came of it.
    void switchStage(const Connection* connection, Stage stage, bool on);

    /// Reads the status of the current system and shows it. False if that failed; the fourth
    /// failure in a row is told by `linkFailed`.
    bool readAndShow();
    /// Shows the lights of a status byte, or of one that is read if `flags` says failed.
    bool showActive(uchar flags);
    /// The next failure is the first one in a row.
    void forgetFailures() { failures = 0; }

signals:
    /// A controller did not start its stream again.
    void streamFailed();
    void linkFailed();

private:
    void onQuietLink(Connection& connection, const std::function<void()>& work);
    void readStatusAfterSwitch(LiveSystem& system);
    uchar readStatus();

    LiveSystems& systems;
    Stages& stages;
    const MonitorToolBar& toolBar;
    /// Failed status reads in a row.
    int failures = 0;
};
