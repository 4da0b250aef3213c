#include "setup/settingsdialog.h"

#include "app/logging.h"
#include "app/switches.h"
#include "link/interfacesearch.h"
#include "link/serialport.h"
#include "link/tcpclient.h"
#include "setup/connectionregistry.h"
#include "setup/connectionwidget.h"
#include "setup/waitcursor.h"
#include "ui_settingsdialog.h"

#include <QDir>
#include <QGuiApplication>
#include <QPointer>
#include <QRegExpValidator>
#include <QScreen>
#include <QShowEvent>
#include <QStyle>

#include <algorithm>
#include <initializer_list>

namespace {

constexpr LinkWait serialWait{200};
constexpr LinkWait tcpWait{300, LinkWait::Manner::InOneGo};
constexpr int serialTabIndex = 0;
constexpr char fileEnding[] = ".xml";

std::unique_ptr<Connection> makeRealTransport(ConnectionType type)
{
    if (type == ConnectionType::Tcp)
        return std::make_unique<TcpClient>();
    return std::make_unique<SerialPort>();
}

/// The slots are wired by name before the first member exists, and nothing is emitted then.
std::unique_ptr<Ui::SettingsDialog> makeForm(SettingsDialog& dialog)
{
    auto form = std::make_unique<Ui::SettingsDialog>();
    form->setupUi(&dialog);
    return form;
}

/// An info label keeps its room while it is hidden, so that nothing jumps when it appears.
void hideInPlace(QLabel& label)
{
    QSizePolicy policy = label.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    label.setSizePolicy(policy);
    label.hide();
}

} // namespace

SettingsDialog::SettingsDialog(ConnectionRegistry& connectionRegistry, QWidget* parent)
    : QDialog(parent)
    , ui(makeForm(*this))
    , registry(connectionRegistry)
    , serialTab{ConnectionType::Serial,
                ConnectionList(*ui->listWidgetSerial),
                *ui->serialPortLabel_2,
                *ui->infoLabel,
                serialWait,
                tr("Connection could not be established")}
    , tcpTab{ConnectionType::Tcp,
             ConnectionList(*ui->listWidgetTcp),
             *ui->labelTcpEdit,
             *ui->infoLabel2,
             tcpWait,
             tr("Connection couldn't be established")}
    , tcpPort(TcpClient::defaultPort)
    , fileDialog(this)
    , makeTransport(makeRealTransport)
    , searchAllInterfaces([](bool includePseudo, bool anyDevice) {
        return searchInterfaces(includePseudo, anyDevice);
    })
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    prepareFields();
    prepareFileDialog();
    connect(ui->rescanButton, &QPushButton::clicked, this, &SettingsDialog::fillPortsInfo);
    connect(ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
}

SettingsDialog::~SettingsDialog()
{
    for (Tab* each : {&serialTab, &tcpTab}) {
        while (each->lines.size() > 0)
            each->lines.removeAt(each->lines.size() - 1);
    }
}

void SettingsDialog::setConnectionFactory(ConnectionFactory factory)
{
    makeTransport = std::move(factory);
}

void SettingsDialog::setInterfaceSearch(InterfaceSearch search)
{
    searchAllInterfaces = std::move(search);
}

void SettingsDialog::prepareFields()
{
    for (const int baudRate : {115200, 921600})
        ui->baudrateComboBox->addItem(QString::number(baudRate), baudRate);
    for (Tab* each : {&serialTab, &tcpTab}) {
        each->labelEdit.setValidator(
            new QRegExpValidator(QRegExp(QStringLiteral("[A-Za-z0-9_]+")), &each->labelEdit));
        hideInPlace(each->info);
    }
    // The border of an invalid field takes the room of the usual one, so that nothing moves.
    for (QLineEdit* edit :
         {ui->serialPortLabel_2, ui->addressTcpEdit, ui->portLineEdit, ui->labelTcpEdit})
        edit->setFixedHeight(edit->sizeHint().height());
    ui->connectSerialButton->setDefault(true);
}

void SettingsDialog::prepareFileDialog()
{
    fileDialog.setNameFilter(QStringLiteral("*.xml"));
    fileDialog.setDefaultSuffix(QStringLiteral("xml"));
    fileDialog.setWindowTitle(tr("Save setting file"));
    fileDialog.setDirectory(QDir::root());
    fileDialog.setFileMode(QFileDialog::AnyFile);
    fileDialog.setAcceptMode(QFileDialog::AcceptSave);
}

SettingsDialog::Tab& SettingsDialog::tab(ConnectionType type)
{
    return type == ConnectionType::Tcp ? tcpTab : serialTab;
}

void SettingsDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // Coming back from an icon is no new start.
    if (event->spontaneous())
        return;
    for (QLineEdit* edit : {ui->serialPortLabel_2, ui->addressTcpEdit, ui->labelTcpEdit}) {
        if (edit->isEnabled())
            edit->clear();
    }
    fillScreenHeight();
    if (switches::autoSerialSearch)
        ui->rescanButton->click();
}

/// As wide as it may be and as high as the screen, in its middle.
void SettingsDialog::fillScreenHeight()
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    QSize border = frameGeometry().size() - size();
    // Before the first time the window manager has not told its frame.
    if (border.isNull())
        border.setHeight(style()->pixelMetric(QStyle::PM_TitleBarHeight));
    const QSize room = available.size() - border;
    resize(QSize(maximumWidth(), room.height()).boundedTo(room).expandedTo(minimumSizeHint()));
    QRect frame(QPoint(), size() + border);
    frame.moveCenter(available.center());
    move(frame.topLeft());
}

void SettingsDialog::on_tabWidget_currentChanged(int index)
{
    QPushButton* const button =
        index == serialTabIndex ? ui->connectSerialButton : ui->connectTcpButton;
    button->setDefault(true);
    button->setFocus();
}

void SettingsDialog::resizeSmall()
{
    ui->tabWidget->show();
    for (QLabel* info : {ui->infoLabel, ui->infoLabel2}) {
        info->clear();
        info->show();
    }
    on_tabWidget_currentChanged(ui->tabWidget->currentIndex());
}

void SettingsDialog::say(QLabel& info, const QString& text)
{
    info.setText(text);
    info.show();
}

void SettingsDialog::sayInBoth(const QString& text)
{
    say(*ui->infoLabel, text);
    say(*ui->infoLabel2, text);
}

// Fields.

void SettingsDialog::on_addressTcpEdit_textChanged(const QString&)
{
    ui->addressTcpEdit->setStyleSheet(QString());
    ui->infoLabel2->clear();
}

void SettingsDialog::on_labelTcpEdit_textChanged(const QString&)
{
    ui->labelTcpEdit->setStyleSheet(QString());
    ui->infoLabel2->clear();
}

void SettingsDialog::on_portLineEdit_textChanged(const QString&)
{
    ui->portLineEdit->setStyleSheet(QString());
    ui->infoLabel2->clear();
}

void SettingsDialog::on_serialPortLabel_2_textChanged(const QString&)
{
    ui->serialPortLabel_2->setStyleSheet(QString());
    ui->infoLabel->clear();
}

void SettingsDialog::on_baudrateComboBox_currentIndexChanged(int)
{
    ui->infoLabel->clear();
}

void SettingsDialog::on_serialPortInfoListBox_currentIndexChanged(int)
{
    ui->infoLabel->clear();
}

void SettingsDialog::fillPortsInfo()
{
    ui->serialPortInfoListBox->clear();
    {
        const WaitCursor waiting;
        interfaces = searchAllInterfaces(false, switches::anySerialDevice);
    }
    const int lines = serialTab.lines.size();
    for (const QStringList& entry : qAsConst(interfaces)) {
        const QString id = entry.value(interfaceId);
        // Only the last line counts, on purpose: connecting refuses the others.
        if (lines == 0 || serialTab.lines.at(lines - 1).number() != id)
            ui->serialPortInfoListBox->addItem(id);
    }
}

// Saving.

void SettingsDialog::on_saveConnectionButton_clicked()
{
    ui->saveConnectionButton->setEnabled(false);
    save(QString());
    ui->saveConnectionButton->setEnabled(true);
}

void SettingsDialog::on_saveAsConnectionButton_clicked()
{
    ui->saveAsConnectionButton->setEnabled(false);
    const QString path = chooseFile(QFileDialog::AcceptSave, tr("Save Connection Setup"));
    if (!path.isEmpty())
        save(path);
    ui->saveAsConnectionButton->setEnabled(true);
}

QString SettingsDialog::chooseFile(QFileDialog::AcceptMode mode, const QString& title)
{
    fileDialog.setFileMode(QFileDialog::AnyFile);
    fileDialog.setAcceptMode(mode);
    fileDialog.setWindowTitle(title);
    if (fileDialog.exec() != QDialog::Accepted)
        return QString();
    const QString path = fileDialog.selectedFiles().value(0);
    fileDialog.setSidebarUrls(fileDialog.sidebarUrls());
    return path.isEmpty() || path.endsWith(fileEnding) ? path : path + fileEnding;
}

void SettingsDialog::save(const QString& path)
{
    sayInBoth(saveRecords(path) ? tr("Connection setup saved")
                                : tr("Error saving connection setup"));
}

bool SettingsDialog::saveRecords(const QString& path)
{
    if (!registry.updateSettingsAndParameters(records))
        return false;
    // No connections are a setup, too.
    settings.setList(inShownOrder(records));
    return settings.save(path);
}

// Lines and records.

const Connection* SettingsDialog::connectionWith(const QString& address) const
{
    for (const Tab* each : {&serialTab, &tcpTab}) {
        const int index = each->lines.indexOfAddress(address);
        if (index >= 0)
            return each->lines.connections().at(index);
    }
    return nullptr;
}

ConnectionWidget& SettingsDialog::addLine(Tab& lineTab, const ConnectionSettings& record,
                                          const Connection& connection)
{
    ConnectionWidget& line =
        lineTab.lines.add(record.id.text(), record.label.text(), record.name.text(), connection);
    line.setAutoConnect(record.autoConnect);
    keepTabOrder(line);
    // What the user does to a line is meant for its connection, whoever else has the address.
    const QPointer<const Connection> owner(&connection);
    const bool hasAddress = !connection.address().isEmpty();
    connect(&line, &ConnectionWidget::labelChanged, this,
            [this, owner, hasAddress](const QString& address, const QString& label) {
                if (hasAddress)
                    emit newLabel(address, label);
                else
                    registry.relabelConnection(owner, label);
            });
    connect(&line, &ConnectionWidget::reconnectC, this, &SettingsDialog::on_WidgetReconnect);
    connect(&line, &ConnectionWidget::disconnectC, this, &SettingsDialog::on_WidgetDisconnect);
    connect(&line, &ConnectionWidget::deleteConnection, this,
            [this, owner] { inTurn([this, owner] { deleteConnection(owner); }); });
    connect(
        &line, &ConnectionWidget::autoConnectChanged, this,
        [this, address = line.address()](bool isActive) { autoConnectChanged(address, isActive); });
    return line;
}

/// Record and connection come together, so that both lists stay in step whatever comes between
/// two connections.
void SettingsDialog::registerConnection(std::unique_ptr<Connection> connection,
                                        ConnectionSettings record)
{
    record.position = records.size();
    records.append(record);
    recordOwners.append(connection.get());
    registry.newConnection(std::move(connection), record);
}

/// Tab follows the eye: the lines stand above the buttons of the dialog.
void SettingsDialog::keepTabOrder(const ConnectionWidget& line)
{
    QWidget* before = &line.lastTabStop();
    for (QPushButton* button : {ui->saveAsConnectionButton, ui->saveConnectionButton,
                                ui->loadConnectionButton, ui->closeButton}) {
        setTabOrder(before, button);
        before = button;
    }
}

void SettingsDialog::autoConnectChanged(QString address, bool isActive)
{
    for (ConnectionSettings& record : records) {
        if (record.name.text() == address) {
            record.autoConnect = isActive;
            return;
        }
    }
}

void SettingsDialog::deleteConnectionSlot(QString address)
{
    for (const Tab* each : {&serialTab, &tcpTab}) {
        const int index = each->lines.indexOfAddress(address);
        if (index < 0)
            continue;
        deleteConnection(each->lines.connections().at(index));
        return;
    }
}

/// Record and line go if the registry agrees. Its work takes events: they are looked for after it.
void SettingsDialog::deleteConnection(const Connection* connection)
{
    const WaitCursor waiting;
    if (!registry.closeConnection(connection))
        return;
    const int record = recordOwners.indexOf(connection);
    if (record >= 0) {
        recordOwners.removeAt(record);
        records.removeAt(record);
    }
    for (Tab* each : {&serialTab, &tcpTab}) {
        const int line = each->lines.connections().indexOf(connection);
        if (line >= 0)
            each->lines.removeAt(line);
    }
}

void SettingsDialog::closeAllConnections()
{
    for (const Tab* each : {&serialTab, &tcpTab}) {
        const QList<const Connection*> present = each->lines.connections();
        std::for_each(present.crbegin(), present.crend(),
                      [this](const Connection* connection) { deleteConnection(connection); });
    }
}

/// Runs a flow when no other one does. Flows take events, and what comes with these must not find
/// another one half done: it waits for its turn, as it would in the queue of events.
void SettingsDialog::inTurn(std::function<void()> flow)
{
    turns.push_back(std::move(flow));
    if (turns.size() > 1)
        return;
    while (!turns.empty()) {
        if (!registry.isLeaving())
            turns.front()();
        turns.pop_front();
    }
}

void SettingsDialog::on_WidgetReconnect(QString address)
{
    inTurn([this, address] { reconnect(address); });
}

void SettingsDialog::reconnect(const QString& address)
{
    const Connection* const connection = connectionWith(address);
    const int record = recordOwners.indexOf(connection);
    if (record < 0)
        return;
    const QString number = records.at(record).id.text();
    const auto result = [&] {
        const WaitCursor waiting;
        return registry.reconnect(connection, number);
    }();
    switch (result) {
    case ReconnectResult::Reconnected:
        sayInBoth(QString());
        for (const Tab* each : {&serialTab, &tcpTab})
            each->lines.markConnected(address, number, true);
        break;
    case ReconnectResult::NoController:
        sayInBoth(tr("Could not establish connection."));
        break;
    case ReconnectResult::OtherController:
        sayInBoth(tr("Could not establish connection. Controller ID mismatch."));
        break;
    }
}

void SettingsDialog::onLinkLost(const Connection* connection)
{
    if (!registry.disconnectLink(connection)) {
        sayInBoth(tr("Could not disconnect."));
        return;
    }
    sayInBoth(QString());
    for (const Tab* each : {&serialTab, &tcpTab}) {
        const int line = each->lines.connections().indexOf(connection);
        if (line >= 0)
            each->lines.at(line).setConnected(false);
    }
}

void SettingsDialog::on_WidgetDisconnect(QString address)
{
    if (!registry.disconnectLink(connectionWith(address))) {
        sayInBoth(tr("Could not disconnect."));
        return;
    }
    sayInBoth(QString());
    for (const Tab* each : {&serialTab, &tcpTab})
        each->lines.markConnected(address, false);
}
