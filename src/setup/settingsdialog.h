#pragma once

#include "setup/connectflow.h"
#include "setup/flowparts.h"
#include "setup/flowqueue.h"
#include "setup/loadflow.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <QDialog>
#include <QFileDialog>
#include <QList>
#include <QStringList>

#include <functional>
#include <memory>

class QLabel;

namespace Ui {
class SettingsDialog;
}

/// Where the user makes, stores and loads connections: the form, its messages, and the order of the
/// flows. The flows and the lines do the work; the registry owns the connections.
class SettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Finds controllers at the serial interfaces.
    using InterfaceSearch =
        std::function<QList<FoundInterface>(bool includePseudo, bool anyDevice)>;

    /// The registry has to live longer than the dialog is used.
    SettingsDialog(ConnectionRegistry& registry, QWidget* parent);
    ~SettingsDialog() override;

    /// Replaces what makes the transports, which is for connections with other time-outs.
    void setConnectionFactory(ConnectionFactory factory);
    void setInterfaceSearch(InterfaceSearch search);

    /// Asks the registry to close every connection, those of the serial tab from the bottom line to
    /// the top and then those of the other tab likewise, and forgets those that it closed.
    void closeAllConnections();

    /// Ends the thread of a connection whose link is lost, and shows that in its line. Also for
    /// connections that have no line.
    void onLinkLost(const Connection* connection);

signals:
    /// Nothing emits these two in this version.
    void connected(bool status);
    void disconnected(bool status);
    /// The label of the line with the address `title` was edited. The system has it already.
    void newLabel(QString title, QString label);
    /// A stored system is about to be connected, which can take seconds. `up` of the `all` systems
    /// that the load connects are up.
    void connectingTo(QString label, QString address, int up, int all);
    /// One more of the systems that a load connects is up.
    void systemUp(QString label, QString address, int up, int all);
    void loadingFinished();

public slots:
    void on_saveAsConnectionButton_clicked();
    void deleteConnectionSlot(QString address);
    void on_connectTcpButton_clicked();
    void on_connectSerialButton_clicked();
    void on_loadConnectionButton_clicked();
    void on_saveConnectionButton_clicked();
    void tryConnect() {}
    void tryDisconnect() {}
    void on_WidgetDisconnect(QString address);
    /// Makes the connections of a setup file, and connects those that are marked for it. With an
    /// empty path the default file is taken, and the outcome is not shown.
    void loadConnection(QString path);
    /// Shows the message labels of both tabs, empty, and gives the connect button the focus.
    void resizeSmall();

protected:
    void showEvent(QShowEvent* event) override;

private slots:
    void autoConnectChanged(QString address, bool isActive);
    void fillPortsInfo();
    void on_WidgetReconnect(QString address);
    void on_tabWidget_currentChanged(int index);
    void on_addressTcpEdit_textChanged(const QString& text);
    void on_labelTcpEdit_textChanged(const QString& text);
    void on_portLineEdit_textChanged(const QString& text);
    void on_serialPortLabel_2_textChanged(const QString& text);
    void on_baudrateComboBox_currentIndexChanged(int index);
    void on_serialPortInfoListBox_currentIndexChanged(int index);

private:
    void prepareFields();
    void prepareFileDialog();
    void wireLines();

    QLabel& infoOf(ConnectionType type) const;
    void sayInBoth(const QString& text);
    void showStep(ConnectStep step, ConnectionType type);
    void sayProgress(const QString& label, int up, int all);

    bool serialFieldsAreFilled();
    void connectSerial();
    bool tcpFieldsAreFilled();
    bool readTcpPort();
    void connectTcp();
    void reconnect(const Connection* connection);
    void disconnectByUser(const Connection* connection);
    void deleteByUser(const Connection* connection);

    /// The path that the user chose; empty if none.
    QString chooseFile(QFileDialog::AcceptMode mode, const QString& title);
    void save(const QString& path);
    void loadChosen(const QString& path);
    void load(const QString& path);

    std::unique_ptr<Ui::SettingsDialog> ui;
    ConnectionRegistry& registry;
    SystemLines systems;
    Settings settings;
    FlowParts parts;
    ConnectFlow connectFlow;
    LoadFlow loadFlow;
    FlowQueue flows;
    /// An empty port field stands for the last one.
    int tcpPort;
    QFileDialog fileDialog;
    InterfaceSearch searchAllInterfaces;
};
