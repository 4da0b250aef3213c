// What the buttons of the connection dialog and of its lines start.

#include "app/logging.h"
#include "app/switches.h"
#include "link/connection.h"
#include "setup/formtools.h"
#include "setup/settingsdialog.h"
#include "ui_settingsdialog.h"

namespace {

/// Empty for an outcome that nobody is there to read.
QString textOf(ConnectOutcome outcome, ConnectionType type)
{
    switch (outcome) {
    case ConnectOutcome::Connected:
        return SettingsDialog::tr("Connected");
    case ConnectOutcome::Abandoned:
        break;
    case ConnectOutcome::DeviceInUse:
        return SettingsDialog::tr("Connection already created");
    case ConnectOutcome::DeviceGone:
        return SettingsDialog::tr("Device not found");
    case ConnectOutcome::NoPortForRateChange:
        // Spelled otherwise than `NoPort`, so that a report tells which of the two it was.
        return SettingsDialog::tr("SerialPort is not suitable for communication");
    case ConnectOutcome::RateNotChanged:
        return SettingsDialog::tr("Baudrate couldn't be adjusted");
    case ConnectOutcome::NoPort:
        return SettingsDialog::tr("Serial port is not suitable for communication");
    case ConnectOutcome::AddressInUse:
        return SettingsDialog::tr("Connection already exists.");
    case ConnectOutcome::BadAddress:
        return SettingsDialog::tr("Please check the connection parameters");
    case ConnectOutcome::NoLink:
        return type == ConnectionType::Tcp
                   ? SettingsDialog::tr("Connection couldn't be established")
                   : SettingsDialog::tr("Connection could not be established");
    case ConnectOutcome::NotIdentified:
        return SettingsDialog::tr("System identification failed");
    }
    return QString();
}

} // namespace

void SettingsDialog::on_connectSerialButton_clicked()
{
    flows.run([this] { connectSerial(); });
}

void SettingsDialog::connectSerial()
{
    logMessage().info() << "Trying to connect (serial)";
    if (!serialFieldsAreFilled())
        return;
    formtools::markValid(*ui->serialPortLabel_2);
    resizeSmall();

    const QString id = ui->serialPortInfoListBox->currentText();
    const int baudRate = ui->baudrateComboBox->currentData().toInt();
    const ConnectOutcome outcome =
        connectFlow.connectSerial(id, baudRate, ui->serialPortLabel_2->text());
    if (outcome == ConnectOutcome::Abandoned)
        return;
    if (outcome == ConnectOutcome::Connected)
        ui->serialPortInfoListBox->removeItem(ui->serialPortInfoListBox->findText(id));
    formtools::say(*ui->infoLabel, textOf(outcome, ConnectionType::Serial));
}

bool SettingsDialog::serialFieldsAreFilled()
{
    if (ui->serialPortLabel_2->text().isEmpty()) {
        formtools::say(*ui->infoLabel, tr("Please insert a label"));
        formtools::markInvalid(*ui->serialPortLabel_2);
        return false;
    }
    if (ui->serialPortInfoListBox->count() == 0) {
        formtools::say(*ui->infoLabel, tr("No device available"));
        return false;
    }
    return true;
}

void SettingsDialog::on_connectTcpButton_clicked()
{
    flows.run([this] { connectTcp(); });
}

void SettingsDialog::connectTcp()
{
    if (!tcpFieldsAreFilled() || !readTcpPort())
        return;
    for (QLineEdit* edit : {ui->labelTcpEdit, ui->addressTcpEdit, ui->portLineEdit})
        formtools::markValid(*edit);
    resizeSmall();

    const ConnectOutcome outcome =
        connectFlow.connectTcp(ui->addressTcpEdit->text(), tcpPort, ui->labelTcpEdit->text());
    if (outcome == ConnectOutcome::Abandoned)
        return;
    if (outcome == ConnectOutcome::Connected)
        ui->addressTcpEdit->clear();
    if (outcome == ConnectOutcome::AddressInUse || outcome == ConnectOutcome::BadAddress)
        formtools::markInvalid(*ui->addressTcpEdit);
    formtools::say(*ui->infoLabel2, textOf(outcome, ConnectionType::Tcp));
}

bool SettingsDialog::tcpFieldsAreFilled()
{
    for (QLineEdit* edit : {ui->labelTcpEdit, ui->addressTcpEdit}) {
        if (edit->text().isEmpty()) {
            formtools::markInvalid(*edit);
            return false;
        }
    }
    if (!systems.lines(ConnectionType::Tcp).hasAddress(ui->addressTcpEdit->text()))
        return true;
    formtools::markInvalid(*ui->addressTcpEdit);
    formtools::say(*ui->infoLabel2, textOf(ConnectOutcome::AddressInUse, ConnectionType::Tcp));
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
        formtools::markInvalid(*ui->portLineEdit);
        formtools::say(*ui->infoLabel2, tr("Port needs to be a positive natural number"));
        return false;
    }
    tcpPort = port;
    ui->portLineEdit->setPlaceholderText(QString::number(port));
    return true;
}

// Files.

QString SettingsDialog::chooseFile(QFileDialog::AcceptMode mode, const QString& title)
{
    fileDialog.setFileMode(QFileDialog::AnyFile);
    fileDialog.setAcceptMode(mode);
    fileDialog.setWindowTitle(title);
    if (fileDialog.exec() != QDialog::Accepted)
        return QString();
    const QString path = fileDialog.selectedFiles().value(0);
    fileDialog.setSidebarUrls(fileDialog.sidebarUrls());
    return path.isEmpty() ? path : setupfile::withEnding(path);
}

void SettingsDialog::on_saveConnectionButton_clicked()
{
    ui->saveConnectionButton->setEnabled(false);
    save(QString());
    ui->saveConnectionButton->setEnabled(true);
}

void SettingsDialog::on_saveAsConnectionButton_clicked()
{
    ui->saveAsConnectionButton->setEnabled(false);
    const QString path = chooseFile(QFileDialog::AcceptSave, tr("Save Connection Setup"));
    if (!path.isEmpty())
        save(path);
    ui->saveAsConnectionButton->setEnabled(true);
}

void SettingsDialog::save(const QString& path)
{
    bool isSaved = systems.updateRecords();
    if (isSaved) {
        // No connections are a setup, too.
        settings.setList(inShownOrder(systems.records()));
        isSaved = settings.save(path);
    }
    sayInBoth(isSaved ? tr("Connection setup saved") : tr("Error saving connection setup"));
}

void SettingsDialog::on_loadConnectionButton_clicked()
{
    ui->loadConnectionButton->setEnabled(false);
    const QString path = chooseFile(QFileDialog::AcceptOpen, tr("Load Connection Setup"));
    if (!path.isEmpty()) {
        flows.run([this, path] { loadChosen(path); });
    }
    ui->loadConnectionButton->setEnabled(true);
}

void SettingsDialog::loadChosen(const QString& path)
{
    sayInBoth(QString());
    closeAllConnections();
    if (registry.isLeaving())
        return;
    const auto tell = [this](const QString& label, const QString&, int up, int all) {
        sayProgress(label, up, all);
    };
    // Ends both below. Other loads say nothing in this dialog before they are over.
    const QObject thisLoad;
    connect(this, &SettingsDialog::connectingTo, &thisLoad, tell);
    connect(this, &SettingsDialog::systemUp, &thisLoad, tell);
    load(path);
}

void SettingsDialog::sayProgress(const QString& label, int up, int all)
{
    sayInBoth(all == 1 ? tr("Connecting to %1...").arg(label)
                       : tr("Connecting: %1 of %2 systems are up").arg(up).arg(all));
}

void SettingsDialog::loadConnection(QString path)
{
    flows.run([this, path] { load(path); });
}

void SettingsDialog::load(const QString& path)
{
    logMessage().info() << "Loading connections";
    if (switches::autoSerialSearch)
        fillPortsInfo();
    const bool loaded = loadFlow.load(path);
    if (!path.isEmpty()) {
        formtools::say(*ui->infoLabel,
                       loaded ? tr("Loading was successful") : tr("Loading failed"));
        formtools::say(*ui->infoLabel2, loaded ? tr("Loading successful") : tr("Loading failed"));
    }
    logMessage().info() << "Finished loading connections";
    emit loadingFinished();
}

// Lines.

void SettingsDialog::closeAllConnections()
{
    systems.removeAll();
}

void SettingsDialog::deleteConnectionSlot(QString address)
{
    deleteByUser(systems.meantBy(address));
}

void SettingsDialog::deleteByUser(const Connection* connection)
{
    if (!connection)
        return;
    const formtools::BusyNote note(infoOf(connection->type()), tr("Disconnecting ..."));
    systems.remove(connection);
}

void SettingsDialog::autoConnectChanged(QString address, bool isActive)
{
    systems.setAutoConnect(systems.meantBy(address), isActive);
}

void SettingsDialog::on_WidgetReconnect(QString address)
{
    flows.run([this, address] { reconnect(systems.meantBy(address)); });
}

void SettingsDialog::reconnect(const Connection* connection)
{
    switch (systems.reconnect(connection)) {
    case ReconnectResult::Reconnected:
        sayInBoth(QString());
        break;
    case ReconnectResult::NoController:
        sayInBoth(tr("Could not establish connection."));
        break;
    case ReconnectResult::OtherController:
        sayInBoth(tr("Could not establish connection. Controller ID mismatch."));
        break;
    }
}

void SettingsDialog::on_WidgetDisconnect(QString address)
{
    disconnectByUser(systems.meantBy(address));
}

void SettingsDialog::disconnectByUser(const Connection* connection)
{
    bool isEnded = false;
    if (connection) {
        const formtools::BusyNote note(infoOf(connection->type()), tr("Disconnecting ..."));
        isEnded = systems.disconnectLink(connection);
    }
    sayInBoth(isEnded ? QString() : tr("Could not disconnect."));
}

void SettingsDialog::onLinkLost(const Connection* connection)
{
    sayInBoth(systems.disconnectLink(connection) ? QString() : tr("Could not disconnect."));
}
