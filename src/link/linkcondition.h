#pragma once

#include "link/replybox.h"

#include <atomic>

/// State of the link. Only with `Connected` can anything be sent.
enum class LinkState : int {
    NotConnected = 0,
    /// The port could not be opened, or the end of the thread could not be confirmed.
    OpenOrEndFailed = 1,
    Disconnected = 2,
    Connected = 3,
};

/// How far the start or the stop of a stream has come. While one is sent and not decided, nothing
/// else can be sent.
enum class StreamState : int {
    None = 0,
    StartSent = 1,
    StopSent = 2,
    StartAnsweredOrStopFailed = 3,
};

/// What the GUI thread and the connection's thread both see of a link. Every field can be read and
/// written on any thread; a reply's bytes are there before it is announced.
struct LinkCondition
{
    /// The wait from which all others are derived.
    static constexpr int defaultTimeoutMs = 750;

    std::atomic<LinkState> link{LinkState::NotConnected};
    /// Whether the port can be written to: what other threads see in place of the device. It ends
    /// by `losePort`.
    std::atomic<bool> portOpen{false};
    std::atomic<bool> streaming{false};
    std::atomic<StreamState> stream{StreamState::None};
    ReplyBox replies;
    /// What lies unread at the port is no part of the reply to the next command: it is dropped
    /// before that is written.
    std::atomic<bool> dropUnread{false};

    /// On the connection's thread: nothing can be written any more, and no reply will come.
    void losePort()
    {
        portOpen = false;
        replies.wakeWaiter();
    }

    std::atomic<int> timeoutMs{defaultTimeoutMs};
    std::atomic<int> baudRate{-1};
    std::atomic<int> firmwareVersion{1};
    std::atomic<bool> vmFirmware{false};
    std::atomic<bool> triggerMode{false};
    std::atomic<bool> triggerCapable{false};
    std::atomic<int> samplingRate{-1};
};
