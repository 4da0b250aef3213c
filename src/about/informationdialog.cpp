#include "about/informationdialog.h"

InformationDialog::InformationDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About this software"));
}
