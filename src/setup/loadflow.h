#pragma once

#include "setup/flowparts.h"

#include <QList>
#include <QString>

#include <functional>
#include <list>
#include <memory>

/// Where a load stands when it begins to connect a system, or when one has come up.
struct LoadProgress
{
    /// The system that is connected next, or that has come up.
    QString label;
    QString address;
    /// How many of the systems that the load connects are up, and how many there are.
    int up = 0;
    int all = 0;
};

/// The flow that makes the connections of a setup file, and connects those that are marked for it.
/// These come up side by side: their waits pass at the same time. Those with one address come up
/// one after the other, since they may share a port or a controller. Lines, records and
/// registrations stand in the order of the file. Blocks and takes events meanwhile; it ends early
/// if the registry is leaving. GUI thread only.
class LoadFlow final
{
public:
    using Watcher = std::function<void(const LoadProgress&)>;

    /// `onConnecting` is called before a stored system is connected, `onUp` when one has come up.
    LoadFlow(FlowParts& parts, Watcher onConnecting, Watcher onUp);

    /// Goes through the file, or through the present records if it can not be read. Systems that
    /// have a line are skipped. False if the file can not be read or holds no controller.
    bool load(const QString& path);

private:
    enum class State { NotWanted, Waiting, Arriving, Up, Down };
    /// A system that has its line, on its way to the registry.
    struct Pending
    {
        ConnectionSettings record;
        std::unique_ptr<Connection> connection;
        State state = State::NotWanted;
        Arrival arrival;
    };

    bool readRecords(const QString& path, QList<ConnectionSettings>& found);
    void makeSystem(ConnectionSettings record);
    void findPort(ConnectionSettings& record) const;

    void connectAll();
    void advance(std::list<Pending>::iterator system);
    bool mayBegin(std::list<Pending>::iterator system) const;
    void begin(Pending& system);
    void end(Pending& system, LinkOutcome outcome);
    bool registerNext();

    FlowParts& parts;
    Watcher onConnecting;
    Watcher onUp;
    /// In the order of the file.
    std::list<Pending> pending;
    int upCount = 0;
    int wantedCount = 0;
};
