#include "window/usermanual.h"

#include "window/windowtext.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

void openUserManual(const QString& fileName, QWidget& window)
{
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(fileName);
    if (!QFileInfo::exists(path)) {
        QMessageBox::warning(
            &window, WindowText::tr("File not found"),
            WindowText::tr("Cannot open user manual.\n\n"
                           "Please check if the pdf file is in the program folder."));
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        QMessageBox::warning(&window, WindowText::tr("Error"),
                             WindowText::tr("Error with opening user manual"));
}
