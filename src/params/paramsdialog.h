#pragma once

#include "model/detectorpair.h"

#include <QDialog>

#include <list>

class Connection;
struct ConnectionSettings;

/// Owner of the detectors of every registered connection. The window reads them where
/// `addDetectors` says. Opening notes the system and shows nothing: the controls of the dialog are
/// not part of this version.
class ParamsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ParamsDialog(QWidget* parent);

    /// Adds the detectors of a new connection. They stay where they are until `removeDetectors`,
    /// before which the connection has to live.
    DetectorPair& addDetectors(const Connection& connection, const ConnectionSettings& settings);
    /// Removes the detectors of a connection, and closes the dialog if it stands on that one.
    void removeDetectors(const Connection* connection);

public slots:
    /// Opens for the first registered system with this address, connected or not. Without one a
    /// visible dialog is closed, and nothing else happens.
    void openDialog(QString address);
    /// Closes the dialog if it is visible, and stands on this connection from now on. Null changes
    /// nothing else.
    void openFor(const Connection* connection);
    /// Closes the dialog if its connection is not connected any more.
    void closeIfDisconnected();

signals:
    /// A stream could not be started again.
    void errorStream();

private:
    struct System
    {
        const Connection* connection;
        DetectorPair detectors;
    };

    /// In a list, because the window keeps references to the detectors.
    std::list<System> systems;
    const Connection* current = nullptr;
};
