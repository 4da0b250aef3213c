#include "emulator/pseudoterminal.h"

#include <QFile>

// In place of <termios.h>, which does not know the settings that hold a rate as a number.
#include <algorithm>
#include <array>
#include <asm/termbits.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <utility>

namespace emulator {

namespace {

constexpr int pieceBytes = 4096;

/// Repeats a call that a signal has interrupted.
template <typename Call>
auto uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// The flag of a standard rate. Rates are set by flag where there is one, because a host that saves
/// and restores settings without the number of the rate can restore only those.
tcflag_t rateFlag(int baudRate)
{
    switch (baudRate) {
    case 115200:
        return B115200;
    case 460800:
        return B460800;
    case 921600:
        return B921600;
    default:
        return BOTHER;
    }
}

} // namespace

PseudoTerminal::PseudoTerminal(FileDescriptor own, const QString& path)
    : ownEnd(std::move(own))
    , hostPath(path)
{}

std::unique_ptr<PseudoTerminal> PseudoTerminal::make(const SerialSettings& initial, QString& error)
{
    FileDescriptor own(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 128> name{};
    if (own.isOpen() && grantpt(own.get()) == 0 && unlockpt(own.get()) == 0
        && ptsname_r(own.get(), name.data(), name.size()) == 0) {
        std::unique_ptr<PseudoTerminal> terminal(
            new PseudoTerminal(std::move(own), QFile::decodeName(name.data())));
        if (terminal->setUp(initial))
            return terminal;
    }
    error = qt_error_string(errno);
    return nullptr;
}

FileDescriptor PseudoTerminal::openHostEnd() const
{
    return FileDescriptor(
        open(QFile::encodeName(hostPath).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
}

/// Switches off echo and line editing, which a new terminal has. Opening the host's end once is
/// also necessary because `isHostThere` sees that it is closed only after it was open.
bool PseudoTerminal::setUp(const SerialSettings& initial) const
{
    const FileDescriptor hostEnd = openHostEnd();
    termios2 settings{};
    if (!hostEnd.isOpen() || ioctl(hostEnd.get(), TCGETS2, &settings) != 0)
        return false;
    settings.c_iflag = 0;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    settings.c_cflag = CREAD | CLOCAL | CS8 | rateFlag(initial.baudRate);
    if (initial.hardwareFlowControl)
        settings.c_cflag |= CRTSCTS;
    settings.c_ispeed = settings.c_ospeed = static_cast<speed_t>(initial.baudRate);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    return ioctl(hostEnd.get(), TCSETS2, &settings) == 0;
}

bool PseudoTerminal::isHostThere() const
{
    pollfd state{};
    state.fd = ownEnd.get();
    constexpr int noWaitMs = 0;
    uninterrupted([&] { return poll(&state, 1, noWaitMs); });
    return (state.revents & POLLHUP) == 0;
}

SerialSettings PseudoTerminal::hostSettings() const
{
    termios2 settings{};
    ioctl(ownEnd.get(), TCGETS2, &settings);
    SerialSettings host;
    host.baudRate = static_cast<int>(settings.c_ospeed);
    host.hardwareFlowControl = (settings.c_cflag & CRTSCTS) != 0;
    return host;
}

QByteArray PseudoTerminal::read()
{
    std::array<char, pieceBytes> piece;
    const ssize_t count =
        uninterrupted([&] { return ::read(ownEnd.get(), piece.data(), piece.size()); });
    return count > 0 ? QByteArray(piece.data(), static_cast<int>(count)) : QByteArray();
}

int PseudoTerminal::write(const QByteArray& bytes)
{
    const ssize_t count = uninterrupted([&] {
        return ::write(ownEnd.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
    });
    return static_cast<int>(std::max<ssize_t>(0, count));
}

void PseudoTerminal::discardUnread()
{
    const FileDescriptor hostEnd = openHostEnd();
    if (hostEnd.isOpen())
        ioctl(hostEnd.get(), TCFLSH, TCIFLUSH);
}

} // namespace emulator
