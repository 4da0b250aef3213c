#include "setup/loadflow.h"

#include "app/logging.h"
#include "controls/waitcursor.h"
#include "link/connection.h"
#include "link/talk.h"
#include "setup/connectionregistry.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <QSet>
#include <QThread>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace {

/// A link has to be up within this.
constexpr int storedLimitMs = 300;

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

LoadFlow::LoadFlow(FlowParts& flowParts, Watcher connectingWatcher, Watcher upWatcher)
    : parts(flowParts)
    , onConnecting(std::move(connectingWatcher))
    , onUp(std::move(upWatcher))
{}

bool LoadFlow::load(const QString& path)
{
    QList<ConnectionSettings> wanted = parts.systems.records();
    const bool loaded = readRecords(path, wanted);
    const WaitCursor waiting;
    for (const ConnectionSettings& record : qAsConst(wanted))
        makeSystem(record);
    connectAll();
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

    const State state = usable && record.autoConnect ? State::Waiting : State::NotWanted;
    pending.push_back({record, std::move(connection), state, {}});
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

/// Connects what is to be connected, and gives all systems to the registry. What is not there yet
/// when the registry leaves is dropped.
void LoadFlow::connectAll()
{
    upCount = 0;
    wantedCount = int(std::count_if(pending.begin(), pending.end(), [](const Pending& system) {
        return system.state == State::Waiting;
    }));
    while (!pending.empty() && !parts.registry.isLeaving()) {
        const bool isRegistered = registerNext();
        for (auto each = pending.begin(); each != pending.end() && !parts.registry.isLeaving();
             ++each)
            advance(each);
        takeEvents();
        if (!isRegistered)
            QThread::msleep(talkPaceMs);
    }
    pending.clear();
}

void LoadFlow::advance(std::list<Pending>::iterator system)
{
    if (system->state == State::Waiting && mayBegin(system))
        begin(*system);
    if (system->state != State::Arriving)
        return;
    if (const std::optional<LinkOutcome> outcome = system->arrival())
        end(*system, *outcome);
}

/// Two systems with one address may be controllers that are used in turn on one port: the second
/// one finds what the first one has left.
bool LoadFlow::mayBegin(std::list<Pending>::iterator system) const
{
    return std::none_of(pending.begin(), std::list<Pending>::const_iterator(system),
                        [&system](const Pending& earlier) {
                            return earlier.state != State::NotWanted
                                   && earlier.connection->address()
                                          == system->connection->address();
                        });
}

void LoadFlow::begin(Pending& system)
{
    onConnecting({system.record.label.text(), system.record.name.text(), upCount, wantedCount});
    // Whoever shows this gets the chance to paint it.
    takeEvents();
    if (parts.registry.isLeaving())
        return;
    system.arrival = parts.link.beginArrival(*system.connection, storedLimitMs,
                                             system.record.label.text(), system.record.id.text());
    system.state = State::Arriving;
}

/// Unless it is up, the connection has no running thread: a link that came up late would be one of
/// an unknown controller.
void LoadFlow::end(Pending& system, LinkOutcome outcome)
{
    system.arrival = nullptr;
    if (outcome != LinkOutcome::Up) {
        system.connection->disconnectController();
        system.state = State::Down;
        return;
    }
    system.state = State::Up;
    ++upCount;
    onUp({system.record.label.text(), system.record.name.text(), upCount, wantedCount});
}

/// The registry gets the systems in the order of the file: each waits for those before it. False if
/// the first one has not come so far.
bool LoadFlow::registerNext()
{
    const State state = pending.front().state;
    if (state == State::Waiting || state == State::Arriving)
        return false;
    Pending system = std::move(pending.front());
    pending.pop_front();
    if (state == State::Up)
        parts.systems.showConnected(system.connection.get(), true);
    parts.systems.registerSystem(std::move(system.connection), system.record);
    return true;
}
