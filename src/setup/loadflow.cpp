// The flow that makes the connections of a setup file.

#include "app/logging.h"
#include "app/switches.h"
#include "link/connection.h"
#include "setup/connectionregistry.h"
#include "setup/connectionwidget.h"
#include "setup/recordroom.h"
#include "setup/settingsdialog.h"
#include "setup/waitcursor.h"
#include "ui_settingsdialog.h"

#include <QSet>

namespace {

constexpr LinkWait storedWait{300};

/// A system has one connection: the first record of it counts.
void removeRepeated(QList<ConnectionSettings>& records)
{
    QSet<QString> seen;
    for (int i = 0; i < records.size();) {
        const QString id = records.at(i).id.text();
        if (seen.contains(id)) {
            logMessage().warning() << "Skipping repeated" << id;
            records.removeAt(i);
        } else {
            seen.insert(id);
            ++i;
        }
    }
}

} // namespace

void SettingsDialog::on_loadConnectionButton_clicked()
{
    ui->loadConnectionButton->setEnabled(false);
    const QString path = chooseFile(QFileDialog::AcceptOpen, tr("Load Connection Setup"));
    if (!path.isEmpty()) {
        inTurn([this, path] { loadChosen(path); });
    }
    ui->loadConnectionButton->setEnabled(true);
}

void SettingsDialog::loadChosen(const QString& path)
{
    sayInBoth(QString());
    closeAllConnections();
    if (registry.isLeaving())
        return;
    const auto telling =
        connect(this, &SettingsDialog::connectingTo, this,
                [this](const QString& label) { sayInBoth(tr("Connecting to %1...").arg(label)); });
    makeConnections(path);
    disconnect(telling);
}

void SettingsDialog::loadConnection(QString path)
{
    inTurn([this, path] { makeConnections(path); });
}

void SettingsDialog::makeConnections(const QString& path)
{
    logMessage().info() << "Loading connections";
    if (switches::autoSerialSearch)
        fillPortsInfo();
    // If the file can not be read, those that are there already are gone through.
    QList<ConnectionSettings> wanted = systems.records();
    const bool loaded = readRecords(path, wanted);
    for (const ConnectionSettings& record : qAsConst(wanted)) {
        if (registry.isLeaving())
            break;
        makeStoredConnection(record);
    }
    if (!path.isEmpty())
        showLoadOutcome(loaded);
    logMessage().info() << "Finished loading connections";
    emit loadingFinished();
}

/// False, with `found` as it was, if the file can not be read; false with an empty `found` if it
/// holds no controller.
bool SettingsDialog::readRecords(const QString& path, QList<ConnectionSettings>& found)
{
    if (!settings.read(path))
        return false;
    settings.getList(found);
    removeRepeated(found);
    return !found.isEmpty();
}

void SettingsDialog::showLoadOutcome(bool loaded)
{
    say(*ui->infoLabel, loaded ? tr("Loading was successful") : tr("Loading failed"));
    say(*ui->infoLabel2, loaded ? tr("Loading successful") : tr("Loading failed"));
}

/// The port of a stored serial connection is only a hint: the device is found by what it says.
void SettingsDialog::findInterface(ConnectionSettings& record) const
{
    for (const QStringList& entry : interfaces) {
        const QString port = entry.value(interfacePort);
        // A name without room in the record belongs to no port that can be connected.
        if (entry.value(interfaceId) == record.id.text() && decltype(record.name)::fits(port))
            record.name.set(port);
    }
}

void SettingsDialog::makeStoredConnection(ConnectionSettings record)
{
    if (systems.hasNumber(record.id.text())) {
        logMessage().info() << "Skipping already existing" << record.id.text();
        return;
    }
    Tab& own = tab(record.type);
    settings.getDetectorData(record);
    if (own.type == ConnectionType::Serial)
        findInterface(record);

    std::unique_ptr<Connection> connection = makeTransport(own.type);
    connection->setLabel(record.label.text());
    logMessage().info() << (own.type == ConnectionType::Tcp ? "Creating TCP connection"
                                                            : "Creating serial connection")
                        << record.label.text();
    const bool usable = connection->init(record.name.text(), record.baudRateOrPort);
    // From here on the connection's way to write its address is the one that counts.
    if (usable && decltype(record.name)::fits(connection->address()))
        record.name.set(connection->address());
    systems.addLine(record, *connection);

    if (usable && record.autoConnect && connectStored(*connection, record))
        systems.showConnected(connection.get(), true);
    if (registry.isLeaving())
        return;
    systems.registerSystem(std::move(connection), record);
    takeEvents();
}

/// Unless it succeeds, the connection has no running thread: a link that came up late would be
/// one of an unknown controller.
bool SettingsDialog::connectStored(Connection& connection, const ConnectionSettings& record)
{
    const WaitCursor waiting;
    emit connectingTo(record.label.text(), record.name.text());
    // Whoever shows this gets the chance to paint it before the exchanges block.
    takeEvents();
    QString id = record.id.text();
    if (connectAndIdentify(connection, storedWait, record.label.text(), id, &canBeStored)
        != LinkOutcome::Up) {
        connection.disconnectController();
        return false;
    }
    connection.setTriggerMode(record.pulsedLaser);
    return true;
}
