#include "link/talk.h"

#include "link/connection.h"

#include <QThread>

#include <utility>

std::optional<bool> TalkTurn::advance(Connection& connection, const CommandFrame& frame,
                                      QByteArray& reply)
{
    if (!isSent)
        isSent = connection.trySend(frame);
    if (!isSent || !connection.isSettled())
        return std::nullopt;
    isSent = false;
    return connection.fetchReply(reply);
}

void awaitNews(const Connection& connection)
{
    if (connection.isSettled())
        QThread::msleep(talkPaceMs);
    else
        connection.waitUntilSettled();
}

StopTalk::StopTalk(Connection& talkedTo, int stops, Unanswered unanswered)
    : connection(talkedTo)
    , stopsLeft(stops)
    , repeats(unanswered == Unanswered::Repeated)
{}

bool StopTalk::advance()
{
    QByteArray ignored;
    while (stopsLeft > 0) {
        const std::optional<bool> answered = turn.advance(connection, command::stop(), ignored);
        if (!answered)
            return false;
        --stopsLeft;
        if (stopsLeft == 0 && !*answered && std::exchange(repeats, false))
            stopsLeft = 1;
    }
    return true;
}
