#include "emulator/emulatorhost.h"

#include "emulator/deepcopy.h"
#include "emulator/hostthread.h"
#include "emulator/identity.h"
#include "emulator/ptyface.h"
#include "emulator/reply.h"
#include "emulator/tcpface.h"

#include <algorithm>
#include <utility>

namespace emulator {

template <typename Result>
Result ControllerHandle::ask(const std::function<Result(Face&)>& question) const
{
    Q_ASSERT(isValid());
    Result result{};
    thread->run([&] { result = question(*owner); });
    return result;
}

void ControllerHandle::order(const std::function<void(Face&)>& change) const
{
    Q_ASSERT(isValid());
    thread->run([&] { change(*owner); });
}

QString ControllerHandle::address() const
{
    return ask<QString>([](Face& face) {
        const auto* tcp = qobject_cast<const TcpFace*>(&face);
        return tcp ? tcp->address().toString() : QString();
    });
}

quint16 ControllerHandle::port() const
{
    return ask<quint16>([](Face& face) {
        const auto* tcp = qobject_cast<const TcpFace*>(&face);
        return tcp ? tcp->port() : quint16(0);
    });
}

QString ControllerHandle::path() const
{
    return ask<QString>([](Face& face) {
        const auto* pty = qobject_cast<const PtyFace*>(&face);
        return pty ? deepCopy(pty->path()) : QString();
    });
}

int ControllerHandle::baudRate() const
{
    return ask<int>([](Face& face) { return face.controller().baudRate(); });
}

QByteArray ControllerHandle::key() const
{
    return ask<QByteArray>(
        [](Face& face) { return face.controller().device().id().mid(keyPosition, keyLength); });
}

QByteArray ControllerHandle::idReply() const
{
    return ask<QByteArray>([](Face& face) { return payload(face.controller().device().id()); });
}

QString ControllerHandle::id() const
{
    return ask<QString>(
        [](Face& face) { return QString::fromUtf8(face.controller().device().id()); });
}

QByteArrayList ControllerHandle::commands() const
{
    return ask<QByteArrayList>([](Face& face) { return deepCopy(face.wireLog().commands()); });
}

QVector<WireEvent> ControllerHandle::wire() const
{
    return ask<QVector<WireEvent>>([](Face& face) { return deepCopy(face.wireLog().events()); });
}

void ControllerHandle::clearWire()
{
    order([](Face& face) { face.wireLog().clear(); });
}

void ControllerHandle::setFaults(const Faults& faults)
{
    order([&](Face& face) { face.controller().setFaults(deepCopy(faults)); });
}

void ControllerHandle::setRules(const QList<Rule>& rules)
{
    order([&](Face& face) { face.controller().setRules(deepCopy(rules)); });
}

void ControllerHandle::addRule(const Rule& rule)
{
    order([&](Face& face) { face.controller().addRule(deepCopy(rule)); });
}

QStringList ControllerHandle::unplayedRules() const
{
    // Made anew for this call, so that the controller shares no data with it.
    return ask<QStringList>([](Face& face) { return face.controller().unplayedRules(); });
}

void ControllerHandle::setScript(const QVector<PacketValues>& script, bool repeats)
{
    order([&](Face& face) { face.controller().device().setScript(deepCopy(script), repeats); });
}

void ControllerHandle::setIdentity(const ControllerOptions& options)
{
    order([&](Face& face) { face.controller().setIdentity(deepCopy(options)); });
}

void ControllerHandle::stopListening()
{
    order([](Face& face) { face.stopListening(); });
}

void ControllerHandle::listenAgain()
{
    order([](Face& face) {
        if (!face.listenAgain())
            qWarning("emulator: can not listen again: %s", qPrintable(face.errorString()));
    });
}

void ControllerHandle::unplug()
{
    order([](Face& face) {
        if (auto* pty = qobject_cast<PtyFace*>(&face))
            pty->unplug();
    });
}

void ControllerHandle::replug()
{
    order([](Face& face) {
        auto* pty = qobject_cast<PtyFace*>(&face);
        if (pty && !pty->replug())
            qWarning("emulator: can not plug in again: %s", qPrintable(pty->errorString()));
    });
}

void ControllerHandle::closeConnection()
{
    order([](Face& face) { face.closeConnection(); });
}

void ControllerHandle::halfCloseConnection()
{
    order([](Face& face) { face.halfCloseConnection(); });
}

bool ControllerHandle::isConnected() const
{
    return ask<bool>([](Face& face) { return face.isConnected(); });
}

void ControllerHandle::sendRaw(const QByteArray& bytes)
{
    order([&](Face& face) { face.controller().sendRaw(deepCopy(bytes)); });
}

void ControllerHandle::pause(bool paused)
{
    order([=](Face& face) { face.setPaused(paused); });
}

qint64 ControllerHandle::packetsSent() const
{
    return ask<qint64>([](Face& face) { return face.controller().packetsSent(); });
}

qint64 ControllerHandle::packetsLost() const
{
    return ask<qint64>([](Face& face) { return face.controller().packetsLost(); });
}

bool ControllerHandle::isStreaming() const
{
    return ask<bool>([](Face& face) { return face.controller().device().isStreaming(); });
}

int ControllerHandle::streamRate() const
{
    return ask<int>([](Face& face) { return static_cast<int>(face.controller().device().rate()); });
}

bool ControllerHandle::stageOn(int stage) const
{
    return ask<bool>([=](Face& face) { return face.controller().device().stageOn(stage); });
}

void ControllerHandle::setStage(int stage, bool on)
{
    order([=](Face& face) { face.controller().device().setStage(stage, on); });
}

QByteArray ControllerHandle::label() const
{
    return ask<QByteArray>([](Face& face) { return deepCopy(face.controller().device().label()); });
}

StageState ControllerHandle::stage(int stage) const
{
    return ask<StageState>(
        [=](Face& face) { return face.controller().device().stageState(stage); });
}

void ControllerHandle::setInputs(int stage, const ExternalInputs& inputs)
{
    order([&](Face& face) { face.controller().device().setInputs(stage, inputs); });
}

void ControllerHandle::setMultiplexed(int stage, bool on)
{
    order([=](Face& face) { face.controller().device().setMultiplexed(stage, on); });
}

int ControllerHandle::count(const QByteArray& prefix) const
{
    return ask<int>([&](Face& face) {
        const QByteArrayList& commands = face.wireLog().commands();
        return static_cast<int>(
            std::count_if(commands.begin(), commands.end(),
                          [&](const QByteArray& command) { return command.startsWith(prefix); }));
    });
}

namespace {

void warnOfUnplayedRules(const Face& face)
{
    QObject::connect(&face.controller(), &Controller::ruleUnplayed, [](const QString& rule) {
        qWarning("emulator: %s never acted", qPrintable(rule));
    });
}

} // namespace

EmulatorHost::EmulatorHost()
    : thread(std::make_unique<HostThread>())
{}

EmulatorHost::~EmulatorHost() = default;

ControllerHandle EmulatorHost::addTcp(const ControllerOptions& options, const QString& address,
                                      quint16 port)
{
    TcpFace* added = nullptr;
    thread->run([&] {
        auto face = std::make_unique<TcpFace>(deepCopy(options), Face::Logging::On);
        if (!face->listen(QHostAddress(address), port)) {
            qWarning("emulator: can not listen: %s", qPrintable(face->errorString()));
            return;
        }
        warnOfUnplayedRules(*face);
        added = face.get();
        thread->own(std::move(face));
    });
    return ControllerHandle(thread.get(), added);
}

ControllerHandle EmulatorHost::addPty(const ControllerOptions& options, const QString& link)
{
    PtyFace* added = nullptr;
    thread->run([&] {
        auto face = std::make_unique<PtyFace>(deepCopy(options), Face::Logging::On);
        if (!face->open(deepCopy(link))) {
            qWarning("emulator: can not set up \"%s\": %s", qPrintable(link),
                     qPrintable(face->errorString()));
            return;
        }
        warnOfUnplayedRules(*face);
        added = face.get();
        thread->own(std::move(face));
    });
    return ControllerHandle(thread.get(), added);
}

} // namespace emulator
