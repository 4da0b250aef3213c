// The application, whose window is closed as soon as it is shown.

#include "app/logging.h"
#include "app/startup.h"
#include "window/mainwindow.h"

#include <QLocale>
#include <QStyle>
#include <QTimer>

int main(int argc, char** argv)
{
    return startup::run(argc, argv, [](MainWindow& window) {
        logMessage().info() << "A half is" << QLocale().toString(0.5);
        logMessage().info() << "Drawn in the style" << window.style()->objectName();
        QTimer::singleShot(0, &window, &QWidget::close);
    });
}
