#include "setup/loadflow.h"

#include "app/logging.h"
#include "controls/waitcursor.h"
#include "link/connection.h"
#include "setup/connectionregistry.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <QSet>

#include <utility>

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

LoadFlow::LoadFlow(FlowParts& flowParts, ConnectingWatcher connectingWatcher)
    : parts(flowParts)
    , onConnecting(std::move(connectingWatcher))
{}

bool LoadFlow::load(const QString& path)
{
    QList<ConnectionSettings> wanted = parts.systems.records();
    const bool loaded = readRecords(path, wanted);
    for (const ConnectionSettings& record : qAsConst(wanted)) {
        if (parts.registry.isLeaving())
            break;
        makeSystem(record);
    }
    return loaded;
}

/// False, with `found` as it was, if the file can not be read; false with an empty `found` if it
/// holds no controller.
bool LoadFlow::readRecords(const QString& path, QList<ConnectionSettings>& found)
{
    if (!parts.settings.read(path))
        return false;
    parts.settings.getList(found);
    removeRepeated(found);
    return !found.isEmpty();
}

void LoadFlow::makeSystem(ConnectionSettings record)
{
    if (parts.systems.hasNumber(record.id.text())) {
        logMessage().info() << "Skipping already existing" << record.id.text();
        return;
    }
    const bool overNetwork = record.type == ConnectionType::Tcp;
    parts.settings.getDetectorData(record);
    if (!overNetwork)
        findPort(record);

    std::unique_ptr<Connection> connection =
        parts.makeTransport(overNetwork ? ConnectionType::Tcp : ConnectionType::Serial);
    connection->setLabel(record.label.text());
    // Also of a system that is down: it can be reconnected later.
    connection->setTriggerMode(record.pulsedLaser);
    logMessage().info() << (overNetwork ? "Creating TCP connection" : "Creating serial connection")
                        << record.label.text();
    const bool usable = connection->init(record.name.text(), record.baudRateOrPort);
    // From here on the connection's way to write its address is the one that counts.
    if (usable && decltype(record.name)::fits(connection->address()))
        record.name.set(connection->address());
    parts.systems.addLine(record, *connection);

    if (usable && record.autoConnect && connectSystem(*connection, record))
        parts.systems.showConnected(connection.get(), true);
    if (parts.registry.isLeaving())
        return;
    parts.systems.registerSystem(std::move(connection), record);
    takeEvents();
}

/// The port of a stored serial connection is only a hint: the device is found by what it says.
void LoadFlow::findPort(ConnectionSettings& record) const
{
    for (const QString& port : parts.devices.portsOf(record.id.text())) {
        // A name without room in the record belongs to no port that can be connected.
        if (decltype(record.name)::fits(port))
            record.name.set(port);
    }
}

/// Unless it succeeds, the connection has no running thread: a link that came up late would be
/// one of an unknown controller.
bool LoadFlow::connectSystem(Connection& connection, const ConnectionSettings& record)
{
    const WaitCursor waiting;
    onConnecting(record.label.text(), record.name.text());
    // Whoever shows this gets the chance to paint it before the exchanges block.
    takeEvents();
    QString id = record.id.text();
    const QString label = record.label.text();
    if (parts.link.connect(connection, storedWait, label, id) != LinkOutcome::Up) {
        connection.disconnectController();
        return false;
    }
    return true;
}
