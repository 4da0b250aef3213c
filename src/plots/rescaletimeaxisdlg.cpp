#include "plots/rescaletimeaxisdlg.h"

#include "plots/axislimits.h"
#include "plots/durationtext.h"
#include "ui_rescaletimeaxisdlg.h"

RescaleTimeAxisDlg::RescaleTimeAxisDlg(QWidget* parent)
    : ToolDialog(parent)
    , ui(std::make_unique<Ui::RescaleTimeAxisDlg>())
{
    ui->setupUi(this);
    ui->buttonBox->addButton(ui->pushButton_OK, QDialogButtonBox::AcceptRole);
    ui->buttonBox->addButton(ui->pushButton_Cancel, QDialogButtonBox::RejectRole);
    connect(ui->pushButton_OK, &QPushButton::clicked, this, &RescaleTimeAxisDlg::acceptNewValues);
    connect(ui->pushButton_Cancel, &QPushButton::clicked, this, &RescaleTimeAxisDlg::close);
    fixSize();
}

RescaleTimeAxisDlg::~RescaleTimeAxisDlg() = default;

void RescaleTimeAxisDlg::setUpperTime(int seconds)
{
    ui->lineEdit_UpperTime->setText(durationtext::fromSeconds(seconds));
}

void RescaleTimeAxisDlg::setLowerTime(int seconds)
{
    ui->lineEdit_LowerTime->setText(durationtext::fromSeconds(seconds));
}

void RescaleTimeAxisDlg::startInput()
{
    ui->lineEdit_LowerTime->setFocus();
    ui->lineEdit_LowerTime->selectAll();
}

void RescaleTimeAxisDlg::acceptNewValues()
{
    const axislimits::Seconds limits =
        axislimits::ofTimes(durationtext::toSeconds(ui->lineEdit_LowerTime->text()),
                            durationtext::toSeconds(ui->lineEdit_UpperTime->text()));
    emit axisRescaled(axisId, limits.lower, limits.upper, ui->checkBox->isChecked());
    close();
}
