#include "emulator/command.h"

#include "emulator/packet.h"

#include <algorithm>
#include <iterator>

namespace emulator {

namespace {

constexpr int bareReply = 2;
/// A broken command without a terminator is dropped when it has this many bytes.
constexpr int longestBadFrame = 64;

struct Form
{
    const char* mnemonic;
    int arguments;
    int reply;
};

constexpr Form forms[] = {
    {"GID", 0, 50},
    {"SLA", 25, bareReply},
    {"GLA", 0, 29},
    {"SBR", 1, bareReply},
    {"S1S", 0, packetLength},
    {"SLS", 4, packetLength},
    {"SGS", 4, packetLength},
    {"SPS", 2, bareReply},
    {"CLS", 0, bareReply},
    {"GSF", 0, 4},
    {"GAS", 0, 5},
    {"GIN", 1, 5},
    {"SEA", 1, bareReply},
    {"CEA", 1, bareReply},
    {"SSH", 1, bareReply},
    {"CSH", 1, bareReply},
    {"SHS", 0, bareReply},
    {"CHS", 0, bareReply},
    {"STF", 1, bareReply},
    {"CTF", 1, bareReply},
    {"SPF", 3, bareReply},
    {"GPF", 1, 5},
    {"SAI", 4, bareReply},
    {"GAI", 2, 5},
    {"SDS", 3, bareReply},
    {"GDS", 1, 5},
    {"SDA", 4, bareReply},
    {"GDA", 0, 11},
    {"SMD", 1, bareReply},
    {"CMD", 1, bareReply},
    {"GMF", 0, 4},
    {"SSE", 1, bareReply},
    {"GCA", 0, 11},
    {"GER", 0, 7},
    {"RFR", 3, 258},
};

const Form* formOf(const QByteArray& mnemonic)
{
    const auto found = std::find_if(std::begin(forms), std::end(forms),
                                    [&](const Form& form) { return mnemonic == form.mnemonic; });
    return found == std::end(forms) ? nullptr : found;
}

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

int argumentLength(const QByteArray& mnemonic)
{
    const Form* form = formOf(mnemonic);
    return form ? form->arguments : -1;
}

int replyLength(const QByteArray& mnemonic)
{
    const Form* form = formOf(mnemonic);
    return form ? form->reply : bareReply;
}

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
    const Form* form = formOf(mnemonic);
    if (!form)
        return brokenCommand(input);
    const int length = mnemonicLength + form->arguments + 1;
    if (input.size() < length)
        return {};
    if (input[length - 1] != terminator)
        return brokenCommand(input);
    ParseResult result;
    result.status = ParseStatus::Complete;
    result.consumed = length;
    result.command.mnemonic = mnemonic;
    result.command.arguments = input.mid(mnemonicLength, form->arguments);
    result.command.frame = input.left(length);
    return result;
}

} // namespace emulator
