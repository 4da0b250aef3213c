#pragma once

#include "controls/exchangebuttons.h"
#include "model/detectorpair.h"
#include "params/groupcontrols.h"
#include "params/parameterapplying.h"
#include "params/stageparametersview.h"
#include "params/systemstate.h"
#include "setup/settings.h"

#include <QDialog>

#include <array>
#include <functional>
#include <list>
#include <memory>
#include <vector>

class Connection;
class QMessageBox;
class QPushButton;
struct ConnectionSettings;
struct ParameterReading;

namespace Ui {
class ParamsDialog;
}

/// Shows and changes the parameters of one controller at a time, and owns the detectors of every
/// registered connection. The window reads them where `addDetectors` says.
///
/// The dialog stops nobody from using the other windows. It keeps nothing of a system: each opening
/// asks the controller again. An exchange stops the stream, blocks until the last reply, and starts
/// the stream again. What the user clicks meanwhile is lost. GUI thread only.
class ParamsDialog final : public QDialog
{
    Q_OBJECT

public:
    ParamsDialog(ParamsSources sources, QWidget* parent);
    ~ParamsDialog() override;

    /// Adds the detectors of a new connection. They stay where they are until `removeDetectors`,
    /// before which the connection has to live.
    DetectorPair& addDetectors(Connection& connection, const ConnectionSettings& settings);
    /// Removes the detectors of a connection, and closes the dialog if it stands on that one.
    void removeDetectors(const Connection* connection);

public slots:
    /// Shows the dialog without being modal.
    void open() override;
    /// Opens for the first registered system with this address, connected or not. Without one a
    /// visible dialog is closed, and nothing else happens.
    void openDialog(QString address);
    /// Closes the dialog if it is visible, and opens it for a registered connection. For others
    /// nothing else happens.
    void openFor(const Connection* connection);
    /// Closes the dialog if its connection is not connected any more.
    void closeIfDisconnected();

signals:
    /// A stream could not be started again.
    void errorStream();

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void on_pushButtonSave_clicked();
    void on_pushButtonRefresh_clicked();
    void on_pushButtonApply_clicked();
    void on_pushButtonCloseParams_clicked();

    void on_pushButton_SetHold_clicked();
    void on_pushButton_SetHold_2_clicked();
    void on_stabPushButton_clicked();
    void on_stab2PushButton_clicked();
    void on_lockSubsystemButton_clicked();
    void on_alignPushButton_clicked();

    void on_comboBox_DetecType_currentIndexChanged(int index);
    void on_comboBox_DetecType_2_currentIndexChanged(int index);
    void on_radioButtonPositionInVolt_clicked();
    void on_radioButtonPositionInVolt_2_clicked();
    void on_radioButtonPositionInLength_clicked();
    void on_radioButtonPositionInLength_2_clicked();
    void on_radioButton_PFactor_intern_clicked();
    void on_radioButton_PFactor_intern_2_clicked();
    void on_radioButton_PFactor_extern_clicked();
    void on_radioButton_PFactor_extern_2_clicked();
    void on_radioButton_Adjust_intern_clicked();
    void on_radioButton_Adjust_intern_2_clicked();
    void on_radioButton_Adjust_extern_clicked();
    void on_radioButton_Adjust_extern_2_clicked();
    void on_radioButton_sensitivity_software_clicked();
    void on_radioButton_sensitivity_software_2_clicked();
    void on_radioButton_sensitivity_extern_clicked();
    void on_radioButton_sensitivity_extern_2_clicked();

private:
    struct System
    {
        Connection* connection;
        DetectorPair detectors;
    };

    std::unique_ptr<Ui::ParamsDialog> makeForm();
    StageParametersView::Widgets stage1Widgets() const;
    StageParametersView::Widgets stage2Widgets() const;
    GroupControls::Widgets groupWidgets() const;
    std::vector<QPushButton*> exchangeButtons() const;
    QPushButton& holdButton(Stage stage) const;
    void hideGroupControls();
    StageParametersView& viewOf(Stage stage) { return views[indexOf(stage)]; }

    /// Whether there is a controller to talk to.
    bool isOperable() const;
    GroupControls::Systems connections() const;
    std::size_t currentPlace() const;
    /// Does the work at the system on display while its stream is stopped.
    void onQuietLink(const std::function<void()>& work);
    void tell(const QString& failure);

    void reset();
    void showState();
    void showWhatIsOffered();
    bool offersSensitivity() const;
    /// Whether a controller answered.
    bool readAndShow();
    void showReading(const ParameterReading& reading);
    void showFlags(quint8 flags);
    void apply();
    void storeDetectors();
    void fallBack(const ApplyFailure& failure);
    void save();
    void hold(Stage stage);
    /// A stage holds only where its detector tells the position and its stabilisation is off.
    void offerHold(Stage stage, bool isStabilised);
    void lockStage(Stage stage);

    void onTypeChanged(Stage stage);
    void onPFactorClicked(Stage stage, Source clicked);
    void onAdjustClicked(Stage stage, Source clicked);
    void onSensitivityClicked(Stage stage, Source clicked);
    Source chosenSource(const SourceRadios& radios, Source clicked) const;
    /// A controller has one source for the P-factors of both stages.
    void selectPFactorSource(Source source);

    ParamsSources sources;
    /// In a list, because the window keeps references to the detectors.
    std::list<System> systems;
    /// The system on display; null if there is none.
    System* current = nullptr;
    bool wasAnswered = false;

    std::unique_ptr<Ui::ParamsDialog> ui;
    std::array<StageParametersView, 2> views;
    ExchangeButtons buttons;
    GroupControls group;
    Settings settings;
    QMessageBox* errorBox;
};
