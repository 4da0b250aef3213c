#include "support/pseudoport.h"

#include "support/lineparameters.h"

#include <QFile>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int listenPollMs = 5;
constexpr int idReplyLength = 50;

} // namespace

QString freePortName()
{
    static std::atomic<int> count{0};
    return QStringLiteral("ttyUSB%1%2").arg(::getpid()).arg(++count, 3, 10, QLatin1Char('0'));
}

PseudoPort::PseudoPort()
    : portName(freePortName())
{
    const int made = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char place[64] = {};
    if (made < 0 || ::grantpt(made) != 0 || ::unlockpt(made) != 0
        || ::ptsname_r(made, place, sizeof place) != 0)
        return;
    lineparameters::makeRaw(made);
    terminal = QString::fromLatin1(place);
    QFile::remove(path());
    if (QFile::link(terminal, path()))
        master = made;
    else
        ::close(made);
}

PseudoPort::~PseudoPort()
{
    unplug();
}

void PseudoPort::unplug()
{
    removeName();
    if (master >= 0)
        ::close(master);
    master = -1;
}

void PseudoPort::removeName() const
{
    QFile::remove(path());
}

bool PseudoPort::write(const QByteArray& bytes) const
{
    return ::write(master, bytes.constData(), std::size_t(bytes.size())) == bytes.size();
}

QByteArray PseudoPort::readAll() const
{
    QByteArray bytes;
    char chunk[256];
    for (;;) {
        const ssize_t count = ::read(master, chunk, sizeof chunk);
        if (count <= 0)
            return bytes;
        bytes.append(chunk, int(count));
    }
}

int PseudoPort::baudRate() const
{
    return lineparameters::baudRate(master);
}

bool PseudoPort::hasHardwareFlowControl() const
{
    return lineparameters::hasHardwareFlowControl(master);
}

AnsweringPort::AnsweringPort(Answer answering)
    : answer(std::move(answering))
    , listener([this] { listen(); })
{}

AnsweringPort::~AnsweringPort()
{
    ends = true;
    listener.join();
}

std::vector<QByteArray> AnsweringPort::commands() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return received;
}

int AnsweringPort::count(const QByteArray& command) const
{
    const std::vector<QByteArray> all = commands();
    return int(std::count(all.begin(), all.end(), command));
}

/// A search waits 100 ms for an answer, which on a busy machine can pass before this thread is even
/// woken. Who may not ask for more than others does without.
void AnsweringPort::hurry()
{
    constexpr int urgent = -10;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), urgent);
}

void AnsweringPort::listen()
{
    hurry();
    while (!ends && !hangsUp) {
        // While nobody has the port open this returns at once.
        pollfd masterEnd{master, POLLIN, 0};
        if (::poll(&masterEnd, 1, listenPollMs) > 0 && (masterEnd.revents & POLLIN) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        input += readAll();
        int end = input.indexOf(';');
        while (end >= 0 && !hangsUp) {
            take(input.left(end + 1));
            input.remove(0, end + 1);
            end = input.indexOf(';');
        }
    }
    if (hangsUp)
        unplug();
}

void AnsweringPort::take(const QByteArray& command)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        received.push_back(command);
    }
    const QByteArray bytes = answer(command, *this);
    if (!bytes.isEmpty())
        write(bytes);
}

QByteArray idReplyWithKey(const QByteArray& key)
{
    const QByteArray text = QByteArray("Zev-V40-000000") + key;
    return QByteArray("\0;", 2) + text.leftJustified(idReplyLength - 3, '.') + ';';
}

QString idTextWithKey(const QByteArray& key)
{
    return QString::fromLatin1(idReplyWithKey(key).mid(2).chopped(1));
}

AnsweringPort::Answer controllerAt(int baudRate, bool hasFlowControl, const QByteArray& key)
{
    return [=](const QByteArray& command, AnsweringPort& port) {
        if (port.baudRate() != baudRate || port.hasHardwareFlowControl() != hasFlowControl)
            return QByteArray();
        if (command == "CLS;")
            return QByteArray("\0;", 2);
        return command == "GID;" ? idReplyWithKey(key) : QByteArray();
    };
}
