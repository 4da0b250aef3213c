#include "plots/rescaledialog.h"

#include "plots/axislimits.h"
#include "ui_rescaledialog.h"

namespace {

constexpr int voltUnit = 0;
constexpr int decimals = 2;

/// Nothing for a number that is no unit.
QString nameOfUnit(int unit)
{
    switch (unit) {
    case voltUnit:
        return QStringLiteral("V");
    case 1:
        return QStringLiteral("μm");
    case 2:
        return QStringLiteral("mm");
    default:
        return {};
    }
}

} // namespace

RescaleDialog::RescaleDialog(QWidget* parent)
    : ToolDialog(parent)
    , ui(std::make_unique<Ui::RescaleDialog>())
{
    ui->setupUi(this);
    ui->buttonBox->addButton(ui->okPushButton, QDialogButtonBox::AcceptRole);
    ui->buttonBox->addButton(ui->cancelPushButton, QDialogButtonBox::RejectRole);
    connect(ui->okPushButton, &QPushButton::clicked, this, &RescaleDialog::acceptNewValues);
    connect(ui->cancelPushButton, &QPushButton::clicked, this, &RescaleDialog::close);
    fixSize();
}

RescaleDialog::~RescaleDialog() = default;

void RescaleDialog::setAxis(int axis)
{
    axisId = axis;
    showUnitOfAxis();
}

void RescaleDialog::setUnit(int unit, int stage)
{
    (stage == 1 ? unit1 : unit2) = unit;
    showUnitOfAxis();
}

void RescaleDialog::showUnitOfAxis()
{
    switch (axisId) {
    case 1:
        showUnit(unit1);
        break;
    case 2:
        showUnit(unit2);
        break;
    case 4:
    case 5:
        showUnit(voltUnit);
        break;
    default:
        // The intensity of stage 2 is one of these: it keeps the unit of the dialog's last use.
        break;
    }
}

void RescaleDialog::showUnit(int unit)
{
    const QString name = nameOfUnit(unit);
    if (name.isEmpty())
        return;
    ui->label_2->setText(tr("Upper limit [%1]").arg(name));
    ui->label->setText(tr("Lower limit [%1]").arg(name));
}

void RescaleDialog::setLimits(double upperMax, double upperMin, double lowerMax, double lowerMin)
{
    ui->doubleSpinBox_UpperBound->setDecimals(decimals);
    ui->doubleSpinBox_UpperBound->setRange(upperMin, upperMax);
    ui->doubleSpinBox_LowerBound->setDecimals(decimals);
    ui->doubleSpinBox_LowerBound->setRange(lowerMin, lowerMax);
}

void RescaleDialog::setUpperValue(double value)
{
    ui->doubleSpinBox_UpperBound->setValue(value);
}

void RescaleDialog::setLowerValue(double value)
{
    ui->doubleSpinBox_LowerBound->setValue(value);
}

void RescaleDialog::startInput()
{
    ui->doubleSpinBox_UpperBound->setFocus();
    ui->doubleSpinBox_UpperBound->selectAll();
}

void RescaleDialog::acceptNewValues()
{
    const axislimits::Values limits = axislimits::ofValues(ui->doubleSpinBox_LowerBound->value(),
                                                           ui->doubleSpinBox_UpperBound->value());
    emit axisRescaled(axisId, limits.lower, limits.upper, ui->checkBox->isChecked());
    close();
}
