#pragma once

#include "emulator/controller.h"
#include "emulator/wirelog.h"

#include <QObject>
#include <QString>

namespace emulator {

/// A controller together with the port at which hosts reach it. Lives in the thread that made it.
class Face : public QObject, protected Link
{
    Q_OBJECT

public:
    enum class Logging { Off, On };

    ~Face() override;

    /// Kind and address of the port, such as "tcp" and "127.0.0.1:2000".
    virtual QString kind() const = 0;
    virtual QString place() const = 0;
    /// Why setting up the port failed.
    virtual QString errorString() const = 0;

    /// Power off: nobody can connect, and a host that is connected is cut off.
    virtual void stopListening() = 0;
    /// Power on, at the same place; false on failure, see `errorString`.
    virtual bool listenAgain() = 0;
    virtual bool isConnected() const = 0;
    void closeConnection() { close(); }
    void halfCloseConnection() { halfClose(); }

    void setPaused(bool paused);

    Controller& controller() { return ownController; }
    const Controller& controller() const { return ownController; }
    WireLog& wireLog() { return log; }

signals:
    /// `peer` is empty where hosts have no name.
    void hostConnected(const QString& peer);
    void hostDisconnected();

protected:
    Face(const ControllerOptions& options, Logging logging);

    /// Passes received bytes to the controller, unless the controller is paused.
    virtual void readInput() = 0;

private:
    WireLog log;
    Controller ownController;
};

} // namespace emulator
