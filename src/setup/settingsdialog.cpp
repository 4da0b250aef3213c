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
    , systems(registry, *ui->listWidgetSerial, *ui->listWidgetTcp)
    , serialTab{ConnectionType::Serial, *ui->serialPortLabel_2, *ui->infoLabel, serialWait,
                tr("Connection could not be established")}
    , tcpTab{ConnectionType::Tcp, *ui->labelTcpEdit, *ui->infoLabel2, tcpWait,
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
    wireLines();
    connect(ui->rescanButton, &QPushButton::clicked, this, &SettingsDialog::fillPortsInfo);
    connect(ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
}

SettingsDialog::~SettingsDialog() = default;

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
    const QString lastNumber = systems.lines(ConnectionType::Serial).lastNumber();
    for (const QStringList& entry : qAsConst(interfaces)) {
        const QString id = entry.value(interfaceId);
        // Only the last line hides its device; connecting refuses those of the other lines.
        if (lastNumber.isNull() || lastNumber != id)
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
    if (!systems.updateRecords())
        return false;
    // No connections are a setup, too.
    settings.setList(inShownOrder(systems.records()));
    return settings.save(path);
}

// Lines and records.

void SettingsDialog::wireLines()
{
    connect(&systems, &SystemLines::lineAdded, this,
            [this](const ConnectionWidget* line) { keepTabOrder(*line); });
    connect(&systems, &SystemLines::labelEdited, this, &SettingsDialog::newLabel);
    connect(&systems, &SystemLines::disconnectWanted, this, &SettingsDialog::disconnectByUser);
    connect(&systems, &SystemLines::reconnectWanted, this, [this](const Connection* connection) {
        inTurn([this, meant = QPointer<const Connection>(connection)] { reconnect(meant); });
    });
    connect(&systems, &SystemLines::removalWanted, this, [this](const Connection* connection) {
        inTurn([this, meant = QPointer<const Connection>(connection)] { systems.remove(meant); });
    });
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
    systems.setAutoConnect(systems.meantBy(address), isActive);
}

void SettingsDialog::deleteConnectionSlot(QString address)
{
    systems.remove(systems.meantBy(address));
}

void SettingsDialog::closeAllConnections()
{
    systems.removeAll();
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
    inTurn([this, address] { reconnect(systems.meantBy(address)); });
}

void SettingsDialog::reconnect(const Connection* connection)
{
    switch (systems.reconnect(connection)) {
    case ReconnectResult::Reconnected:
        sayInBoth(QString());
        break;
    case ReconnectResult::NoController:
        sayInBoth(tr("Could not establish connection."));
        break;
    case ReconnectResult::OtherController:
        sayInBoth(tr("Could not establish connection. Controller ID mismatch."));
        break;
    }
}

void SettingsDialog::on_WidgetDisconnect(QString address)
{
    disconnectByUser(systems.meantBy(address));
}

void SettingsDialog::disconnectByUser(const Connection* connection)
{
    sayInBoth(systems.disconnectLink(connection) ? QString() : tr("Could not disconnect."));
}

void SettingsDialog::onLinkLost(const Connection* connection)
{
    sayInBoth(systems.disconnectLink(connection) ? QString() : tr("Could not disconnect."));
}
