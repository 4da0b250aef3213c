#pragma once

#include "setup/flowparts.h"

#include <QList>
#include <QString>

#include <functional>

/// The flow that makes the connections of a setup file, and connects those that are marked for it.
/// Blocks and takes events meanwhile; it ends early if the registry is leaving. GUI thread only.
class LoadFlow final
{
public:
    using ConnectingWatcher = std::function<void(const QString& label, const QString& address)>;

    /// `onConnecting` is called before a stored system is connected, which can block for seconds.
    LoadFlow(FlowParts& parts, ConnectingWatcher onConnecting);

    /// Goes through the file, or through the present records if it can not be read. Systems that
    /// have a line are skipped. False if the file can not be read or holds no controller.
    bool load(const QString& path);

private:
    bool readRecords(const QString& path, QList<ConnectionSettings>& found);
    void makeSystem(ConnectionSettings record);
    void findPort(ConnectionSettings& record) const;
    bool connectSystem(Connection& connection, const ConnectionSettings& record);

    FlowParts& parts;
    ConnectingWatcher onConnecting;
};
