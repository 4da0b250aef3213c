#include "support/scriptedconnection.h"

#include "link/packet.h"

#include <QDeadlineTimer>
#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

constexpr int mnemonicLength = 3;
constexpr int waitMs = 5000;
constexpr int firmwareWithFlags = 40;

QByteArray mnemonicOf(const QByteArray& message)
{
    return message.left(mnemonicLength);
}

/// Waits without taking events.
bool waitUntil(const std::function<bool()>& condition)
{
    const QDeadlineTimer limit(waitMs);
    while (!condition() && !limit.hasExpired())
        QThread::msleep(1);
    return condition();
}

/// Holds the replies to what is written. As with a real port, they arrive with a later event.
class ScriptedPort final : public QIODevice
{
public:
    explicit ScriptedPort(std::shared_ptr<ControllerScript> controller)
        : script(std::move(controller))
    {
        open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return input.size() + QIODevice::bytesAvailable(); }
    void receive(const QByteArray& bytes)
    {
        input.append(bytes);
        QMetaObject::invokeMethod(this, &QIODevice::readyRead, Qt::QueuedConnection);
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const int size = qMin(int(maxSize), input.size());
        std::memcpy(data, input.constData(), std::size_t(size));
        input.remove(0, size);
        return size;
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        const QByteArray reply = script->replyOf(QByteArray(data, int(size)));
        if (!reply.isEmpty())
            receive(reply);
        return size;
    }

private:
    std::shared_ptr<ControllerScript> script;
    QByteArray input;
};

} // namespace

void ControllerScript::answer(const QByteArray& mnemonic, const QByteArray& reply)
{
    const std::lock_guard<std::mutex> lock(mutex);
    replies[mnemonic] = reply;
}

void ControllerScript::stayQuiet(const QByteArray& mnemonic)
{
    const std::lock_guard<std::mutex> lock(mutex);
    replies.remove(mnemonic);
}

QByteArray ControllerScript::replyOf(const QByteArray& message)
{
    const std::lock_guard<std::mutex> lock(mutex);
    received.append(message);
    return replies.value(mnemonicOf(message));
}

QList<QByteArray> ControllerScript::messages() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return received;
}

QList<QByteArray> ControllerScript::mnemonics() const
{
    QList<QByteArray> list;
    for (const QByteArray& message : messages())
        list.append(mnemonicOf(message));
    return list;
}

void ControllerScript::forgetMessages()
{
    const std::lock_guard<std::mutex> lock(mutex);
    received.clear();
}

ScriptedConnection::ScriptedConnection(const QString& address, int baudRate)
{
    ScriptedConnection::init(address, baudRate);
    setFirmwareVersion(firmwareWithFlags);
    script->answer("CLS", replies::endOfStream());
    script->answer("SLS", replies::packet());
    script->answer("SEA", replies::accepted());
    script->answer("CEA", replies::accepted());
    script->answer("SLA", replies::accepted());
    script->answer("GSF", replies::status(0));
}

ScriptedConnection::~ScriptedConnection()
{
    ScriptedConnection::releaseInPlace();
}

bool ScriptedConnection::init(const QString& newName, int baudOrPort)
{
    name = newName;
    setBaudRate(baudOrPort);
    return true;
}

bool ScriptedConnection::startAndWait()
{
    start(QThread::InheritPriority);
    return waitUntil([this] { return isConnected(); });
}

void ScriptedConnection::losePort()
{
    QMetaObject::invokeMethod(
        device(), [this] { reportLostPort(); }, Qt::QueuedConnection);
    wait();
}

bool ScriptedConnection::sendPackets(const QByteArray& packets)
{
    const quint64 expected = samplesStored() + quint64(packets.size() / command::packetLength);
    auto* port = static_cast<ScriptedPort*>(device());
    QMetaObject::invokeMethod(
        port, [port, packets] { port->receive(packets); }, Qt::QueuedConnection);
    return waitUntil([this, expected] { return samplesStored() >= expected; });
}

void ScriptedConnection::storeCommonSamples(const std::vector<MeasureSample>& samples)
{
    for (const MeasureSample& sample : samples)
        commonSamples().storeSample(sample);
}

void ScriptedConnection::takeGivenSamples(std::vector<MeasureSample>& out, std::size_t most)
{
    const auto end = given.begin() + std::ptrdiff_t(std::min(most, given.size()));
    out.insert(out.end(), given.begin(), end);
    given.erase(given.begin(), end);
}

void ScriptedConnection::run()
{
    makeEndpoint(std::make_unique<ScriptedPort>(script));
    watchInput();
    publishConnected();
    exec();
    ignoreInput();
    deleteEndpoint();
}

namespace replies {

QByteArray accepted()
{
    return QByteArray("\0;", 2);
}

QByteArray status(quint8 flags)
{
    return accepted().append(char(flags)).append(';');
}

QString idWithKey(const QByteArray& key)
{
    return QString::fromLatin1("Zev-V40-000000" + key.leftJustified(33, '-', true));
}

QByteArray identity(const QByteArray& key)
{
    return accepted().append(idWithKey(key).toLatin1()).append(';');
}

QByteArray packet(quint8 flags, qint16 x1)
{
    QByteArray bytes = accepted().append(char(flags)).append('\0');
    bytes.append(char(x1 >> 8)).append(char(x1 & 0xFF));
    return bytes.leftJustified(command::packetLength - 1, '\0').append(';');
}

QByteArray endOfStream()
{
    return packet(statusflag::lastPacket) + accepted();
}

} // namespace replies
