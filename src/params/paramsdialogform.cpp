// The form: its controls by stage, the slots that they call by their names, and what a change of a
// choice brings along.

#include "app/logging.h"
#include "params/paramsdialog.h"
#include "ui_paramsdialog.h"

#include <memory>
#include <vector>

std::unique_ptr<Ui::ParamsDialog> ParamsDialog::makeForm()
{
    logMessage().debug() << "Constructing ParamsDialog";
    auto form = std::make_unique<Ui::ParamsDialog>();
    form->setupUi(this);
    return form;
}

StageParametersView::Widgets ParamsDialog::stage1Widgets() const
{
    return {*ui->comboBox_DetecType,
            *ui->beamDiameterSpinBox,
            *ui->radioButtonPositionInVolt,
            *ui->radioButtonPositionInLength,
            *ui->doubleSpinBox_PFactor,
            {*ui->radioButton_PFactor_intern, *ui->radioButton_PFactor_extern},
            *ui->doubleSpinBox_AdjustX,
            *ui->doubleSpinBox_AdjustY,
            {*ui->radioButton_Adjust_intern, *ui->radioButton_Adjust_extern},
            *ui->doubleSpinBox_sens_1,
            {*ui->radioButton_sensitivity_software, *ui->radioButton_sensitivity_extern},
            *ui->doubleSpinBox_SetHoldX,
            *ui->doubleSpinBox_SetHoldY};
}

StageParametersView::Widgets ParamsDialog::stage2Widgets() const
{
    return {*ui->comboBox_DetecType_2,
            *ui->beamDiameterSpinBox_2,
            *ui->radioButtonPositionInVolt_2,
            *ui->radioButtonPositionInLength_2,
            *ui->doubleSpinBox_PFactor_2,
            {*ui->radioButton_PFactor_intern_2, *ui->radioButton_PFactor_extern_2},
            *ui->doubleSpinBox_AdjustX_2,
            *ui->doubleSpinBox_AdjustY_2,
            {*ui->radioButton_Adjust_intern_2, *ui->radioButton_Adjust_extern_2},
            *ui->doubleSpinBox_sens_2,
            {*ui->radioButton_sensitivity_software_2, *ui->radioButton_sensitivity_extern_2},
            *ui->doubleSpinBox_SetHoldX_2,
            *ui->doubleSpinBox_SetHoldY_2};
}

std::vector<QPushButton*> ParamsDialog::exchangeButtons() const
{
    return {ui->pushButtonSave,     ui->pushButtonRefresh,    ui->pushButtonApply,
            ui->pushButton_SetHold, ui->pushButton_SetHold_2, ui->stabPushButton,
            ui->stab2PushButton,    ui->alignPushButton,      ui->lockSubsystemButton};
}

QPushButton& ParamsDialog::holdButton(Stage stage) const
{
    return stage == Stage::One ? *ui->pushButton_SetHold : *ui->pushButton_SetHold_2;
}

GroupControls::Widgets ParamsDialog::groupWidgets() const
{
    return {*ui->partnerLabel,
            *ui->alignPushButton,
            *ui->lockSubsystemButton,
            {ui->stabPushButton, ui->stab2PushButton}};
}

/// Nothing shows them in this version.
void ParamsDialog::hideGroupControls()
{
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ui->frame_2, ui->multiLine, ui->lockSubsystemButton,
                                         ui->detectorLabel1, ui->detectorLabel2})
        widget->hide();
}

Source ParamsDialog::chosenSource(const SourceRadios& radios, Source clicked) const
{
    // Without a system there is nothing that software could set.
    return current ? radios.chosenBy(clicked) : Source::External;
}

void ParamsDialog::selectPFactorSource(Source source)
{
    for (StageParametersView& view : views)
        view.selectPFactorSource(source);
}

void ParamsDialog::onTypeChanged(Stage stage)
{
    if (!current) {
        viewOf(stage).clearType();
        return;
    }
    viewOf(stage).onDetectorChanged();
    offerHold(stage, sources.stateOf(*current->connection).isStabilised[indexOf(stage)]);
}

void ParamsDialog::onPFactorClicked(Stage stage, Source clicked)
{
    selectPFactorSource(chosenSource(viewOf(stage).pFactorSource(), clicked));
}

void ParamsDialog::onAdjustClicked(Stage stage, Source clicked)
{
    StageParametersView& view = viewOf(stage);
    view.selectAdjustSource(chosenSource(view.adjustSource(), clicked));
}

void ParamsDialog::onSensitivityClicked(Stage stage, Source clicked)
{
    StageParametersView& view = viewOf(stage);
    view.selectSensitivitySource(chosenSource(view.sensitivitySource(), clicked));
}

void ParamsDialog::on_pushButtonSave_clicked()
{
    save();
}

void ParamsDialog::on_pushButtonRefresh_clicked()
{
    readAndShow();
}

void ParamsDialog::on_pushButtonApply_clicked()
{
    apply();
}

void ParamsDialog::on_pushButtonCloseParams_clicked()
{
    close();
}

void ParamsDialog::on_pushButton_SetHold_clicked()
{
    hold(Stage::One);
}

void ParamsDialog::on_pushButton_SetHold_2_clicked()
{
    hold(Stage::Two);
}

void ParamsDialog::on_stabPushButton_clicked()
{
    lockStage(Stage::One);
}

void ParamsDialog::on_stab2PushButton_clicked()
{
    lockStage(Stage::Two);
}

void ParamsDialog::on_lockSubsystemButton_clicked()
{
    if (current)
        group.lockPartner(connections(), currentPlace());
}

void ParamsDialog::on_alignPushButton_clicked()
{
    if (current)
        group.applyPositions(connections(), currentPlace());
}

void ParamsDialog::on_comboBox_DetecType_currentIndexChanged(int)
{
    onTypeChanged(Stage::One);
}

void ParamsDialog::on_comboBox_DetecType_2_currentIndexChanged(int)
{
    onTypeChanged(Stage::Two);
}

void ParamsDialog::on_radioButtonPositionInVolt_clicked()
{
    viewOf(Stage::One).onDetectorChanged();
}

void ParamsDialog::on_radioButtonPositionInVolt_2_clicked()
{
    viewOf(Stage::Two).onDetectorChanged();
}

void ParamsDialog::on_radioButtonPositionInLength_clicked()
{
    viewOf(Stage::One).onDetectorChanged();
}

void ParamsDialog::on_radioButtonPositionInLength_2_clicked()
{
    viewOf(Stage::Two).onDetectorChanged();
}

void ParamsDialog::on_radioButton_PFactor_intern_clicked()
{
    onPFactorClicked(Stage::One, Source::Software);
}

void ParamsDialog::on_radioButton_PFactor_intern_2_clicked()
{
    onPFactorClicked(Stage::Two, Source::Software);
}

void ParamsDialog::on_radioButton_PFactor_extern_clicked()
{
    onPFactorClicked(Stage::One, Source::External);
}

void ParamsDialog::on_radioButton_PFactor_extern_2_clicked()
{
    onPFactorClicked(Stage::Two, Source::External);
}

void ParamsDialog::on_radioButton_Adjust_intern_clicked()
{
    onAdjustClicked(Stage::One, Source::Software);
}

void ParamsDialog::on_radioButton_Adjust_intern_2_clicked()
{
    onAdjustClicked(Stage::Two, Source::Software);
}

void ParamsDialog::on_radioButton_Adjust_extern_clicked()
{
    onAdjustClicked(Stage::One, Source::External);
}

void ParamsDialog::on_radioButton_Adjust_extern_2_clicked()
{
    onAdjustClicked(Stage::Two, Source::External);
}

void ParamsDialog::on_radioButton_sensitivity_software_clicked()
{
    onSensitivityClicked(Stage::One, Source::Software);
}

void ParamsDialog::on_radioButton_sensitivity_software_2_clicked()
{
    onSensitivityClicked(Stage::Two, Source::Software);
}

void ParamsDialog::on_radioButton_sensitivity_extern_clicked()
{
    onSensitivityClicked(Stage::One, Source::External);
}

void ParamsDialog::on_radioButton_sensitivity_extern_2_clicked()
{
    onSensitivityClicked(Stage::Two, Source::External);
}
