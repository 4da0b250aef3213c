#pragma once

#include "link/connection.h"

#include <QHash>
#include <QList>

#include <memory>
#include <mutex>
#include <vector>

/// What a controller answers, by the three letters of the command, and what it was asked. A command
/// without an answer stays unanswered. Any thread may call.
class ControllerScript final
{
public:
    /// Answers from now on with these bytes.
    void answer(const QByteArray& mnemonic, const QByteArray& reply);
    void stayQuiet(const QByteArray& mnemonic);
    QByteArray replyOf(const QByteArray& message);

    /// All commands that came, in their order, whole.
    QList<QByteArray> messages() const;
    /// Their letters alone.
    QList<QByteArray> mnemonics() const;
    void forgetMessages();

private:
    mutable std::mutex mutex;
    QHash<QByteArray, QByteArray> replies;
    QList<QByteArray> received;
};

/// A connection of a firmware with flags, without a port. There are two ways to bring it up.
/// `comeUp` publishes the link without a thread: commands are dropped and nothing waits for them.
/// `start` runs the thread over memory, where the script answers like a controller.
class ScriptedConnection final : public Connection
{
public:
    explicit ScriptedConnection(const QString& address = QStringLiteral("ttyUSB0"),
                                int baudRate = 921600);
    ~ScriptedConnection() override;

    QString address() const override { return name; }
    int connectionType() const override { return 0; }
    bool init(const QString& newName, int baudOrPort) override;
    int portOrBaud() const override { return baudRate(); }
    void releaseInPlace() override { release("scripted"); }
    void resync() override {}

    void comeUp() { publishConnected(); }
    /// Starts the thread and waits, without taking events, until the link is up.
    bool startAndWait();
    /// The port is lost; waits until the thread, which must run, has ended.
    void losePort();

    ControllerScript& controller() { return *script; }
    /// The controller sends packets by itself; waits until they are stored. The thread must run and
    /// stream.
    bool sendPackets(const QByteArray& packets);

    /// Samples of the common detector, as if the controller had sent them.
    void storeCommonSamples(const std::vector<MeasureSample>& samples);

    /// Samples that `takeGivenSamples` gives, oldest first.
    std::vector<MeasureSample> given;
    /// As the stores of a connection do: moves the oldest samples behind those of `out`, at most so
    /// many.
    void takeGivenSamples(std::vector<MeasureSample>& out, std::size_t most);

protected:
    void run() override;
    void discardInput() override {}

private:
    QString name;
    std::shared_ptr<ControllerScript> script = std::make_shared<ControllerScript>();
};

namespace replies {

/// An accepted command.
QByteArray accepted();
/// The reply to `GSF`.
QByteArray status(quint8 flags);
/// The reply to `GID` of firmware 40 and its identification, which ends in `key`.
QByteArray identity(const QByteArray& key);
QString idWithKey(const QByteArray& key);
/// A packet with `x1` in millivolts. It answers the start of a stream, too.
QByteArray packet(quint8 flags = 0, qint16 x1 = 0);
/// What ends the stream of a firmware with flags.
QByteArray endOfStream();

} // namespace replies
