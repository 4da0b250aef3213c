#include "service/servicedialog.h"

#include "app/logging.h"

ServiceDialog::ServiceDialog(QWidget* parent)
    : QDialog(parent)
{
    logMessage().debug() << "Constructing ServiceDialog";
    setWindowTitle(tr("Operation Tests Qor-Digital"));
    logMessage().debug() << "Finished constructing ServiceDialog";
}
