#include "support/emulatedlink.h"

#include "link/ask.h"
#include "link/identification.h"
#include "link/streampause.h"

#include <QTimer>
#include <QtTest>

#include <algorithm>

namespace {

void actOrAskAgain(const std::function<bool()>& isTime, const std::function<void()>& act)
{
    QTimer::singleShot(1, [isTime, act] {
        if (isTime())
            act();
        else
            actOrAskAgain(isTime, act);
    });
}

} // namespace

EmulatedLink::EmulatedLink(const emulator::ControllerOptions& options, int timeoutMs)
    : controller(host.addTcp(options))
{
    client.setTimeoutMs(timeoutMs);
    client.init(controller.address(), controller.port());
    QObject::connect(&client, &Connection::hostDisconnected, &context,
                     [this](const QString& address) { lost.append(address); });
}

bool EmulatedLink::connect()
{
    client.start(QThread::InheritPriority);
    return QTest::qWaitFor([this] { return client.isConnected(); });
}

bool EmulatedLink::connectAndIdentify()
{
    if (!connect())
        return false;
    const bool identified = askIdentity(client);
    controller.clearWire();
    return identified;
}

bool EmulatedLink::startStream(int rateHz)
{
    return !hasFailed(startStreamAtRate(client, rateHz)) && client.isStreaming();
}

QByteArray EmulatedLink::exchange(void (Connection::*command)())
{
    return ask(client, command);
}

std::vector<MeasureSample> EmulatedLink::takeSamples()
{
    std::vector<MeasureSample> samples;
    MeasureSample sample;
    while (client.takeLiveSample(sample) != 0)
        samples.push_back(sample);
    return samples;
}

int repliesOf(const emulator::ControllerHandle& controller)
{
    const QVector<emulator::WireEvent> wire = controller.wire();
    return int(std::count_if(wire.begin(), wire.end(), [](const emulator::WireEvent& event) {
        return event.direction == emulator::WireEvent::ToHost;
    }));
}

bool askIdentity(Connection& client)
{
    const ControllerIdentity identity = readIdentity(ask(client, &Connection::getControllerId));
    client.setFirmwareVersion(identity.firmwareVersion);
    client.setVmFirmware(identity.vmFirmware);
    client.setTriggerCapable(identity.triggerCapable);
    return identity.isController;
}

void onThreadOf(Connection& client, std::function<bool()> isTime, std::function<void()> act)
{
    QObject::connect(
        &client, &QThread::started, &client,
        [isTime = std::move(isTime), act = std::move(act)] { actOrAskAgain(isTime, act); },
        Qt::DirectConnection);
}

void resyncOnce(Connection& client, std::function<bool()> isTime)
{
    onThreadOf(client, std::move(isTime), [&client] { client.resync(); });
}

QVector<emulator::PacketValues> numberedSamples(int count)
{
    QVector<emulator::PacketValues> samples;
    qint16 number = 0;
    while (samples.size() < count) {
        ++number;
        if ((number & 0xFF) == ';' || number >> 8 == ';')
            continue;
        emulator::PacketValues values{};
        values[0].x = number;
        values[0].y = number;
        samples.append(values);
    }
    return samples;
}

QByteArray rawPacket(int x1, char flagsA, char flagsB)
{
    QByteArray bytes("\0;", 2);
    bytes.append(flagsA).append(flagsB);
    bytes.append(char(x1 >> 8)).append(char(x1 & 0xFF));
    bytes.append(QByteArray(18, '\0'));
    return bytes.append(';');
}
