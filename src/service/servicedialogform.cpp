// The form, and the slots that its buttons call by their names.

#include "app/logging.h"
#include "service/servicedialog.h"
#include "service/servicetests.h"
#include "ui_servicedialog.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

using servicetests::Stages;

std::unique_ptr<Ui::ServiceDialog> ServiceDialog::makeForm()
{
    logMessage().debug() << "Constructing ServiceDialog";
    auto form = std::make_unique<Ui::ServiceDialog>();
    form->setupUi(this);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{form->drive_spinBox, form->buttonSSH_3, form->buttonCSH_3})
        widget->setEnabled(false);
    connect(form->buttonGIN_1, &QPushButton::clicked, this, &ServiceDialog::buttonGIN_clicked);
    return form;
}

void ServiceDialog::wireValueRows()
{
    connect(&valueRows, &ValueRows::pFactorWanted, this, &ServiceDialog::setPFactorTest);
    connect(&valueRows, &ValueRows::sensitivityWanted, this, &ServiceDialog::setSensitivityTest);
    connect(&valueRows, &ValueRows::adjustInWanted, this, &ServiceDialog::setAdjustInTest);
    // Tab goes down the tests before it goes to the results.
    QWidget* before = ui->fram_PushButton;
    for (QPushButton* button : valueRows.buttons()) {
        setTabOrder(before, button);
        before = button;
    }
}

/// All but those that only close and clear.
std::vector<QPushButton*> ServiceDialog::exchangeButtons() const
{
    const QList<QPushButton*> all = findChildren<QPushButton*>();
    std::vector<QPushButton*> talking;
    std::copy_if(all.begin(), all.end(), std::back_inserter(talking), [this](const auto* button) {
        return button != ui->clear_pushButton && button != ui->buttonClose;
    });
    return talking;
}

void ServiceDialog::on_buttonGAS_clicked()
{
    run(servicetests::activeSignal());
}

void ServiceDialog::buttonGIN_clicked()
{
    run(servicetests::intensity());
}

void ServiceDialog::on_buttonS1S_clicked()
{
    run(servicetests::oneShot());
}

void ServiceDialog::on_buttonCLS_clicked()
{
    run(servicetests::stop());
}

void ServiceDialog::on_buttonSSH_1_clicked()
{
    run(servicetests::setAndHold(Stages::One));
}

void ServiceDialog::on_buttonSSH_2_clicked()
{
    run(servicetests::setAndHold(Stages::Two));
}

void ServiceDialog::on_buttonSSH_3_clicked()
{
    run(servicetests::setAndHold(Stages::Both));
}

void ServiceDialog::on_buttonCSH_1_clicked()
{
    run(servicetests::clearSetAndHold(Stages::One));
}

void ServiceDialog::on_buttonCSH_2_clicked()
{
    run(servicetests::clearSetAndHold(Stages::Two));
}

void ServiceDialog::on_buttonCSH_3_clicked()
{
    run(servicetests::clearSetAndHold(Stages::Both));
}

void ServiceDialog::on_buttonSTF_1_clicked()
{
    run(servicetests::setTriggerFreeze(Stages::One));
}

void ServiceDialog::on_buttonSTF_2_clicked()
{
    run(servicetests::setTriggerFreeze(Stages::Two));
}

void ServiceDialog::on_buttonSTF_3_clicked()
{
    run(servicetests::setTriggerFreeze(Stages::Both));
}

void ServiceDialog::on_buttonCTF_1_clicked()
{
    run(servicetests::clearTriggerFreeze(Stages::One));
}

void ServiceDialog::on_buttonCTF_2_clicked()
{
    run(servicetests::clearTriggerFreeze(Stages::Two));
}

void ServiceDialog::on_buttonCTF_3_clicked()
{
    run(servicetests::clearTriggerFreeze(Stages::Both));
}

void ServiceDialog::on_buttonSDA_1x_clicked()
{
    driveActuator(Stage::One, BeamAxis::X);
}

void ServiceDialog::on_buttonSDA_2x_clicked()
{
    driveActuator(Stage::Two, BeamAxis::X);
}

void ServiceDialog::on_buttonSDA_1y_clicked()
{
    driveActuator(Stage::One, BeamAxis::Y);
}

void ServiceDialog::on_buttonSDA_2y_clicked()
{
    driveActuator(Stage::Two, BeamAxis::Y);
}

void ServiceDialog::on_buttonClose_clicked()
{
    close();
}

void ServiceDialog::on_speed_pushButton_clicked()
{
    onQuietLink([this] { testSpeed(); });
}

void ServiceDialog::on_clear_pushButton_clicked()
{
    ui->result_textBrowser->clear();
}

void ServiceDialog::on_baudrateChange_clicked()
{
    onQuietLink([this] { changeBaudRate(); });
}

void ServiceDialog::on_manalPosition_checkBox_clicked(bool checked)
{
    ui->Drive_position->setEnabled(!checked);
    ui->drive_spinBox->setEnabled(checked);
}

void ServiceDialog::on_error_PushButton_clicked()
{
    run(servicetests::lastError());
}

void ServiceDialog::on_fram_PushButton_clicked()
{
    run(servicetests::memory());
}
