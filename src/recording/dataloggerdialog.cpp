#include "recording/dataloggerdialog.h"

#include "app/logging.h"

DataLoggerDialog::DataLoggerDialog(QWidget* parent)
    : QDialog(parent)
{
    logMessage().debug() << "Constructing DataLoggerDialog";
    setWindowTitle(tr("Data recording"));
    logMessage().debug() << "Finished constructing DataLoggerDialog";
}

void DataLoggerDialog::startTimerSaving() {}

void DataLoggerDialog::emitStopSignal()
{
    emit dataRecordingStopped();
}
