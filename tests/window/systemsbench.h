#pragma once

#include "link/streampause.h"
#include "model/connectionsettings.h"
#include "model/detectorpair.h"
#include "support/scriptedconnection.h"
#include "window/livesystems.h"

#include <QMetaType>
#include <QSignalSpy>

#include <deque>

Q_DECLARE_METATYPE(const Connection*)

/// Registered systems behind connections that tests make up.
struct SystemsBench
{
    enum class Link { Down, Up, Running };

    SystemsBench() { qRegisterMetaType<const Connection*>("const Connection*"); }

    /// Registers one more system. One that is `Up` has no thread and answers nothing.
    ScriptedConnection& add(Link link = Link::Up,
                            const QString& address = QStringLiteral("ttyUSB0"),
                            const ConnectionSettings& settings = {}, int baudRate = 921600)
    {
        auto made = std::make_unique<ScriptedConnection>(address, baudRate);
        ScriptedConnection& connection = *made;
        if (link == Link::Up)
            connection.comeUp();
        if (link == Link::Running && !connection.startAndWait())
            qFatal("The thread of a connection does not start");
        detectors.emplace_back();
        systems.add(std::move(made), settings, detectors.back());
        return connection;
    }

    /// A registered system whose controller streams at 100 Hz. It has forgotten how it was started.
    ScriptedConnection& addStreaming()
    {
        ScriptedConnection& connection = add(Link::Running);
        if (hasFailed(startStreamAtRate(connection, 100)) || !connection.isStreaming())
            qFatal("The stream of a connection does not start");
        connection.controller().forgetMessages();
        return connection;
    }

    ScriptedConnection& connection(int index) const
    {
        return static_cast<ScriptedConnection&>(systems.connectionAt(index));
    }

    /// They keep their places in memory.
    std::deque<DetectorPair> detectors;
    LiveSystems systems;
};

/// The systems that a signal named, in its order.
inline QList<int> indicesOf(const QSignalSpy& spy)
{
    QList<int> indices;
    for (const QList<QVariant>& arguments : spy)
        indices.append(arguments.first().toInt());
    return indices;
}
