// The application with somebody at its window: for machines without a display.

#include "app/startup.h"
#include "demonstration.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int usageFailure = 2;
constexpr int boxWatchMs = 200;

/// Reads a box out and takes its default answer, so that nothing waits for an answer for ever.
void answerBox()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return;
    std::printf("%s: %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
    QTest::keyClick(box, Qt::Key_Return);
}

/// Boxes can come up before the window is there, even before the application's own start.
void watchForBoxes()
{
    auto* watch = new QTimer(QCoreApplication::instance());
    QObject::connect(watch, &QTimer::timeout, watch, &answerBox);
    watch->start(boxWatchMs);
}

Q_COREAPP_STARTUP_FUNCTION(watchForBoxes)

} // namespace

int main(int argc, char** argv)
{
    constexpr int ownArguments = 2;
    if (argc <= ownArguments) {
        std::fprintf(stderr,
                     "Usage: lumetra-demonstration FOLDER COUNT [OPTION...]\n"
                     "Runs the application with these options, presses Start and takes pictures "
                     "into FOLDER.\nFails unless COUNT systems deliver samples.\n");
        return usageFailure;
    }
    const QString pictures = QString::fromLocal8Bit(argv[1]);
    const int expected = std::atoi(argv[2]);
    argv[ownArguments] = argv[0];

    int delivering = 0;
    const int status =
        startup::run(argc - ownArguments, argv + ownArguments, [&](MainWindow& window) {
            QTimer::singleShot(0, &window, [&] {
                delivering = Demonstration(window, pictures).run();
                window.close();
            });
        });
    if (delivering < expected) {
        std::fprintf(stderr, "lumetra-demonstration: %d of %d systems delivered samples\n",
                     delivering, expected);
        return EXIT_FAILURE;
    }
    return status;
}
