#include "plots/rescaletimeaxisdlg.h"

RescaleTimeAxisDlg::RescaleTimeAxisDlg(QWidget* parent)
    : QDialog(parent, Qt::Tool)
{}

void RescaleTimeAxisDlg::setUpperTime(int) {}

void RescaleTimeAxisDlg::setLowerTime(int) {}
