#pragma once

#include "emulator/emulatorhost.h"

#include <QStringList>

/// What passed between application and controller, one line each: "> SLS000001f43b" for a command,
/// "< 003b" for a reply, "< packets" for any number of stream packets in a row.
QStringList dialogue(const emulator::ControllerHandle& controller);

/// The same without the status polls of the display tick and their replies.
QStringList dialogueWithoutPolls(const emulator::ControllerHandle& controller);

/// A command line of the dialogue.
QString sent(const char* mnemonic, const QByteArray& argument = QByteArray(";"));
/// A reply line of the dialogue.
QString got(const QByteArray& bytes);
QString accepted();
QString packets();
QString labelCommand(const char* label);
QString startCommand(int rateHz);
QString stageCommand(const char* mnemonic, int stage);
