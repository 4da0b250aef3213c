#include "emulator/ptyface.h"

#include <cerrno>
#include <sys/epoll.h>

namespace emulator {

namespace {

/// Bytes of replies that a controller keeps at most while the host does not read.
constexpr int mostUnsentBytes = 4096;
constexpr int retryMs = 5;

} // namespace

PtyFace::PtyFace(const ControllerOptions& options, Logging logging)
    : Face(options, logging)
    , changes(epoll_create1(EPOLL_CLOEXEC))
{
    retryTimer.setSingleShot(true);
    retryTimer.setInterval(retryMs);
    connect(&retryTimer, &QTimer::timeout, this, &PtyFace::sendUnsent);
    if (!changes.isOpen())
        return;
    changeNotifier = std::make_unique<QSocketNotifier>(changes.get(), QSocketNotifier::Read);
    connect(changeNotifier.get(), &QSocketNotifier::activated, this, [this] {
        epoll_event event{};
        constexpr int noWaitMs = 0;
        epoll_wait(changes.get(), &event, 1, noWaitMs);
        readInput();
    });
}

PtyFace::~PtyFace()
{
    // Unplugging emits `hostDisconnected`, which must not reach anybody from a destructor.
    blockSignals(true);
    unplug();
}

bool PtyFace::open(const QString& wanted)
{
    unplug();
    link = wanted;
    return replug();
}

bool PtyFace::replug()
{
    if (terminal)
        return true;
    terminal = PseudoTerminal::make(ownSettings(), error);
    if (!terminal)
        return false;
    terminalPath = terminal->path();
    if (watch() && (link.isEmpty() || deviceLink.make(link, terminalPath, error)))
        return true;
    terminal.reset();
    return false;
}

bool PtyFace::watch()
{
    epoll_event event{};
    event.events = EPOLLIN | EPOLLET;
    if (epoll_ctl(changes.get(), EPOLL_CTL_ADD, terminal->descriptor(), &event) == 0)
        return true;
    error = qt_error_string(errno);
    return false;
}

void PtyFace::unplug()
{
    if (!terminal)
        return;
    deviceLink.remove();
    epoll_ctl(changes.get(), EPOLL_CTL_DEL, terminal->descriptor(), nullptr);
    terminal.reset();
    setHostThere(false);
}

void PtyFace::stopListening()
{
    unplug();
    controller().restart();
}

bool PtyFace::isConnected() const
{
    return terminal && terminal->isHostThere();
}

SerialSettings PtyFace::ownSettings() const
{
    return {controller().baudRate(), controller().device().hasFlowControl()};
}

SerialSettings PtyFace::hostSettings()
{
    if (isConnected())
        lastSettings = terminal->hostSettings();
    return lastSettings.value_or(ownSettings());
}

bool PtyFace::reachesHost()
{
    return isConnected() && canTalk(ownSettings(), hostSettings());
}

void PtyFace::readInput()
{
    if (controller().isPaused())
        return;
    // A host that has closed its end still counts as connected until all its bytes are read.
    if (isConnected())
        setHostThere(true);
    // A command can make the controller unplug itself, which deletes the terminal.
    while (terminal && !controller().isPaused()) {
        const QByteArray bytes = terminal->read();
        if (bytes.isEmpty())
            break;
        take(bytes);
    }
    noteHost();
}

void PtyFace::take(const QByteArray& bytes)
{
    const SerialSettings own = ownSettings();
    const SerialSettings host = hostSettings();
    if (canTalk(own, host))
        controller().receive(heardAt(own.baudRate, bytes, host.baudRate));
}

void PtyFace::write(const QByteArray& bytes)
{
    noteHost();
    sendUnsent();
    const bool tooMuch = !unsent.isEmpty() && unsent.size() + bytes.size() > mostUnsentBytes;
    if (tooMuch || !reachesHost())
        return;
    unsent += heardAt(hostSettings().baudRate, bytes, ownSettings().baudRate);
    sendUnsent();
}

bool PtyFace::canSend()
{
    noteHost();
    sendUnsent();
    return unsent.isEmpty() && reachesHost();
}

void PtyFace::sendUnsent()
{
    if (!terminal || unsent.isEmpty())
        return;
    unsent.remove(0, terminal->write(unsent));
    if (!unsent.isEmpty() && !retryTimer.isActive())
        retryTimer.start();
}

void PtyFace::noteHost()
{
    setHostThere(isConnected());
}

void PtyFace::setHostThere(bool there)
{
    if (hostThere == there)
        return;
    hostThere = there;
    if (there) {
        emit hostConnected({});
        return;
    }
    lastSettings.reset();
    unsent.clear();
    if (terminal)
        terminal->discardUnread();
    emit hostDisconnected();
}

} // namespace emulator
