#pragma once

#include "model/detectorpair.h"
#include "setup/connectionstatus.h"

#include <QDialog>
#include <QList>

#include <memory>
#include <vector>

class Connection;
struct ConnectionSettings;

/// Owner of the detectors of every connection. The window reads them through `detectorPairs`.
/// Opening the dialog has no effect: its controls are not part of this version.
class ParamsDialog final : public QDialog
{
    Q_OBJECT

public:
    using Connections = std::vector<std::unique_ptr<Connection>>;

    /// The lists belong to the window and outlive the dialog.
    ParamsDialog(const Connections& connections, const QList<ConnectionStatus>& statuses,
                 QWidget* parent);

    /// One pair per connection, in the order of the connections.
    QList<DetectorPair>* detectorPairs() { return &pairs; }
    /// Adds the pair of a new connection.
    void appendDetectorPair(const ConnectionSettings& settings);
    /// Removes the pair of a connection, and closes the dialog if it stands on that one.
    void removeDetectorPair(int index);
    /// Closes the dialog if its connection is not connected any more.
    void closeIfDisconnected();

    /// Opens the dialog for a connection; nothing happens if it is not in the list.
    void openFor(const Connection* connection);

public slots:
    /// Opens the dialog for the first connection with this address.
    void openDialog(QString address);

signals:
    /// A stream could not be started again.
    void errorStream();

private:
    const Connections& connections;
    const QList<ConnectionStatus>& statuses;
    QList<DetectorPair> pairs;
    int currentIndex = 0;
};
