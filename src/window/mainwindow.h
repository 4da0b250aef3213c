#pragma once

#include "setup/connectionregistry.h"
#include "window/acquisition.h"
#include "window/axisdialogs.h"
#include "window/displaytick.h"
#include "window/liverecording.h"
#include "window/livesystems.h"
#include "window/monitortoolbar.h"
#include "window/multiplexing.h"
#include "window/plotframe.h"
#include "window/stabilisation.h"
#include "window/stageview.h"
#include "window/statistics.h"
#include "window/systemsview.h"
#include "window/ticktimer.h"
#include "window/waitnotice.h"

#include <QMainWindow>

#include <memory>
#include <vector>

class ConnectionOverviewDialog;
class DataLoggerDialog;
class InformationDialog;
class ParamsDialog;
class QMessageBox;
class ServiceDialog;
class SettingsDialog;
struct SystemState;

namespace Ui {
class MainWindow;
}

/// The hub of the application: the form, the menus and the dialogs, and the wiring of what works
/// behind them. Its slots pass on to the class that does the work.
///
/// Everything here runs on the GUI thread. Slots that take an address mean the connected system
/// with that address, or the first one if none is connected; inside, a system is its `Connection`.
/// `activeStage` and `multiplexSystem` say for themselves whom they mean.
class MainWindow final : public QMainWindow, public ConnectionRegistry
{
    Q_OBJECT

public:
    /// Builds the window and brings back the connections of the default setup file, which takes as
    /// long as its systems take to answer.
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // What is registered, in the order of the list.
    const LiveSystems& liveSystems() const { return systems; }
    std::vector<Connection*> liveConnections() const;
    QVector<ConnectionStatus> liveStatuses() const { return systems.statuses(); }
    /// Indices of the systems on the plots, in the order in which they were shown.
    const QList<int>& shownConnections() const { return systems.displayed(); }

    // The registry of live connections.
    bool isLeaving() const override { return leaving; }
    void newConnection(std::unique_ptr<Connection> connection,
                       const ConnectionSettings& settings) override;
    void dismiss(const QList<const Connection*>& closing) override;
    bool closeConnection(const Connection* connection) override;
    void relabelConnection(const Connection* connection, const QString& label) override;
    ReconnectResult reconnect(const Connection* connection, const QString& expectedId) override;
    bool disconnectLink(const Connection* connection) override;

public slots:
    bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) override;
    bool closedConnection(QString address);
    bool disconnectConnection(QString address);
    /// A `boardID` that is not empty is the controller that is expected; it becomes the one that
    /// answered.
    bool reconnectConnection(QString address, QString& boardID);
    void showConnection(QString id, bool show);
    /// Has no effect yet: when a common detector is shown is not settled.
    void showConnectionCommonDetector(QString id, bool show);
    /// `graph` is 0 for x, 1 for y, 2 for intensity.
    void updateColorGraph(QString id, QColor color, int graph);
    void changeLabel(QString address, QString label);
    void changeGroupId(QString name, int id);

    /// Switches the stabilisation of a stage, 1 or 2, of every connected system with the address.
    void activeStage(QString id, int stage, bool activate);
    /// Switches the multiplexer of a stage, 1 or 2, of the first connection with the address. The
    /// status says afterwards what the controller does.
    void multiplexSystem(QString name, bool direction, int stage);
    /// Reads the status of the current connection and shows it. False if that failed; the fourth
    /// failure in a row stops the acquisition and says so.
    bool getStabilAndActiveStatus();
    /// Shows the lights of a status byte, or of one that is read if `flag` says failed.
    bool getActiveStatus(uchar flag);

    void startStopDataAcquisition();
    void startDrawingPlots();
    /// Stops all streams and ends the acquisition.
    void stopDrawingPlots();
    void showRunning(bool running);
    void resetPlotsAndDisplays();
    void errorStreamStart();
    void enableSamplesCounter(bool on);
    void updateSamplesToTake(int value);

    /// `count` is the number of samples of the run, `index` a connection. With `display` nothing
    /// is added and the text is refreshed now.
    void updateStatistics(int count, int index, bool display);
    void enableStatistics(bool on);
    void showStatistics1(bool on);
    void showStatistics2(bool on);
    void clearStatistics();

    void setPlotAttributes();
    void unZoomOsci1();
    void unZoomOsci2();
    void unZoomPlot1();
    void unZoomPlot2();
    /// Axis 1 and 2: position of stage 1 and 2; 5 and 6: intensity. With `pairCheck` the other
    /// stage follows, for positions only if it shows the same unit.
    void rescaleAxis(int axisId, double min, double max, bool pairCheck);
    /// Axis 3 and 4: time of stage 1 and 2, in seconds. With `pairCheck` both stages follow.
    void rescaleTimeAxis(int axisId, int min, int max, bool pairCheck);
    /// Marks zero on the position plots over `length`.
    void drawWhiteLine(double length);
    /// Keeps the pointing plots square and the columns of both stages equal.
    void resizeGraphs();

    /// Records to a file, or every displayed system to one of its own. During a recording it ends
    /// that one.
    void startDataRecordingFromDlg(QString fileName, bool multiSave);
    void stopDataRecordingFromDlg();

    void showParametersDialog();
    void closeParametersDialog();
    void showDataloggerDialog();
    void closeDataloggerDialog();
    void showServiceDialog();
    void showAboutSoftwareDialog();
    void showUserManualSoftware();
    void showUserManualHardware();
    /// Asks for new limits of axis 1, 2, 5 or 6, beginning with `max` and `min`. Does nothing for
    /// other axes.
    void showRescaleDialog(int axisID, double max, double min);
    /// Asks for new limits of axis 3 or 4, in seconds. Does nothing for other axes.
    void showRescaleTimeAxisDlg(int axisID, int min, int max);

signals:
    void stopRecording();
    void changeDisplayConnection(QString name, bool show);
    void changeDisplayConnectionCommon(QString name, bool show);
    void startTimer();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private slots:
    void updateData();
    void updateDataCommon();
    bool on_push_Stab1_clicked();
    bool on_push_Stab2_clicked();
    void on_actionExit_triggered();

private:
    // Construction.
    std::unique_ptr<Ui::MainWindow> makeForm();
    StageView::Widgets stage1Widgets();
    StageView::Widgets stage2Widgets();
    void addServiceMenu();
    void createDialogs();
    void dressWindow();
    void wireSystems();
    void wireToolBar();
    void wireOverview();
    void wireDialogs();
    void wireMenus();

    void onSystemClosed(int index, const Connection* connection);
    void onBaudRateChanged(const Connection* connection);
    void showSystem(const Connection* connection, bool show);
    /// For the parameter dialog, of a registered connection.
    SystemState stateOf(const Connection& connection) const;
    void tellLinkFailed();
    bool mayOverwrite(const QString& path);
    void tellRecordingFailed(const RecordFailure& failure);
    void letRecordingErrorBeRead();
    void leave();

    std::unique_ptr<Ui::MainWindow> ui;
    WaitNotice waitNotice;
    LiveSystems systems;
    MonitorToolBar toolBar;
    Stages stages;
    TickTimer updateTimer;
    Statistics statistics;
    Acquisition acquisition;
    Stabilisation stabilisation;
    Multiplexing multiplexing;
    Recorder recorder;
    LiveRecording recording;
    DisplayTick displayTick;
    PlotFrame plotFrame;
    AxisDialogs axisDialogs;
    SystemsView systemsView;

    // Children of this window.
    SettingsDialog* settingsDialog = nullptr;
    DataLoggerDialog* dataLoggerDialog = nullptr;
    ParamsDialog* paramsDialog = nullptr;
    ServiceDialog* serviceDialog = nullptr;
    ConnectionOverviewDialog* connectionOverviewDialog = nullptr;
    InformationDialog* informationDialog = nullptr;
    QMessageBox* streamErrorBox = nullptr;
    QMessageBox* recordingErrorBox = nullptr;

    bool leaving = false;
};
