#include "setup/settingsdialog.h"

#include "app/logging.h"
#include "app/switches.h"
#include "controls/waitcursor.h"
#include "link/baudrates.h"
#include "link/interfacesearch.h"
#include "link/serialport.h"
#include "link/tcpclient.h"
#include "setup/connectionregistry.h"
#include "setup/connectionwidget.h"
#include "setup/formtools.h"
#include "setup/labelvalidator.h"
#include "ui_settingsdialog.h"

#include <QDir>
#include <QPointer>
#include <QShowEvent>

#include <utility>

namespace {

constexpr int serialTabIndex = 0;

std::unique_ptr<Connection> makeRealTransport(ConnectionType type)
{
    if (type == ConnectionType::Tcp)
        return std::make_unique<TcpClient>();
    return std::make_unique<SerialPort>();
}

QList<FoundInterface> searchRealInterfaces(bool includePseudo, bool anyDevice)
{
    return searchInterfaces(includePseudo, anyDevice);
}

/// Connects the slots by their names. The members do not exist yet: nothing may be emitted here.
std::unique_ptr<Ui::SettingsDialog> makeForm(SettingsDialog& dialog)
{
    auto form = std::make_unique<Ui::SettingsDialog>();
    form->setupUi(&dialog);
    return form;
}

} // namespace

SettingsDialog::SettingsDialog(ConnectionRegistry& connectionRegistry, QWidget* parent)
    : QDialog(parent)
    , ui(makeForm(*this))
    , registry(connectionRegistry)
    , systems(registry, *ui->listWidgetSerial, *ui->listWidgetTcp)
    , parts{registry, systems, settings, makeRealTransport, {}, {}}
    , connectFlow(parts, [this](ConnectStep step, ConnectionType type) { showStep(step, type); })
    , loadFlow(
          parts,
          [this](const LoadProgress& is) {
              emit connectingTo(is.label, is.address, is.up, is.all);
          },
          [this](const LoadProgress& is) { emit systemUp(is.label, is.address, is.up, is.all); })
    , flows([this] { return registry.isLeaving(); })
    , tcpPort(TcpClient::defaultPort)
    , fileDialog(this)
    , searchAllInterfaces(searchRealInterfaces)
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
    parts.makeTransport = std::move(factory);
}

void SettingsDialog::setInterfaceSearch(InterfaceSearch search)
{
    searchAllInterfaces = std::move(search);
}

void SettingsDialog::prepareFields()
{
    for (const int baudRate : baudrate::offered)
        ui->baudrateComboBox->addItem(QString::number(baudRate), baudRate);
    for (QLineEdit* edit : {ui->serialPortLabel_2, ui->labelTcpEdit})
        edit->setValidator(makeLabelValidator(*edit));
    for (QLabel* info : {ui->infoLabel, ui->infoLabel2})
        formtools::hideInPlace(*info);
    // The border of an invalid field takes the room of the usual one, so that nothing moves.
    for (QLineEdit* edit :
         {ui->serialPortLabel_2, ui->addressTcpEdit, ui->portLineEdit, ui->labelTcpEdit})
        edit->setFixedHeight(edit->sizeHint().height());
    ui->connectSerialButton->setDefault(true);
}

void SettingsDialog::prepareFileDialog()
{
    fileDialog.setNameFilter(QLatin1Char('*') + QLatin1String(setupfile::ending));
    // The file dialog wants it without the dot.
    fileDialog.setDefaultSuffix(QLatin1String(setupfile::ending + 1));
    fileDialog.setWindowTitle(tr("Save setting file"));
    fileDialog.setDirectory(QDir::root());
    fileDialog.setFileMode(QFileDialog::AnyFile);
    fileDialog.setAcceptMode(QFileDialog::AcceptSave);
}

void SettingsDialog::wireLines()
{
    connect(&systems, &SystemLines::lineAdded, this, [this](const ConnectionWidget* line) {
        // Tab moves from top to bottom, and the lines stand above the buttons of the dialog.
        formtools::setTabOrderBehind(line->lastTabStop(),
                                     {ui->saveAsConnectionButton, ui->saveConnectionButton,
                                      ui->loadConnectionButton, ui->closeButton});
    });
    connect(&systems, &SystemLines::labelEdited, this, &SettingsDialog::newLabel);
    connect(&systems, &SystemLines::disconnectWanted, this, &SettingsDialog::disconnectByUser);
    connect(&systems, &SystemLines::reconnectWanted, this, [this](const Connection* connection) {
        flows.run([this, meant = QPointer<const Connection>(connection)] { reconnect(meant); });
    });
    connect(&systems, &SystemLines::removalWanted, this, [this](const Connection* connection) {
        flows.run([this, meant = QPointer<const Connection>(connection)] { deleteByUser(meant); });
    });
}

void SettingsDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // The window system shows a window that was minimised: its fields stay.
    if (event->spontaneous())
        return;
    for (QLineEdit* edit : {ui->serialPortLabel_2, ui->addressTcpEdit, ui->labelTcpEdit}) {
        if (edit->isEnabled())
            edit->clear();
    }
    formtools::fillScreenHeight(*this);
    if (switches::autoSerialSearch)
        ui->rescanButton->click();
}

void SettingsDialog::on_tabWidget_currentChanged(int index)
{
    QPushButton* const button =
        index == serialTabIndex ? ui->connectSerialButton : ui->connectTcpButton;
    button->setDefault(true);
    button->setFocus();
}

// Messages.

void SettingsDialog::resizeSmall()
{
    ui->tabWidget->show();
    sayInBoth(QString());
    on_tabWidget_currentChanged(ui->tabWidget->currentIndex());
}

QLabel& SettingsDialog::infoOf(ConnectionType type) const
{
    return type == ConnectionType::Tcp ? *ui->infoLabel2 : *ui->infoLabel;
}

void SettingsDialog::sayInBoth(const QString& text)
{
    for (QLabel* info : {ui->infoLabel, ui->infoLabel2})
        formtools::say(*info, text);
}

void SettingsDialog::showStep(ConnectStep step, ConnectionType type)
{
    switch (step) {
    case ConnectStep::ChangingRate:
        formtools::say(infoOf(type), tr("Adjusting baudrate..."));
        break;
    case ConnectStep::Connecting:
        formtools::say(infoOf(type), tr("Connecting..."));
        break;
    case ConnectStep::Keeping:
        (type == ConnectionType::Tcp ? ui->labelTcpEdit : ui->serialPortLabel_2)->clear();
        break;
    }
}

// Fields.

void SettingsDialog::on_addressTcpEdit_textChanged(const QString&)
{
    formtools::markValid(*ui->addressTcpEdit);
    ui->infoLabel2->clear();
}

void SettingsDialog::on_labelTcpEdit_textChanged(const QString&)
{
    formtools::markValid(*ui->labelTcpEdit);
    ui->infoLabel2->clear();
}

void SettingsDialog::on_portLineEdit_textChanged(const QString&)
{
    formtools::markValid(*ui->portLineEdit);
    ui->infoLabel2->clear();
}

void SettingsDialog::on_serialPortLabel_2_textChanged(const QString&)
{
    formtools::markValid(*ui->serialPortLabel_2);
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
        parts.devices = DeviceList(searchAllInterfaces(false, switches::anySerialDevice));
    }
    const QString lastNumber = systems.lines(ConnectionType::Serial).lastNumber();
    for (const QString& id : parts.devices.ids()) {
        // Only the last line hides its device; connecting refuses those of the other lines.
        if (lastNumber.isNull() || lastNumber != id)
            ui->serialPortInfoListBox->addItem(id);
    }
}
