#pragma once

#include <QByteArray>

namespace emulator {

/// Ends every command and every reply, and stands behind a reply's status byte.
constexpr char terminator = ';';
constexpr int mnemonicLength = 3;

/// One command as it came over the wire.
struct Command
{
    /// Three upper-case letters or digits.
    QByteArray mnemonic;
    /// Bytes between the mnemonic and the terminator.
    QByteArray arguments;
    /// All bytes, the terminator included.
    QByteArray frame;
};

enum class ParseStatus {
    Complete,   ///< `command` is a command of the protocol; `consumed` is its length.
    Incomplete, ///< More bytes are needed; nothing is consumed.
    Bad,        ///< Not a command. `consumed` bytes are to be dropped; if `command.mnemonic` is not
                ///< empty, something that looked like a command is to be refused.
};

struct ParseResult
{
    ParseStatus status = ParseStatus::Incomplete;
    Command command;
    int consumed = 0;
};

/// Looks for one command at the beginning of `input`. The caller drops `consumed` bytes and calls
/// again. After bytes that are no command, parsing continues after the next terminator.
ParseResult parseCommand(const QByteArray& input);

} // namespace emulator
