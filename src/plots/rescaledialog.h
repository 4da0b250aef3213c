#pragma once

#include "plots/tooldialog.h"

#include <memory>

namespace Ui {
class RescaleDialog;
}

/// Asks for new limits of a position or an intensity axis. It repairs what is typed: crossed limits
/// are put in order, and limits that are too close are moved apart.
///
/// Units are 0 for V, 1 for μm, 2 for mm. Axes are 1 and 2 for the position of stage 1 and 2, 5 and
/// 6 for the intensity. GUI thread only.
class RescaleDialog final : public ToolDialog
{
    Q_OBJECT

public:
    explicit RescaleDialog(QWidget* parent = nullptr);
    ~RescaleDialog() override;

    /// Says whose limits are typed, and names their unit.
    void setAxis(int axis);
    /// Sets the unit of the positions of stage 1 or 2. Limits that are open keep their numbers.
    void setUnit(int unit, int stage);
    /// The ranges of both fields. To be set before the values, which are held to them.
    void setLimits(double upperMax, double upperMin, double lowerMax, double lowerMin);
    void setUpperValue(double value);
    void setLowerValue(double value);
    /// Gives the keyboard to the first field and selects its text. To be called after the dialog
    /// was shown, which takes such a selection back.
    void startInput();

    int axis() const { return axisId; }
    int unit(int stage) const { return stage == 1 ? unit1 : unit2; }

signals:
    /// `min` is less than `max`.
    void axisRescaled(int axisId, double min, double max, bool alsoOtherStage);

private slots:
    void acceptNewValues();

private:
    void showUnitOfAxis();
    void showUnit(int unit);

    std::unique_ptr<Ui::RescaleDialog> ui;
    int axisId = 0;
    int unit1 = 0;
    int unit2 = 0;
};
