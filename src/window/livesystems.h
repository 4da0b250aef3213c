#pragma once

#include "model/stage.h"
#include "setup/connectionregistry.h"
#include "setup/graph.h"
#include "window/livesystem.h"
#include "window/shownsystems.h"

#include <QList>
#include <QObject>
#include <QVector>

#include <memory>
#include <vector>

class QColor;

/// How bringing a connection up again has ended.
struct Reconnection
{
    ReconnectResult result = ReconnectResult::NoController;
    /// Of the controller that is kept; empty without one.
    QString id;
};

/// The registered systems, and which of them are on the plots. A system is identified by its
/// `Connection`; its index in the list is also that of its curves. Beside the systems that are
/// displayed stand those whose common detector is shown; a system can be in both lists.
///
/// The signals are emitted when the list is consistent again, and none of these functions takes
/// events. Functions that speak with a controller block for the exchange. GUI thread only.
class LiveSystems final : public QObject
{
    Q_OBJECT

public:
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
    const QList<int>& displayed() const { return onPlots.displayed(); }
    /// Indices of the systems whose common detector is shown, in the order of its curves. When one
    /// is shown is not settled: the application itself leaves the list empty.
    const QList<int>& common() const { return onPlots.common(); }
    /// The curve of the common detector at this place of its list: they follow those of all
    /// systems.
    int commonCurve(int place) const { return size() + place; }
    /// How many there are on the plots, in both lists together.
    int shownCount() const { return onPlots.count(); }
    /// The displayed system if it is the only one; with none displayed the one whose common
    /// detector is shown, if that is the only one; null otherwise.
    LiveSystem* single();
    /// The system that the stabilisation buttons and the service tests address. Null if there is
    /// none.
    LiveSystem* current();
    const LiveSystem* current() const;

    /// Copies of the records, in the order of the list.
    QVector<ConnectionStatus> statuses() const;

    /// Registers a connection, and displays it if it is up and there is room.
    void add(std::unique_ptr<Connection> connection, const ConnectionSettings& settings,
             DetectorPair& detectors);
    /// Stops the controllers of systems that are closed next, as closing them does, but all at the
    /// same time. They are begun in this order. What is not registered is left out.
    void dismiss(const QList<const Connection*>& closing);
    /// Hides a system, ends its thread and removes it; false if it is not registered.
    bool close(const Connection* connection);
    /// Removes all systems, from the last to the first. Streams that run are stopped; what else is
    /// displayed is not told to stop once more.
    void closeAll();
    /// Ends a connection's thread and keeps the system, hidden; false if that failed or the
    /// connection is not registered.
    bool disconnectLink(const Connection* connection);
    /// Starts a connection's thread again and asks who answers. Only the controller `expectedId`
    /// is kept and displayed; an empty text expects any controller.
    Reconnection reconnect(const Connection* connection, const QString& expectedId);

    /// Displays a connected system, or hides one. A hidden system does not stream. Beyond
    /// `ShownSystems::maxDisplayed` nothing is displayed.
    void show(const Connection* connection, bool show);
    /// Shows the common detector of a connected system, or takes it off the plots.
    void showCommon(const Connection* connection, bool show);
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
    /// The system is not displayed any more. Its stream was stopped, unless its common detector is
    /// shown.
    void hidden(int index);
    /// The common detector of a system came to the end of its list.
    void commonShown(int index);
    /// A common detector left this place of its list.
    void commonHidden(int place);
    void disconnected(int index);
    void colored(int index);
    /// The port of a connected system was lost. Whoever keeps its line disconnects it.
    void lost(const Connection* connection);

private:
    void watch(Connection& connection);
    void tellLoss(const Connection* connection);
    void noteReconnected(int index);
    void display(int index);
    void hide(int index);
    void displayCommon(int index);
    void hideCommon(int index);
    bool isStoppedByHiding(int index) const;

    std::vector<LiveSystem> systems;
    ShownSystems onPlots;
};
