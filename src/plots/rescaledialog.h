#pragma once

#include <QDialog>

/// New limits for a position or an intensity axis. The dialog keeps its axis and the units of both
/// stages; it has no controls and never emits by itself.
class RescaleDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit RescaleDialog(QWidget* parent = nullptr);

    /// 1 and 2: position of stage 1 and 2; 5 and 6: intensity of stage 1 and 2.
    void setAxis(int axis) { axisId = axis; }
    /// `unit` is 0 for V, 1 for µm, 2 for mm.
    void setUnit(int unit, int stage);
    void setLimits(double upperMax, double upperMin, double lowerMax, double lowerMin);
    void setUpperValue(double value);
    void setLowerValue(double value);

    int axis() const { return axisId; }
    int unit(int stage) const { return stage == 1 ? unit1 : unit2; }

signals:
    void axisRescaled(int axisId, double min, double max, bool alsoOtherStage);

private:
    int axisId = 0;
    int unit1 = 0;
    int unit2 = 0;
};
