// The flows by which the user makes one connection.

#include "app/logging.h"
#include "link/connection.h"
#include "setup/colors.h"
#include "setup/connectionregistry.h"
#include "setup/connectionwidget.h"
#include "setup/recordroom.h"
#include "setup/settingsdialog.h"
#include "setup/waitcursor.h"
#include "ui_settingsdialog.h"

namespace {

void markInvalid(QLineEdit& edit)
{
    edit.setStyleSheet(QStringLiteral("border: 1px solid red"));
}

} // namespace

void SettingsDialog::on_connectSerialButton_clicked()
{
    inTurn([this] { connectSerial(); });
}

void SettingsDialog::connectSerial()
{
    logMessage().info() << "Trying to connect (serial)";
    if (!serialFieldsAreFilled())
        return;
    serialTab.info.clear();
    serialTab.labelEdit.setStyleSheet(QString());
    resizeSmall();

    // Ending a link takes events: a scan can replace the list in the middle of this.
    const QStringList device = chosenInterface();
    if (device.isEmpty())
        return;
    const int wanted = ui->baudrateComboBox->currentData().toInt();
    if (device.value(interfaceBaudRate).toInt() != wanted && !adjustBaudRate(device, wanted))
        return;

    std::unique_ptr<Connection> connection = makeSerialConnection(device, wanted);
    if (!connection) {
        // In other words than where the rate is adjusted, on purpose: it tells which one it was.
        logMessage().warning() << "Serial port is not suitable for communication";
        say(serialTab.info, tr("Serial port is not suitable for communication"));
        return;
    }
    logMessage().info() << "Connecting";
    if (!connectController(serialTab, std::move(connection)))
        return;
    ui->serialPortInfoListBox->removeItem(
        ui->serialPortInfoListBox->findText(device.value(interfaceId)));
    say(serialTab.info, tr("Connected"));
}

bool SettingsDialog::serialFieldsAreFilled()
{
    if (serialTab.labelEdit.text().isEmpty()) {
        say(serialTab.info, tr("Please insert a label"));
        markInvalid(serialTab.labelEdit);
        return false;
    }
    if (ui->serialPortInfoListBox->count() == 0) {
        say(serialTab.info, tr("No device available"));
        return false;
    }
    return true;
}

/// Empty, with the reason said, if the chosen device can not be connected to.
QStringList SettingsDialog::chosenInterface()
{
    const QString id = ui->serialPortInfoListBox->currentText();
    if (systems.lines(ConnectionType::Serial).hasNumber(id)) {
        say(serialTab.info, tr("Connection already created"));
        return {};
    }
    for (const QStringList& entry : qAsConst(interfaces)) {
        if (entry.value(interfaceId) == id)
            return entry;
    }
    say(serialTab.info, tr("Device not found"));
    return {};
}

/// Null if no connection can take the port's name.
std::unique_ptr<Connection> SettingsDialog::makeSerialConnection(const QStringList& device,
                                                                 int baudRate)
{
    const QString port = device.value(interfacePort);
    std::unique_ptr<Connection> connection = makeTransport(ConnectionType::Serial);
    if (!connection->init(port, baudRate) || !decltype(ConnectionSettings::name)::fits(port))
        return nullptr;
    return connection;
}

/// Moves a controller from the rate at which it was found to the wanted one. False, with the reason
/// said, if it did not go along, or if nobody waits for it any more.
bool SettingsDialog::adjustBaudRate(const QStringList& device, int baudRate)
{
    const WaitCursor waiting;
    std::unique_ptr<Connection> connection =
        makeSerialConnection(device, device.value(interfaceBaudRate).toInt());
    if (!connection) {
        say(serialTab.info, tr("SerialPort is not suitable for communication"));
        return false;
    }
    say(serialTab.info, tr("Adjusting baudrate..."));
    if (!changeBaudRate(*connection, serialTab.wait, baudRate)) {
        say(serialTab.info, tr("Baudrate couldn't be adjusted"));
        abandoned.push_back(std::move(connection));
        return false;
    }
    // The end of the link takes events, which must find the rate that the controller has now.
    for (QStringList& entry : interfaces) {
        if (entry.value(interfaceId) == device.value(interfaceId))
            entry[interfaceBaudRate] = QString::number(baudRate);
    }
    connection->disconnectController();
    return !registry.isLeaving();
}

void SettingsDialog::on_connectTcpButton_clicked()
{
    inTurn([this] { connectTcp(); });
}

void SettingsDialog::connectTcp()
{
    if (!tcpFieldsAreFilled() || !readTcpPort())
        return;
    for (QLineEdit* edit : {ui->labelTcpEdit, ui->addressTcpEdit, ui->portLineEdit})
        edit->setStyleSheet(QString());
    resizeSmall();

    std::unique_ptr<Connection> connection = makeTcpConnection();
    if (!connection || !connectController(tcpTab, std::move(connection)))
        return;
    ui->addressTcpEdit->clear();
    say(tcpTab.info, tr("Connected"));
}

bool SettingsDialog::tcpFieldsAreFilled()
{
    for (QLineEdit* edit : {ui->labelTcpEdit, ui->addressTcpEdit}) {
        if (edit->text().isEmpty()) {
            markInvalid(*edit);
            return false;
        }
    }
    return isFreeTcpAddress(ui->addressTcpEdit->text());
}

bool SettingsDialog::isFreeTcpAddress(const QString& address)
{
    if (!systems.lines(ConnectionType::Tcp).hasAddress(address))
        return true;
    markInvalid(*ui->addressTcpEdit);
    say(tcpTab.info, tr("Connection already exists."));
    return false;
}

bool SettingsDialog::readTcpPort()
{
    const QString text = ui->portLineEdit->text();
    if (text.isEmpty())
        return true;
    bool isNumber = false;
    const int port = text.toInt(&isNumber);
    if (!isNumber || port < 0) {
        markInvalid(*ui->portLineEdit);
        say(tcpTab.info, tr("Port needs to be a positive natural number"));
        return false;
    }
    tcpPort = port;
    ui->portLineEdit->setPlaceholderText(QString::number(port));
    return true;
}

/// Null, with the reason said, if the fields hold nothing that can be connected to.
std::unique_ptr<Connection> SettingsDialog::makeTcpConnection()
{
    std::unique_ptr<Connection> connection = makeTransport(ConnectionType::Tcp);
    const bool usable = connection->init(ui->addressTcpEdit->text(), tcpPort)
                        && decltype(ConnectionSettings::name)::fits(connection->address());
    if (!usable) {
        markInvalid(*ui->addressTcpEdit);
        say(tcpTab.info, tr("Please check the connection parameters"));
        return nullptr;
    }
    // An address can be written in more than one way.
    if (!isFreeTcpAddress(connection->address()))
        return nullptr;
    return connection;
}

/// Brings a connection up and keeps it. A flow that fails leaves nothing but its message; one that
/// nobody waits for any more leaves not even that.
bool SettingsDialog::connectController(Tab& flow, std::unique_ptr<Connection> connection)
{
    const WaitCursor waiting;
    say(flow.info, tr("Connecting..."));
    QString id;
    const LinkOutcome outcome =
        connectAndIdentify(*connection, flow.wait, flow.labelEdit.text(), id, &canBeStored);
    if (registry.isLeaving())
        return false;
    if (outcome == LinkOutcome::Up) {
        logMessage().info() << "Connected";
        keepNewConnection(flow, std::move(connection), id);
        return true;
    }
    const bool noLink = outcome == LinkOutcome::NoLink;
    logMessage().warning() << (noLink ? "Connection could not be established"
                                      : "System identification failed");
    connection.reset();
    say(flow.info, noLink ? flow.noLinkText : tr("System identification failed"));
    return false;
}

void SettingsDialog::keepNewConnection(Tab& flow, std::unique_ptr<Connection> connection,
                                       const QString& id)
{
    ConnectionSettings record;
    record.type = flow.type;
    record.name.set(connection->address());
    record.id.set(id);
    record.label.set(flow.labelEdit.text());
    record.baudRateOrPort = connection->portOrBaud();
    record.autoConnect = true;
    record.colorX = toName(Qt::red);
    record.colorY = toName(Qt::darkGreen);
    record.colorI = toName(Qt::blue);

    systems.addLine(record, *connection);
    systems.showConnected(connection.get(), true);
    flow.labelEdit.clear();
    // A controller that was known before gets its detectors again.
    settings.read(QString());
    settings.getDetectorData(record);
    connection->setTriggerMode(record.pulsedLaser);
    systems.registerSystem(std::move(connection), record);
}
