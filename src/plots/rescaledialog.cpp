#include "plots/rescaledialog.h"

RescaleDialog::RescaleDialog(QWidget* parent)
    : QDialog(parent, Qt::Tool)
{}

void RescaleDialog::setUnit(int unit, int stage)
{
    (stage == 1 ? unit1 : unit2) = unit;
}

void RescaleDialog::setLimits(double, double, double, double) {}

void RescaleDialog::setUpperValue(double) {}

void RescaleDialog::setLowerValue(double) {}
