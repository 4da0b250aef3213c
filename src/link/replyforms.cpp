#include "link/replyforms.h"

#include "link/commandframe.h"

namespace command {

bool isAccepted(const QByteArray& reply)
{
    return reply.size() > 1 && reply.at(0) == '\0' && reply.at(1) == terminator;
}

bool isAccepted(const QByteArray& reply, int leastBytes)
{
    return isAccepted(reply) && reply.size() >= leastBytes;
}

bool isAcceptedByOne(const QByteArray& reply)
{
    return !reply.isEmpty() && reply.at(0) == '\0';
}

bool isAcceptedByTwo(const QByteArray& reply)
{
    return reply.size() > 1 && reply.at(0) == '\0';
}

bool isRefused(const QByteArray& reply)
{
    return !reply.isEmpty() && reply.at(0) == '\x01';
}

bool isLongerThan(const QByteArray& reply, int bytes)
{
    return reply.size() > bytes;
}

} // namespace command
