#pragma once

#include "model/stage.h"
#include "setup/connectionregistry.h"
#include "setup/graph.h"
#include "window/livesystem.h"

#include <QList>
#include <QObject>

#include <vector>

class QColor;

/// The registered systems, and which of them are displayed. A system is identified by its
/// `Connection`; its index in the list is also that of its curves.
///
/// The signals are emitted when the list is consistent again, and none of these functions takes
/// events. Functions that speak with a controller block for the exchange. GUI thread only.
class LiveSystems final : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxDisplayed = 50;

    explicit LiveSystems(QObject* parent = nullptr);
    ~LiveSystems() override;

    int size() const { return int(systems.size()); }
    LiveSystem& at(int index) { return systems[std::size_t(index)]; }
    const LiveSystem& at(int index) const { return systems[std::size_t(index)]; }
    Connection& connectionAt(int index) const { return *at(index).connection; }
    /// -1 if the connection is not registered. It is only compared, so it may be gone.
    int indexOf(const Connection* connection) const;
    /// The connection with this address: the connected one first, else the first; null if there is
    /// none.
    Connection* find(const QString& address) const;

    /// Indices of the displayed systems, in the order in which they were shown.
    const QList<int>& displayed() const { return displayedIndices; }
    /// The displayed system if it is the only one; null otherwise.
    LiveSystem* single();
    /// The system that the stabilisation buttons and the service tests address. Null if there is
    /// none.
    LiveSystem* current();

    /// Copies of the records, in the order of the list.
    QList<ConnectionStatus> statuses() const;

    /// Registers a connection, and displays it if it is up and there is room.
    void add(std::unique_ptr<Connection> connection, const ConnectionSettings& settings,
             DetectorPair& detectors);
    /// Hides a system, ends its thread and removes it; false if it is not registered.
    bool close(const Connection* connection);
    /// Removes all systems, from the last to the first. Streams that run are stopped; what else is
    /// displayed is not told to stop once more.
    void closeAll();
    /// Ends a connection's thread and keeps the system, hidden; false if that failed or the
    /// connection is not registered.
    bool disconnectLink(const Connection* connection);
    /// Starts a connection's thread again and asks who answers. Only the controller `expectedId`
    /// is kept and displayed; an empty text expects any controller, and becomes its
    /// identification.
    ReconnectResult reconnect(const Connection* connection, QString& expectedId);

    /// Displays a connected system, or hides one. A hidden system does not stream. Beyond
    /// `maxDisplayed` nothing is displayed.
    void show(const Connection* connection, bool show);
    /// Sets the colour of a curve. What is no `Graph` does nothing.
    void setColor(const Connection* connection, const QColor& color, Graph graph);
    void setGroup(const Connection* connection, int group);
    /// Notes whether a stage measures with the common detector of its group.
    void noteCommonPath(const Connection* connection, Stage stage, bool isOnCommonPath);
    /// Renames a system, at its controller, too.
    void relabel(const Connection* connection, const QString& label);

signals:
    void added(int index);
    /// The system that had the index is out of the list; its connection still exists.
    void closed(int index, const Connection* connection);
    void shown(int index);
    /// The system is not displayed any more, and its stream was stopped.
    void hidden(int index);
    void disconnected(int index);
    void colored(int index);
    /// The port of a connected system was lost. Whoever keeps its line disconnects it.
    void lost(const Connection* connection);

private:
    void watch(Connection& connection);
    void tellLoss(const Connection* connection);
    void display(int index);
    void hide(int index);

    std::vector<LiveSystem> systems;
    QList<int> displayedIndices;
    int currentIndex = 0;
};
