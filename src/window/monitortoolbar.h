#pragma once

class Counter;
class QAction;
class QLabel;
class QMainWindow;
class QRadioButton;
class QToolBar;
struct RateField;

/// The tool bar of the main window and what it says: whether the acquisition runs, the rates, the
/// display mode, the samples to take. Its items belong to the window.
class MonitorToolBar final
{
public:
    /// Makes the tool bar and adds it to the window.
    explicit MonitorToolBar(QMainWindow& window);
    MonitorToolBar(const MonitorToolBar&) = delete;
    MonitorToolBar& operator=(const MonitorToolBar&) = delete;

    QAction& startAction() const { return *start; }
    QAction& clearAction() const { return *clear; }
    QRadioButton& pointingRadio() const { return *pointing; }
    Counter& samplesToTakeCounter() const { return *samplesToTake; }

    /// Whether the start button is pressed: the only place that keeps the state of the acquisition.
    bool isRunning() const;
    bool isPointing() const;
    int samplingRateHz() const;
    int updateRateHz() const;
    /// What stands in the field of the samples to take, also before it was confirmed.
    int wantedSamples() const;

    void showRunning(bool running, bool rateLocked);
    void showRecording(bool on);
    void enableStart(bool on) const;
    void enableSamplesToTake(bool on);

    RateField rateField() const;
    void showRateField(const RateField& field);
    /// Cuts both rates down to what the lines can carry.
    void setMaxRate(int maxHz);

private:
    void addActions();
    void addCounters();
    void addModes();
    void addRecordingState();
    void addLogo();

    QToolBar* bar;
    QAction* start = nullptr;
    QAction* clear = nullptr;
    Counter* samplingRate = nullptr;
    Counter* updateRate = nullptr;
    QRadioButton* oscilloscope = nullptr;
    QRadioButton* pointing = nullptr;
    Counter* samplesToTake = nullptr;
    QLabel* recordingLight = nullptr;
    QLabel* recordingText = nullptr;
};
