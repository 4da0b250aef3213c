#include "connectedsystems.h"

#include "beamcircle.h"
#include "link/identification.h"
#include "link/tcpclient.h"
#include "plots/counter.h"
#include "recording/dataloggerdialog.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr int samplingRateHz = 500;
constexpr int firstHost = 11;

} // namespace

ConnectedSystems::ConnectedSystems(int count)
{
    for (int number = 0; number < count; ++number)
        allUp = addSystem(number) && allUp;
}

/// The window stops every system when it goes, and a stop without a stream waits out its time.
ConnectedSystems::~ConnectedSystems()
{
    silence(0);
    for (Connection* connection : screen.window().liveConnections()) {
        if (!connection->isStreaming())
            connection->setTimeoutMs(1);
    }
}

bool ConnectedSystems::addSystem(int number)
{
    emulator::ControllerOptions options;
    options.script = beamCircle(samplingRateHz);
    options.scriptRepeats = true;
    const QString address = QStringLiteral("127.0.0.%1").arg(firstHost + number);
    controllers.push_back(host.addTcp(options, address));

    auto client = std::make_unique<TcpClient>();
    client->init(controllers.back().address(), controllers.back().port());
    client->start(QThread::InheritPriority);
    if (!QTest::qWaitFor([&client] { return client->isConnected(); }))
        return false;
    QByteArray reply;
    client->getControllerId();
    client->fetchReply(reply);
    const ControllerIdentity identity = readIdentity(reply);
    if (!identity.isController)
        return false;
    client->setFirmwareVersion(identity.firmwareVersion);

    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.colorX = QStringLiteral("#ff0000");
    record.colorY = QStringLiteral("#008000");
    record.colorI = QStringLiteral("#0000ff");
    record.model = {PsdDetector, PsdDetector};
    record.calculation = {1, 1};
    screen.window().newConnection(std::move(client), record);
    return true;
}

bool ConnectedSystems::start()
{
    const MainWindow& window = screen.window();
    window.findChild<Counter*>("samplingRateCounter")->spinBox->setValue(samplingRateHz);
    window.findChild<QAction*>("startAction")->trigger();
    bool streaming = allUp;
    for (const Connection* connection : window.liveConnections())
        streaming = streaming && connection->isStreaming();
    return streaming;
}

bool ConnectedSystems::record(const QString& folder)
{
    auto& dialog = *screen.window().findChild<DataLoggerDialog*>();
    dialog.setSaveRate(samplingRateHz);
    dialog.findChild<QLineEdit*>("lineEdit_FileName")->setText(folder + "/run.csv");
    dialog.findChild<QCheckBox*>("checkBox")->setChecked(true);
    dialog.emitStartSignal();
    return dialog.isRecording();
}

void ConnectedSystems::silence(int count)
{
    for (std::size_t i = 0; i < controllers.size(); ++i)
        controllers[i].pause(int(i) < count);
}

double ConnectedSystems::samplesStored() const
{
    double count = 0.0;
    for (const Connection* connection : screen.window().liveConnections())
        count += double(connection->samplesStored());
    return count;
}
