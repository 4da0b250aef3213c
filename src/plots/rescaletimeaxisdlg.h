#pragma once

#include "plots/tooldialog.h"

#include <memory>

namespace Ui {
class RescaleTimeAxisDlg;
}

/// Asks for new limits of a time axis in hours, minutes and seconds. It repairs what is typed: an
/// upper limit that is not above the lower one moves up.
///
/// Axes are 3 and 4 for the time of stage 1 and 2. GUI thread only.
class RescaleTimeAxisDlg final : public ToolDialog
{
    Q_OBJECT

public:
    explicit RescaleTimeAxisDlg(QWidget* parent = nullptr);
    ~RescaleTimeAxisDlg() override;

    /// Says whose limits are typed.
    void setAxis(int axis) { axisId = axis; }
    /// Seconds below 0 and beyond "999:99:99" are held to these.
    void setUpperTime(int seconds);
    void setLowerTime(int seconds);
    /// Gives the keyboard to the first field and selects its text. To be called after the dialog
    /// was shown, which takes such a selection back.
    void startInput();

    int axis() const { return axisId; }

signals:
    /// `lowerS` is less than `upperS`.
    void axisRescaled(int axisId, int lowerS, int upperS, bool alsoOtherStage);

private slots:
    void acceptNewValues();

private:
    int axisId = 0;
    std::unique_ptr<Ui::RescaleTimeAxisDlg> ui;
};
