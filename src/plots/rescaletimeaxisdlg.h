#pragma once

#include <QDialog>

/// New limits for a time axis. The dialog keeps its axis; it has no controls and never emits by
/// itself.
class RescaleTimeAxisDlg final : public QDialog
{
    Q_OBJECT

public:
    explicit RescaleTimeAxisDlg(QWidget* parent = nullptr);

    /// 3 and 4: time of stage 1 and 2.
    void setAxis(int axis) { axisId = axis; }
    void setUpperTime(int seconds);
    void setLowerTime(int seconds);

    int axis() const { return axisId; }

signals:
    void axisRescaled(int axisId, int lowerS, int upperS, bool alsoOtherStage);

private:
    int axisId = 0;
};
