#pragma once

#include <QByteArray>

class Connection;

// One command and its reply. Both block as `Connection::fetchReply` does, and are for the GUI
// thread.

/// A wrapper of `Connection` for a command without an argument, and for one with.
using PlainCommand = void (Connection::*)();
using ArgumentCommand = void (Connection::*)(const QByteArray& argument);

/// The reply to the last command. Empty if none came, or one that was too short.
QByteArray replyOf(Connection& connection);

/// Sends a command and takes its reply, as `replyOf`.
QByteArray ask(Connection& connection, PlainCommand command);
QByteArray ask(Connection& connection, ArgumentCommand command, const QByteArray& argument);
