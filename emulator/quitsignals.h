#pragma once

#include <QSocketNotifier>

#include <memory>

namespace emulator {

/// Ends the application's event loop on SIGTERM and SIGINT. To be created before the first thread:
/// it blocks both signals, and threads inherit that.
class QuitSignals final
{
public:
    QuitSignals();
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

    /// Starts to listen for the signals. The application object must exist.
    void watch();

private:
    int descriptor = -1;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace emulator
