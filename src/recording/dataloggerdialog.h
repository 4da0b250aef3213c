#pragma once

#include <QDialog>

/// Names a recording and starts and stops it. It keeps what the window tells it; its controls are
/// not part of this version, so no recording ever starts.
class DataLoggerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit DataLoggerDialog(QWidget* parent);

    /// Samples per second that a recording may have at most.
    void setSaveRate(int rateHz) { rate = rateHz; }
    int saveRate() const { return rate; }
    /// Whether there is anything to record.
    void setRecordingEnabled(bool on) { recordingEnabled = on; }
    bool isRecordingEnabled() const { return recordingEnabled; }

public slots:
    /// Starts the clock of a timed recording.
    void startTimerSaving();
    /// Ends a running recording.
    void emitStopSignal();

signals:
    void dataRecordingStarted(QString fileName, bool multi);
    void dataRecordingStopped();

private:
    int rate = 0;
    bool recordingEnabled = false;
};
