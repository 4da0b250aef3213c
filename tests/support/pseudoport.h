#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// A name as of a serial adapter that no other process uses; another one with each call.
QString freePortName();

/// A pseudo terminal under the name of a serial adapter, of which the test is the other side. Its
/// name is used by no other process.
class PseudoPort
{
public:
    PseudoPort();
    /// Hangs up and takes the name away.
    ~PseudoPort();
    PseudoPort(const PseudoPort&) = delete;
    PseudoPort& operator=(const PseudoPort&) = delete;

    bool isValid() const { return master >= 0; }
    /// Without a directory.
    QString name() const { return portName; }
    QString path() const { return QStringLiteral("/dev/") + portName; }
    /// The device behind the name.
    QString device() const { return terminal; }

    /// The adapter is pulled: name and device go.
    void unplug();
    /// Only the name goes; who has the device open keeps it.
    void removeName() const;

    bool write(const QByteArray& bytes) const;
    /// What has come from the application and was not read yet.
    QByteArray readAll() const;

    /// How the application has set its side.
    int baudRate() const;
    bool hasHardwareFlowControl() const;

private:
    QString portName;
    QString terminal;

protected:
    int master = -1;
};

/// A port at which something answers, in a thread of its own.
class AnsweringPort final : public PseudoPort
{
public:
    /// Gets a whole command and returns what is answered. It may set the port's fate, too.
    using Answer = std::function<QByteArray(const QByteArray& command, AnsweringPort& port)>;

    explicit AnsweringPort(Answer answer);
    ~AnsweringPort();

    /// The commands that came.
    std::vector<QByteArray> commands() const;
    int count(const QByteArray& command) const;

    /// Hangs up after the present command, without an answer. For `Answer`.
    void hangUpNow() { hangsUp = true; }

private:
    static void hurry();
    void listen();
    void take(const QByteArray& command);

    const Answer answer;
    std::atomic<bool> ends{false};
    bool hangsUp = false;
    QByteArray input;
    mutable std::mutex mutex;
    std::vector<QByteArray> received;
    std::thread listener;
};

/// The 50 bytes that tell who a controller is. The key has 11 characters.
QByteArray idReplyWithKey(const QByteArray& key);
/// The text that the application makes of them.
QString idTextWithKey(const QByteArray& key);

/// A controller that hears and is heard only at its own rate and flow control.
AnsweringPort::Answer controllerAt(int baudRate, bool hasFlowControl, const QByteArray& key);
