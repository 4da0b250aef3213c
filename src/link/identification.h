#pragma once

#include "link/talk.h"

#include <QByteArray>
#include <QString>

class Connection;

/// What a controller says of itself in its `GID` reply.
struct ControllerIdentity
{
    /// Whether the reply came from a controller of this maker. The rest holds only then.
    bool isController = false;
    int firmwareVersion = 0;
    bool vmFirmware = false;
    bool triggerCapable = false;
    /// The reply without its status and its terminator.
    QString id;
};

/// How many stops clear the line before the controller is asked who it is.
enum class LineClearing {
    TwoStops,
    /// A third stop follows if the second one was not answered.
    TwoStopsAndRepeat,
};

/// Whether a `GID` reply has the maker's mark in its place.
bool namesMaker(const QByteArray& idReply);

ControllerIdentity readIdentity(const QByteArray& idReply);

/// Stops a stream that may have been left running, and takes whatever the controller answers.
/// Blocks for the exchanges.
void clearLine(Connection& connection, LineClearing clearing);

/// Clears the line and asks the controller who it is, as a talk that never waits. An identity that
/// holds is stored in the connection.
class IdentityTalk final
{
public:
    /// The connection has to live longer than this.
    IdentityTalk(Connection& connection, LineClearing clearing);

    bool advance();
    /// Once the talk is over.
    const ControllerIdentity& identity() const { return found; }

private:
    void keep(const QByteArray& reply);

    Connection& connection;
    StopTalk clearing;
    TalkTurn turn;
    bool isOver = false;
    ControllerIdentity found;
};

/// Clears the line and asks the controller who it is. Blocks for the exchanges. An identity that
/// holds is stored in the connection.
ControllerIdentity identify(Connection& connection, LineClearing clearing);

/// Gives the connection its label and stores it in the controller, too.
void labelController(Connection& connection, const QString& label);
