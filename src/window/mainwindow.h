#pragma once

#include "model/detectorpair.h"
#include "model/measuresample.h"
#include "setup/connectionregistry.h"
#include "setup/connectionstatus.h"
#include "window/stageview.h"
#include "window/statisticssums.h"
#include "window/unitchoice.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QPalette>
#include <QTimer>

#include <array>
#include <memory>
#include <vector>

class Connection;
class ConnectingNotice;
class ConnectionOverviewDialog;
class Counter;
class DataLoggerDialog;
class InformationDialog;
class ParamsDialog;
class QMenu;
class QMessageBox;
class QRadioButton;
class QToolBar;
class RescaleDialog;
class RescaleTimeAxisDlg;
class ServiceDialog;
class SettingsDialog;
class StreamPause;

namespace Ui {
class MainWindow;
}

/// The hub of the application: the list of live connections, the dialogs, the six live plots with
/// their readouts, and the display tick that feeds them. Everything here runs on the GUI thread;
/// an exchange with a controller blocks it.
///
/// The index of a connection in `connections` is the key of all that is kept beside it: statuses,
/// detectors, statistics and curves.
class MainWindow final : public QMainWindow, public ConnectionRegistry
{
    Q_OBJECT

public:
    /// Builds the window and brings back the connections of the default setup file, which takes as
    /// long as its systems take to answer.
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // The registry of live connections.
    bool isLeaving() const override { return left; }
    void newConnection(std::unique_ptr<Connection> connection,
                       const ConnectionSettings& settings) override;
    bool closeConnection(const Connection* connection) override;
    void relabelConnection(const Connection* connection, const QString& label) override;
    ReconnectResult reconnect(const Connection* connection, const QString& expectedId) override;
    bool disconnectLink(const Connection* connection) override;

    const std::vector<std::unique_ptr<Connection>>& liveConnections() const { return connections; }
    const QList<ConnectionStatus>& liveStatuses() const { return statuses; }
    /// Indices of the systems on the plots, in the order in which they were shown.
    const QList<int>& shownConnections() const { return displayedConnections; }

public slots:
    bool closedConnection(QString address);
    bool disconnectConnection(QString address);
    /// Brings up the connected system with this address, else the first; `boardID` becomes the
    /// identification of the controller that answers, whoever it is.
    bool reconnectConnection(QString address, QString& boardID);
    bool updateSettingsAndParameters(QList<ConnectionSettings>& settings) override;
    /// Puts a connected system on the plots or takes it off.
    void showConnection(QString id, bool show);
    /// `graph` is 0 for x, 1 for y, 2 for intensity.
    void updateColorGraph(QString id, QColor color, int graph);
    void changeLabel(QString address, QString label);
    void changeGroupId(QString name, int id);

    /// Switches the stabilisation of a stage, 1 or 2, of any connected system.
    void activeStage(QString id, int stage, bool activate);
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

    void showParametersDialog();
    void closeParametersDialog();
    void showDataloggerDialog();
    void closeDataloggerDialog();
    void showServiceDialog();
    void showAboutSoftwareDialog();
    void showUserManualSoftware();
    void showUserManualHardware();

signals:
    void stopRecording();
    void changeDisplayConnection(QString name, bool show);
    void changeDisplayConnectionCommon(QString name, bool show);
    void startTimer();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private slots:
    void updateData();
    bool on_push_Stab1_clicked();
    bool on_push_Stab2_clicked();
    void on_actionExit_triggered();

private:
    /// The samples that one connection gave to a tick.
    struct Block
    {
        int connection;
        std::vector<MeasureSample> samples;
    };
    /// The next samples of a time plot that pass without a point.
    struct Decimation
    {
        int every;
        int counter;
        bool takes();
    };

    // Construction, in the order of their calls.
    void addServiceMenu();
    void addToolBar();
    void addToolBarEnd(QToolBar& toolBar);
    void makeStageViews();
    void createDialogs();
    void dressWindow();
    void makeOsciPlots();
    void makeTimePlots();
    void makeStatisticsOverlay();
    void makePiezoBars();
    void wire();
    void wireToolBar();
    void wireDialogs();
    void wireActions();
    void disableWhatNeedsAConnection();
    void disableWhatIsNotOffered();
    void loadSetupFile();

    // The tick.
    std::vector<Block> drainStores();
    void showSamples(const std::vector<Block>& blocks);
    void appendTimePoints(StageView& stage, const MeasureSample& sample, int connection,
                          Decimation& decimation);
    void appendPointingPoints(const MeasureSample& sample, int connection);
    void showReadouts(const MeasureSample& sample, int connection);
    void wrapSweep(StageView& stage, quint64 timeMs);
    /// False if the run has come to its end.
    bool countSample(const Block& block, bool first, bool last);
    void takeStatus(const MeasureSample& sample, int connection);
    void replotAll();
    void pollStatuses();
    void showStageStates();
    void updateDisplayUnits();
    void showUnit(StageView& stage, const UnitChoice& choice);
    void updateRateLimits();
    void lockRateToPulses();
    bool allDisplayedArePulsed() const;
    double toDisplayValue(int raw, unsigned intensityRaw, int connectionIndex, unsigned stage,
                          bool respectAgreement) const;
    void startTicking();
    void stopTicking();

    // Acquisition and stabilisation.
    int wantedSamples();
    void joinAcquisition(Connection& connection);
    void restart(StreamPause& pause);
    bool switchStage(StageView& stage);
    void showSwitch(StageView& stage, bool on);
    void readStatusAfterSwitch(int connectionIndex);
    void storeStatusReply(ConnectionStatus& status, const QByteArray& reply);
    uchar pollStatusByte();

    // Registry.
    class KeepingClosed;
    int indexOf(const QString& address) const;
    int indexOf(const Connection* link) const;
    int indexOfConnected(const QString& address) const;
    Connection& connectionAt(int index) const { return *connections[std::size_t(index)]; }
    /// What the stabilisation buttons address; null if it is not registered any more.
    Connection* currentLink() const;
    void watchLink(Connection& link);
    void takeLoss(const Connection* link);
    void endLink(Connection& link);
    /// The connected one with this address, else the first; -1 if there is none.
    int indexMeantBy(const QString& address) const;
    /// Brings up a link and finds out who answers. With an empty `expectedId` any controller will
    /// do. `id` is what the controller says of itself.
    ReconnectResult bringBack(Connection& link, const QString& expectedId, QString& id);
    bool comesUp(Connection& link);
    void showSystem(int index);
    void hideIfDisplayed(int index);
    void hideDisplayed(int position);
    void showForSingleSystem(int index);
    void hideSingleSystemWidgets();
    void setSingleSystemWidgetsVisible(bool visible);
    void enableControls(bool on);
    void setCurveColors(int index);
    void colorAxisLabels(const ConnectionStatus& status);
    void blackenAxisLabels();
    void clearCurvesOf(int index);
    void updateMaxRate();

    void showStatistics(StageView& stage, bool on);
    void unZoomOsci(StageView& stage);
    void unZoomPlot(StageView& stage);
    void rescaleTime(StageView& stage, int min, int max);
    void openManual(const QString& fileName);
    void leave();

    static constexpr int maxDisplayed = 50;

    std::unique_ptr<Ui::MainWindow> ui;
    std::unique_ptr<ConnectingNotice> connectingNotice;
    std::unique_ptr<QTimer> updateTimer;

    // Children of this window.
    SettingsDialog* settingsDialog = nullptr;
    DataLoggerDialog* dataLoggerDialog = nullptr;
    ParamsDialog* paramsDialog = nullptr;
    ServiceDialog* serviceDialog = nullptr;
    ConnectionOverviewDialog* connectionOverviewDialog = nullptr;
    RescaleDialog* rescaleDialog = nullptr;
    RescaleTimeAxisDlg* rescaleTimeAxisDlg = nullptr;
    InformationDialog* informationDialog = nullptr;
    QMessageBox* streamErrorBox = nullptr;
    QAction* startAction = nullptr;
    QAction* clearAction = nullptr;
    Counter* samplesToTakeCounter = nullptr;
    Counter* updateRateCounter = nullptr;
    Counter* samplingRateCounter = nullptr;
    QRadioButton* oscilloscopeRadio = nullptr;
    QRadioButton* pointingRadio = nullptr;
    QLabel* recordingLight = nullptr;
    QLabel* recordingText = nullptr;

    QPalette paletteOn;
    QPalette paletteOff;

    std::array<StageView, 2> stages;

    std::vector<std::unique_ptr<Connection>> connections;
    /// Closed, but still in use further up the stack.
    std::vector<std::unique_ptr<Connection>> keptClosed;
    int keepingClosed = 0;
    QList<ConnectionStatus> statuses;
    /// Owned by the parameter dialog.
    QList<DetectorPair>* detectorPairs = nullptr;
    QList<StatisticsSums> statisticsSums;
    /// Indices of the systems on the plots, in the order in which they were shown.
    QList<int> displayedConnections;
    /// Indices of the systems whose common detector is shown; there are none.
    QList<int> commonConnections;
    /// What the stabilisation buttons address.
    int currentConnection = 0;

    QElapsedTimer statisticsTime;
    int samplesTaken = 0;
    /// -1 for a run without limit.
    int samplesToTake = -1;
    int samplesShown = 0;
    std::array<QPointF, 2> currentPosition;
    std::array<QPointF, 2> meanPosition;
    std::array<double, 2> rms{0.0, 0.0};

    /// Failed status reads in a row.
    int commErrorCount = 0;
    uchar statusByte = 0;

    bool pulsedRateLock = false;
    int savedSamplingRate = 0;
    int maxRate = 0;
    bool left = false;
};
