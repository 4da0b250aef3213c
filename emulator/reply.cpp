#include "emulator/reply.h"

#include "emulator/command.h"
#include "emulator/packet.h"

namespace emulator {

namespace {

constexpr char acceptedStatus = '\0';
constexpr char refusedStatus = '\1';

QByteArray bareReply(char status)
{
    QByteArray reply;
    reply.append(status);
    reply.append(terminator);
    return reply;
}

} // namespace

QByteArray acceptance()
{
    return bareReply(acceptedStatus);
}

QByteArray refusal()
{
    return bareReply(refusedStatus);
}

QByteArray payload(const QByteArray& bytes)
{
    return acceptance() + bytes + terminator;
}

QByteArray words(std::initializer_list<int> values)
{
    QByteArray bytes;
    for (const int value : values)
        appendWord(bytes, value);
    return payload(bytes);
}

int byteAt(const QByteArray& bytes, int index)
{
    return static_cast<quint8>(bytes[index]);
}

int unsignedWordAt(const QByteArray& bytes, int index)
{
    return byteAt(bytes, index) * 256 + byteAt(bytes, index + 1);
}

int signedWordAt(const QByteArray& bytes, int index)
{
    return static_cast<qint16>(unsignedWordAt(bytes, index));
}

} // namespace emulator
