#pragma once

#include <QDialog>
#include <QTimer>

#include <memory>

class LargeTimer;
class QShowEvent;

namespace Ui {
class DataLoggerDialog;
}

/// Names a recording, says what it will cost, starts and stops it. The dialog writes nothing: it
/// tells the window by signals, and carries the clock that ends the recording.
///
/// It is idle or records. Only `emitStartSignal` and `emitStopSignal` change that; closing the
/// dialog does not. GUI thread only.
class DataLoggerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit DataLoggerDialog(QWidget* parent);
    ~DataLoggerDialog() override;

    /// Takes a sampling rate in Hz, at least 0, as the save rate and the highest that can be
    /// chosen. A rate above the highest one so far gives that one, unless it is above 500 Hz: there
    /// the save rate is the sampling rate and can not be chosen. Acts while recording, too.
    void setSaveRate(int rateHz);
    /// Lines per second that are wanted of each system.
    int saveRate() const { return saveRateHz; }

    /// Says whether there is anything to record. Without it Start is disabled, and a recording
    /// whose clock runs ends.
    void setRecordingEnabled(bool on);
    bool isRecordingEnabled() const { return recordingEnabled; }

    /// From `emitStartSignal` to `emitStopSignal`, whether the clock runs or not.
    bool isRecording() const { return stopTimer != nullptr; }

public slots:
    /// Asks for what is missing, then starts to record: tells the window and waits for
    /// `startTimerSaving`. During a recording it asks and tells again, and leaves the clock alone.
    void emitStartSignal();
    /// Ends a recording. Tells the window in any case.
    void emitStopSignal();
    /// Starts the clock: the first data are being written. Does nothing unless recording.
    void startTimerSaving();
    /// Shows which share of the time is over, and what remains. Does nothing unless recording.
    void updateProgressBar();

signals:
    /// `fileName` is complete and may be overwritten. With `multi` all displayed systems are
    /// recorded, otherwise one.
    void dataRecordingStarted(QString fileName, bool multi);
    /// Belongs to the interface; never emitted.
    void dataRecordingStarted(QString fileName);
    void dataRecordingStopped();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void prepareForm();
    void wireForm();

    /// Whether the rate is so low that the user may choose a lower one.
    bool canChooseRate() const;
    void clearRateIfFixed();
    void showEstimate();

    void chooseFile();
    bool mayWrite(const QString& fileName);
    void showRecording(bool on);
    void allowStart();
    void makeStopTimer();

    std::unique_ptr<Ui::DataLoggerDialog> ui;
    /// Exists while recording; runs from the first data on.
    LargeTimer* stopTimer = nullptr;
    QTimer progressTimer;
    int saveRateHz = 0;
    int recordSeconds = 0;
    bool recordingEnabled = false;
};
