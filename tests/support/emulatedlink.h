#pragma once

#include "emulator/emulatorhost.h"
#include "link/tcpclient.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <vector>

/// A `TcpClient` on an emulated controller of its own, with short waits unless asked otherwise.
struct EmulatedLink
{
    static constexpr int shortTimeoutMs = 250;

    explicit EmulatedLink(const emulator::ControllerOptions& options = {},
                          int timeoutMs = shortTimeoutMs);

    /// Starts the thread and waits until the link is up.
    bool connect();
    /// `connect` and `askIdentity`.
    bool connectAndIdentify();
    /// Starts a stream and takes its first packet.
    bool startStream(int rateHz = 500);

    QByteArray exchange(void (Connection::*command)());
    /// All samples that have come so far, oldest first.
    std::vector<MeasureSample> takeSamples();

    emulator::EmulatorHost host;
    emulator::ControllerHandle controller;
    TcpClient client;
    /// The addresses that `hostDisconnected` told.
    QStringList lost;
    QObject context;
};

/// Asks the controller for its identity and gives it to the client. Omits the stop commands that
/// end a running stream, because a new controller does not stream and they take time. False if no
/// controller of ours answered.
bool askIdentity(Connection& client);

/// How often the controller has sent something since the last `clearWire`.
int repliesOf(const emulator::ControllerHandle& controller);

/// Acts on the thread of the connection, which is still to be started, within its event loop and as
/// soon as `isTime` holds there.
void onThreadOf(Connection& client, std::function<bool()> isTime, std::function<void()> act);
/// Lets the connection, which is still to be started, look for the boundary of replies on its own
/// thread as soon as `isTime` holds there.
void resyncOnce(Connection& client, std::function<bool()> isTime);

/// Script samples whose x1 and y1 count from 1 and whose values hold no byte of a packet's marks.
QVector<emulator::PacketValues> numberedSamples(int count);
/// One stream packet as the protocol has it, with `x1` and given flag bytes.
QByteArray rawPacket(int x1, char flagsA = 0, char flagsB = 0);
