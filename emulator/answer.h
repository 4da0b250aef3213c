#pragma once

#include "emulator/reply.h"

#include <QByteArray>

namespace emulator {

/// Why a command was refused; the code that GER tells.
enum class RefusalCode : qint8 {
    None = 0,
    UnknownCommand = 1,
    NoSuchStage = 2,
    NoSuchAxis = 3,
    ValueOutOfRange = 4,
    NotSupported = 5,
    Rejected = 6,
};

/// What a controller answers to a command: a reply, or the reason why it refuses.
struct Answer
{
    enum class Stream { Unchanged, Started, StartedByTrigger, Stopped };

    Answer(const QByteArray& goodReply)
        : reply(goodReply)
    {}
    Answer(RefusalCode code)
        : reply(refusal())
        , reason(code)
    {}

    bool isRefused() const { return reason != RefusalCode::None; }

    QByteArray reply;
    /// Packet that goes out ahead of the reply to CLS.
    QByteArray lastPacket;
    Stream stream = Stream::Unchanged;
    RefusalCode reason = RefusalCode::None;
};

} // namespace emulator
