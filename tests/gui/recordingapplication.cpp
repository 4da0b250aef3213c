// The application, which records as soon as it has a system. Its last argument is the file.

#include "app/startup.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

/// Works the recording dialog once its button can be pressed.
void recordSoon(MainWindow& window, const QString& fileName)
{
    auto* timer = new QTimer(&window);
    constexpr int pollMs = 10;
    QObject::connect(timer, &QTimer::timeout, &window, [timer, &window, fileName] {
        auto* dialog = window.findChild<QDialog*>("DataLoggerDialog");
        auto* start = dialog->findChild<QPushButton*>("pushButton_Start");
        if (!start->isEnabled())
            return;
        timer->stop();
        window.findChild<QAction*>("actionOpenDataLog")->trigger();
        dialog->findChild<QLineEdit*>("lineEdit_FileName")->setText(fileName);
        start->click();
    });
    timer->start(pollMs);
}

} // namespace

int main(int argc, char** argv)
{
    const QString fileName = QString::fromLocal8Bit(argv[argc - 1]);
    return startup::run(argc, argv,
                        [&fileName](MainWindow& window) { recordSoon(window, fileName); });
}
