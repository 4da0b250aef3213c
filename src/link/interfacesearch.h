#pragma once

#include <QList>
#include <QString>

#include <functional>

/// A serial interface of this machine. The name has no directory.
struct SerialInterface
{
    QString name;
    QString description;
    QString manufacturer;
};

/// A controller that the search found at a serial interface.
struct FoundInterface
{
    /// The controller's identification text.
    QString id;
    /// Name of the port, without a directory.
    QString port;
    /// The rate at which the controller answers.
    int baudRate = 0;
    /// 1 for hardware flow control, 0 for none.
    int flowControl = 0;
};

using InterfaceLister = std::function<QList<SerialInterface>()>;

/// What the system knows of its serial interfaces.
QList<SerialInterface> availableInterfaces();

/// Finds the controllers at the serial interfaces by trying each of them and asking who is there.
/// There is at most one per port. Only adapters of FTDI are tried unless `anyDevice` is set; pseudo
/// terminals are named in the log if `includePseudo` is set.
///
/// Blocks: a port that does not answer takes 800 ms. It works with ports of its own, on any thread;
/// one that a connection holds is left alone because it can not be opened.
QList<FoundInterface> searchInterfaces(bool includePseudo, bool anyDevice,
                                       const InterfaceLister& lister = availableInterfaces);
