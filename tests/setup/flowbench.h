#pragma once

#include "app/switches.h"
#include "fakeconnection.h"
#include "fakeregistry.h"
#include "setup/flowparts.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <QFile>
#include <QListWidget>
#include <QTemporaryDir>

#include <memory>

/// What the flows work with, without the connection dialog: links come up as they are told to, and
/// nothing waits.
class FlowBench final
{
public:
    FlowBench()
    {
        switches::configDir = QDir(directory.path());
        parts.makeTransport = [this](ConnectionType type) {
            auto made = std::make_unique<FakeConnection>(type);
            made->setUsable(usable);
            return made;
        };
        parts.link.connect = [this](Connection& connection, LinkWait wait, const QString& label,
                                    QString& id) {
            waits.append(wait.limitMs);
            labels.append(label);
            expectedIds.append(id);
            if (whenConnecting)
                whenConnecting();
            if (outcome != LinkOutcome::Up)
                return outcome;
            static_cast<FakeConnection&>(connection).comeUp();
            id = answeringId;
            return outcome;
        };
        parts.link.beginArrival = [this](Connection& connection, int limitMs, const QString& label,
                                         const QString& id) {
            if (!outcomes.isEmpty())
                outcome = outcomes.takeFirst();
            int left = advances.isEmpty() ? 1 : advances.takeFirst();
            return [this, &connection, limitMs, label, found = id, result = outcome,
                    left]() mutable -> std::optional<LinkOutcome> {
                if (--left > 0)
                    return std::nullopt;
                outcome = result;
                return parts.link.connect(connection, {limitMs}, label, found);
            };
        };
        parts.link.changeRate = [this](Connection& connection, LinkWait, int baudRate) {
            rateChanges.append({connection.portOrBaud(), baudRate});
            return changesRate;
        };
    }

    QString path(const QString& name) const { return directory.filePath(name); }
    void put(const QString& file, const QByteArray& content) const
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
            qFatal("%s can not be written", qPrintable(file));
    }
    const Connection& connection(int index) const
    {
        return *registry.connections.at(std::size_t(index));
    }

    // How the world answers.
    bool usable = true;
    LinkOutcome outcome = LinkOutcome::Up;
    /// Of the links that come up side by side, in their order; `outcome` for those beyond.
    QList<LinkOutcome> outcomes;
    /// How often these are advanced until their outcome is known; once for those beyond.
    QList<int> advances;
    bool changesRate = true;
    QString answeringId = QStringLiteral("Zev-V40-000000AB000000001-x");
    /// Called in the middle of bringing a link up.
    std::function<void()> whenConnecting;

    // What was asked of the links.
    QList<int> waits;
    QStringList labels;
    QStringList expectedIds;
    /// Rate of the link, and the wanted one.
    QList<QPair<int, int>> rateChanges;

    QTemporaryDir directory;
    FakeRegistry registry;
    QListWidget serialList;
    QListWidget tcpList;
    Settings settings;
    SystemLines systems{registry, serialList, tcpList};
    FlowParts parts{registry, systems, settings, {}, {}, {}};
};
