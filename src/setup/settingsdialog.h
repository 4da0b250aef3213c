#pragma once

#include "link/linkup.h"
#include "model/connectionsettings.h"
#include "setup/settings.h"
#include "setup/systemlines.h"

#include <QDialog>
#include <QFileDialog>
#include <QList>
#include <QStringList>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

class Connection;
class ConnectionRegistry;
class ConnectionWidget;
class QLabel;
class QLineEdit;

namespace Ui {
class SettingsDialog;
}

/// Where the user makes, stores and loads connections. It makes the transports, brings them up,
/// proves who answers and hands them to the registry, which owns them from then on.
class SettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    using ConnectionFactory = std::function<std::unique_ptr<Connection>(ConnectionType)>;
    /// Finds controllers at the serial interfaces. Each entry is identification text, port name,
    /// baud rate, flow control.
    using InterfaceSearch = std::function<QList<QStringList>(bool includePseudo, bool anyDevice)>;

    /// The registry has to live longer than the dialog is used.
    SettingsDialog(ConnectionRegistry& registry, QWidget* parent);
    ~SettingsDialog() override;

    /// Replaces what makes the transports, which is for connections with other time-outs.
    void setConnectionFactory(ConnectionFactory factory);
    void setInterfaceSearch(InterfaceSearch search);

    /// Asks the registry to close every connection, from the last to the first, and forgets those
    /// that it closed.
    void closeAllConnections();

    /// Ends the thread of a connection whose link is lost, and shows that in its line. Also for
    /// connections that have no line.
    void onLinkLost(const Connection* connection);

signals:
    /// Nothing emits these two in this version.
    void connected(bool status);
    void disconnected(bool status);
    /// The label of the connection with the address `title` was edited.
    void newLabel(QString title, QString label);
    /// A stored system is about to be connected, which can block for seconds.
    void connectingTo(QString label, QString address);
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
    /// Makes the room of the messages visible and empty, and the connect button the focus.
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
    /// What differs between the two tabs. The flows are one for both.
    struct Tab
    {
        ConnectionType type;
        QLineEdit& labelEdit;
        QLabel& info;
        /// How long a new link may take, and what is said of one that did not come up.
        LinkWait wait;
        QString noLinkText;
    };

    /// Parts of an entry of the interface list.
    static constexpr int interfaceId = 0;
    static constexpr int interfacePort = 1;
    static constexpr int interfaceBaudRate = 2;

    // The dialog.
    void prepareFields();
    void prepareFileDialog();
    void fillScreenHeight();
    /// The path that the user chose; empty if none.
    QString chooseFile(QFileDialog::AcceptMode mode, const QString& title);
    void save(const QString& path);
    bool saveRecords(const QString& path);
    static void say(QLabel& info, const QString& text);
    void sayInBoth(const QString& text);
    Tab& tab(ConnectionType type);

    void inTurn(std::function<void()> flow);

    // Making one connection.
    void connectSerial();
    void connectTcp();
    bool serialFieldsAreFilled();
    QStringList chosenInterface();
    std::unique_ptr<Connection> makeSerialConnection(const QStringList& device, int baudRate);
    bool adjustBaudRate(const QStringList& device, int baudRate);
    bool tcpFieldsAreFilled();
    bool isFreeTcpAddress(const QString& address);
    bool readTcpPort();
    std::unique_ptr<Connection> makeTcpConnection();
    bool connectController(Tab& tab, std::unique_ptr<Connection> connection);
    void keepNewConnection(Tab& tab, std::unique_ptr<Connection> connection, const QString& id);
    void keepTabOrder(const ConnectionWidget& line);

    // Making those of a file.
    void loadChosen(const QString& path);
    void makeConnections(const QString& path);
    bool readRecords(const QString& path, QList<ConnectionSettings>& found);
    void makeStoredConnection(ConnectionSettings record);
    void findInterface(ConnectionSettings& record) const;
    bool connectStored(Connection& connection, const ConnectionSettings& record);
    void showLoadOutcome(bool loaded);

    // Lines and records.
    void wireLines();
    void reconnect(const Connection* connection);
    void disconnectByUser(const Connection* connection);

    std::unique_ptr<Ui::SettingsDialog> ui;
    ConnectionRegistry& registry;
    Settings settings;
    SystemLines systems;
    /// The flow that runs, and those that wait for its end.
    std::deque<std::function<void()>> turns;
    Tab serialTab;
    Tab tcpTab;
    QList<QStringList> interfaces;
    /// Links over which a controller would not change its rate. They keep their ports for as long
    /// as the dialog lives, as they always have.
    std::vector<std::unique_ptr<Connection>> abandoned;
    /// An empty port field stands for the last one.
    int tcpPort;
    QFileDialog fileDialog;
    ConnectionFactory makeTransport;
    InterfaceSearch searchAllInterfaces;
};
