#pragma once

#include "model/stage.h"
#include "setup/connectionstatus.h"
#include "setup/graph.h"

#include <QColor>
#include <QDialog>
#include <QList>
#include <QString>
#include <QVector>

#include <memory>

class OverviewWidget;
class QListWidgetItem;

namespace Ui {
class ConnectionOverviewDialog;
}

/// The live overview of all systems, one row for each. Rows can be dragged into the order in which
/// the systems are to be stored.
///
/// `name` is the address of a connection, `graph` the number of a `Graph`, `stage` 1 or 2.
class ConnectionOverviewDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ConnectionOverviewDialog(QWidget* parent = nullptr);
    ~ConnectionOverviewDialog() override;

    /// Shows the statuses, row by row in their order. Called at every display tick. While nobody
    /// sees the dialog, only rows whose status has changed are touched: it can be shown at any
    /// time.
    void update(const QVector<ConnectionStatus>& statuses);
    /// Entry i is the index of the connection at place i of the user's order.
    QList<int> order() const { return connectionOrder; }
    /// Entry i is the index of the connection at place i of the list as it is on the screen. It
    /// differs from `order` after a removal, which erases the last entry there.
    QList<int> shownOrder() const;

signals:
    void displayConnection(QString name, bool show);
    void setDisplayConnection(QString name, bool show);
    void displayCommonDetector(QString name, bool show);
    void setDisplayCommonDetector(QString name, bool show);
    void changeColor(QString name, QColor color, int graph);
    void changeStage(QString name, int stage, bool active);
    void openParamDialog(QString name);
    void multiplexDetectors(QString name, bool status, int stage);
    void newGroupId(QString name, int id);

    // The same four requests by the connection itself, for whoever has to tell apart two
    // connections with one address.
    void systemDisplayed(Connection* system, bool show);
    void systemColored(Connection* system, QColor color, Graph graph);
    void systemStageChanged(Connection* system, Stage stage, bool active);
    void systemParametersWanted(Connection* system);

public slots:
    /// Moves an entry of the order; the rows keep theirs. Indices do not count the header.
    void changeOrder(int oldIndex, int newIndex);

protected:
    void hideEvent(QHideEvent* event) override;

private slots:
    void on_closePushButton_clicked();

private:
    void keepListWhole();
    void appendRow(bool header);
    void addConnectionRow();
    void removeLastRow();
    void relaySignals(const OverviewWidget& row);
    void relayByConnection(const OverviewWidget& row);
    int connectionRows() const;
    void updateRow(int connection, const ConnectionStatus& status);

    std::unique_ptr<Ui::ConnectionOverviewDialog> ui;
    /// Row 0 is the header. The list owns rows and items.
    QList<OverviewWidget*> rows;
    QList<QListWidgetItem*> items;
    QList<int> connectionOrder;
    /// What the rows show; empty if the user may have changed some of it.
    QVector<ConnectionStatus> shownStatuses;
};
