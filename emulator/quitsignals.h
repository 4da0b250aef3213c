#pragma once

#include <QSocketNotifier>

#include <memory>

namespace emulator {

/// Ends the application's event loop on SIGTERM and SIGINT. To be made before the first thread, so
/// that every thread leaves these signals to it.
class QuitSignals final
{
public:
    QuitSignals();
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

    /// Begins to listen; the application object has to exist.
    void watch();

private:
    int descriptor = -1;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace emulator
