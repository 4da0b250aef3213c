#include "link/ask.h"

#include "link/connection.h"

QByteArray replyOf(Connection& connection)
{
    QByteArray reply;
    connection.fetchReply(reply);
    return reply;
}

QByteArray ask(Connection& connection, PlainCommand command)
{
    (connection.*command)();
    return replyOf(connection);
}

QByteArray ask(Connection& connection, ArgumentCommand command, const QByteArray& argument)
{
    (connection.*command)(argument);
    return replyOf(connection);
}
