#include "emulator/emulatorhost.h"

#include "emulator/deepcopy.h"
#include "emulator/hostthread.h"
#include "emulator/identity.h"
#include "emulator/reply.h"
#include "emulator/tcpface.h"

namespace emulator {

template <typename Result>
Result ControllerHandle::ask(const std::function<Result(TcpFace&)>& question) const
{
    Q_ASSERT(isValid());
    Result result{};
    thread->run([&] { result = question(*face); });
    return result;
}

void ControllerHandle::order(const std::function<void(TcpFace&)>& change) const
{
    Q_ASSERT(isValid());
    thread->run([&] { change(*face); });
}

QString ControllerHandle::address() const
{
    return ask<QString>([](TcpFace& tcp) { return tcp.address().toString(); });
}

quint16 ControllerHandle::port() const
{
    return ask<quint16>([](TcpFace& tcp) { return tcp.port(); });
}

QByteArray ControllerHandle::key() const
{
    return ask<QByteArray>(
        [](TcpFace& tcp) { return tcp.controller().device().id().mid(keyPosition, keyLength); });
}

QByteArray ControllerHandle::idReply() const
{
    return ask<QByteArray>([](TcpFace& tcp) { return payload(tcp.controller().device().id()); });
}

QString ControllerHandle::id() const
{
    return ask<QString>(
        [](TcpFace& tcp) { return QString::fromUtf8(tcp.controller().device().id()); });
}

QByteArrayList ControllerHandle::commands() const
{
    return ask<QByteArrayList>([](TcpFace& tcp) { return deepCopy(tcp.wireLog().commands()); });
}

QVector<WireEvent> ControllerHandle::wire() const
{
    return ask<QVector<WireEvent>>([](TcpFace& tcp) { return deepCopy(tcp.wireLog().events()); });
}

void ControllerHandle::clearWire()
{
    order([](TcpFace& tcp) { tcp.wireLog().clear(); });
}

void ControllerHandle::setFaults(const Faults& faults)
{
    order([&](TcpFace& tcp) { tcp.controller().setFaults(deepCopy(faults)); });
}

void ControllerHandle::setScript(const QVector<PacketValues>& script, bool repeats)
{
    order([&](TcpFace& tcp) { tcp.controller().device().setScript(deepCopy(script), repeats); });
}

void ControllerHandle::setIdentity(const ControllerOptions& options)
{
    order([&](TcpFace& tcp) { tcp.controller().setIdentity(deepCopy(options)); });
}

void ControllerHandle::stopListening()
{
    order([](TcpFace& tcp) { tcp.stopListening(); });
}

void ControllerHandle::listenAgain()
{
    order([](TcpFace& tcp) {
        if (!tcp.listenAgain())
            qWarning("emulator: can not listen again: %s", qPrintable(tcp.errorString()));
    });
}

void ControllerHandle::closeConnection()
{
    order([](TcpFace& tcp) { tcp.closeConnection(); });
}

void ControllerHandle::halfCloseConnection()
{
    order([](TcpFace& tcp) { tcp.halfCloseConnection(); });
}

bool ControllerHandle::isConnected() const
{
    return ask<bool>([](TcpFace& tcp) { return tcp.isConnected(); });
}

void ControllerHandle::sendRaw(const QByteArray& bytes)
{
    order([&](TcpFace& tcp) { tcp.controller().sendRaw(deepCopy(bytes)); });
}

void ControllerHandle::pause(bool paused)
{
    order([=](TcpFace& tcp) { tcp.setPaused(paused); });
}

qint64 ControllerHandle::packetsSent() const
{
    return ask<qint64>([](TcpFace& tcp) { return tcp.controller().packetsSent(); });
}

bool ControllerHandle::isStreaming() const
{
    return ask<bool>([](TcpFace& tcp) { return tcp.controller().device().isStreaming(); });
}

int ControllerHandle::streamRate() const
{
    return ask<int>(
        [](TcpFace& tcp) { return static_cast<int>(tcp.controller().device().rate()); });
}

bool ControllerHandle::stageOn(int stage) const
{
    return ask<bool>([=](TcpFace& tcp) { return tcp.controller().device().stageOn(stage); });
}

void ControllerHandle::setStage(int stage, bool on)
{
    order([=](TcpFace& tcp) { tcp.controller().device().setStage(stage, on); });
}

QByteArray ControllerHandle::label() const
{
    return ask<QByteArray>(
        [](TcpFace& tcp) { return deepCopy(tcp.controller().device().label()); });
}

EmulatorHost::EmulatorHost()
    : thread(std::make_unique<HostThread>())
{}

EmulatorHost::~EmulatorHost() = default;

ControllerHandle EmulatorHost::addTcp(const ControllerOptions& options, const QString& address,
                                      quint16 port)
{
    TcpFace* added = nullptr;
    thread->run([&] {
        auto face = std::make_unique<TcpFace>(deepCopy(options), TcpFace::Logging::On);
        if (!face->listen(QHostAddress(address), port)) {
            qWarning("emulator: can not listen: %s", qPrintable(face->errorString()));
            return;
        }
        added = face.get();
        thread->own(std::move(face));
    });
    return ControllerHandle(thread.get(), added);
}

} // namespace emulator
