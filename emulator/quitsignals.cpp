#include "emulator/quitsignals.h"

#include <QCoreApplication>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace emulator {

QuitSignals::QuitSignals()
{
    sigset_t quitSet;
    sigemptyset(&quitSet);
    sigaddset(&quitSet, SIGTERM);
    sigaddset(&quitSet, SIGINT);
    constexpr int newDescriptor = -1;
    // Blocked signals are read from the descriptor instead of interrupting the program anywhere.
    if (pthread_sigmask(SIG_BLOCK, &quitSet, nullptr) == 0)
        descriptor = signalfd(newDescriptor, &quitSet, SFD_CLOEXEC | SFD_NONBLOCK);
}

QuitSignals::~QuitSignals()
{
    notifier.reset();
    if (descriptor >= 0)
        close(descriptor);
}

void QuitSignals::watch()
{
    if (descriptor < 0)
        return;
    notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);
}

} // namespace emulator
