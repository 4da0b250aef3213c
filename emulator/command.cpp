#include "emulator/command.h"

#include "emulator/commandtable.h"

#include <algorithm>

namespace emulator {

namespace {

/// A broken command without a terminator is dropped when it has this many bytes.
constexpr int longestBadFrame = 64;

bool canStandInMnemonic(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
}

ParseResult noise(const QByteArray& input, int length)
{
    ParseResult result;
    result.status = ParseStatus::Bad;
    result.consumed = length;
    result.command.frame = input.left(length);
    return result;
}

/// Bytes that begin like a command but are none. They end with the next terminator.
ParseResult brokenCommand(const QByteArray& input)
{
    const int end = input.indexOf(terminator, mnemonicLength);
    if (end < 0 && input.size() < longestBadFrame)
        return {};
    ParseResult result = noise(input, end < 0 ? input.size() : end + 1);
    result.command.mnemonic = input.left(mnemonicLength);
    return result;
}

} // namespace

ParseResult parseCommand(const QByteArray& input)
{
    int letters = 0;
    while (letters < std::min(input.size(), mnemonicLength) && canStandInMnemonic(input[letters]))
        ++letters;
    if (letters < mnemonicLength) {
        // Everything up to the byte that can not be part of a mnemonic is line noise, this byte
        // included.
        return letters < input.size() ? noise(input, letters + 1) : ParseResult();
    }
    const QByteArray mnemonic = input.left(mnemonicLength);
    const int arguments = argumentLength(mnemonic);
    if (arguments < 0)
        return brokenCommand(input);
    const int length = mnemonicLength + arguments + 1;
    if (input.size() < length)
        return {};
    if (input[length - 1] != terminator)
        return brokenCommand(input);
    ParseResult result;
    result.status = ParseStatus::Complete;
    result.consumed = length;
    result.command.mnemonic = mnemonic;
    result.command.arguments = input.mid(mnemonicLength, arguments);
    result.command.frame = input.left(length);
    return result;
}

} // namespace emulator
