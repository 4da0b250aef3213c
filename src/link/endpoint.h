#pragma once

#include "link/linkcondition.h"
#include "link/streamdecoder.h"

#include <QDeadlineTimer>

#include <functional>
#include <memory>

class QIODevice;

/// The half of the talk with a controller that runs on the connection's thread: it writes commands
/// to the port and takes what arrives, which is a reply, the stream, or the reply that ends it.
///
/// All functions are for the connection's thread. Those that wait take its events meanwhile.
class Endpoint final
{
public:
    Endpoint(LinkCondition& condition, measureStore& liveStore);
    ~Endpoint();
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;

    void open(std::unique_ptr<QIODevice> port);
    void close();
    /// Null while it is not open.
    QIODevice* port() const { return device.get(); }

    /// Writes a command and awaits a reply of that length. A command that can not be sent now,
    /// because another one waits for its reply, a stream runs or the link is not up, is dropped
    /// silently.
    void write(const CommandFrame& frame);
    /// Takes what has arrived. Not to be called again from the events that it takes.
    void takeInput();

    const StreamDecoder& decoder() const { return streamDecoder; }

private:
    bool isWritable(const CommandFrame& frame) const;

    void receiveReply();
    void noteWholeReply(const QByteArray& bytes);
    QByteArray takeShortReply();

    void receiveStream();
    bool stopsWithoutEndMark() const;
    void finishStreamWithEndMark();
    void finishStreamWithoutEndMark();

    void restartDeadline(double timeoutFactor = 1.0);
    bool isWaitOver() const;
    bool waitUntil(const std::function<bool()>& isReached) const;
    bool waitForBytes(const int& count) const;
    QByteArray takeRest();

    LinkCondition& condition;
    StreamDecoder streamDecoder;
    std::unique_ptr<QIODevice> device;
    /// End of the present wait.
    QDeadlineTimer deadline;
    /// Of the latest command.
    int answerLength = 0;
};
