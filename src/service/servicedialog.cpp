#include "service/servicedialog.h"

#include "app/logging.h"
#include "controls/waitcursor.h"
#include "link/ask.h"
#include "link/commandframe.h"
#include "link/connection.h"
#include "link/linkup.h"
#include "link/replyforms.h"
#include "link/streampause.h"
#include "service/servicetests.h"
#include "service/servicetexts.h"
#include "service/speedtest.h"
#include "ui_servicedialog.h"

#include <QScrollBar>
#include <QTextCursor>

#include <utility>

namespace {

/// Nothing is taken from the queue of events while a test runs.
constexpr LinkWait reopenWait{200, LinkWait::Manner::WithoutEvents};

} // namespace

ServiceDialog::ServiceDialog(std::function<int()> samplingRateHz, QWidget* parent)
    : QDialog(parent)
    , windowRateHz(std::move(samplingRateHz))
    , ui(makeForm())
    , valueRows(*this, *ui->gridLayout)
    , buttons(*this, exchangeButtons())
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    wireValueRows();
    logMessage().debug() << "Finished constructing ServiceDialog";
}

ServiceDialog::~ServiceDialog() = default;

// The connection.

void ServiceDialog::setConnection(Connection& connection)
{
    serviceConnection = &connection;
    onQuietLink([this] {
        const QByteArray reply = ask(*serviceConnection, &Connection::getControllerId);
        ui->boardId_Label->setText(servicetexts::boardId(reply));
        showAddress();
        restartStream();
    });
}

void ServiceDialog::forget(const Connection* connection)
{
    if (serviceConnection != connection)
        return;
    serviceConnection = nullptr;
    close();
}

void ServiceDialog::showAddress()
{
    const bool overNetwork = serviceConnection->type() == ConnectionType::Tcp;
    for (QLabel* label : {ui->PortText, ui->portLabel})
        label->setVisible(overNetwork);
    if (overNetwork)
        ui->portLabel->setText(QString::number(serviceConnection->portOrBaud()));
    ui->config_Label->setText(overNetwork ? tr("Siehe Ethernet Adapter")
                                          : QString::number(serviceConnection->baudRate()));
}

// Tests.

void ServiceDialog::pauseStream()
{
    if (!serviceConnection->isStreaming())
        return;
    resumeStream = true;
    savedRate = serviceConnection->samplingRate();
    serviceConnection->stopStream();
}

/// Kept, other than where parameters are set: once a stream was seen running, every later test ends
/// with the start of one, on any connection. Nobody judges what comes of it.
void ServiceDialog::restartStream()
{
    if (resumeStream)
        startStreamAtRate(*serviceConnection, rateToStart(savedRate, windowRateHz()));
}

/// Does nothing without a connection.
void ServiceDialog::onQuietLink(const std::function<void()>& work)
{
    if (!serviceConnection)
        return;
    const WaitCursor waiting;
    // Before it is shown nobody clicks it, and its first button shall have the focus then.
    if (isVisible())
        buttons.lock();
    pauseStream();
    work();
}

void ServiceDialog::run(const ServiceTest& test)
{
    onQuietLink([this, &test] {
        test.send(*serviceConnection);
        const QByteArray reply = replyOf(*serviceConnection);
        if (test.order == ServiceTest::Order::RestartFirst)
            restartStream();
        for (const QString& result : test.results(reply, serviceConnection->firmwareVersion()))
            tell(result);
        if (test.order == ServiceTest::Order::ResultFirst)
            restartStream();
    });
}

/// Appends a paragraph. `append` of the box would take what looks like markup for markup.
void ServiceDialog::tell(const QString& result)
{
    QTextBrowser& box = *ui->result_textBrowser;
    QTextCursor end(box.document());
    end.movePosition(QTextCursor::End);
    if (!box.document()->isEmpty())
        end.insertBlock();
    end.insertText(result);
    box.verticalScrollBar()->setValue(box.verticalScrollBar()->maximum());
}

int ServiceDialog::drivePositionMv() const
{
    return ui->manalPosition_checkBox->isChecked() ? ui->drive_spinBox->value()
                                                   : ui->Drive_position->currentText().toInt();
}

void ServiceDialog::driveActuator(Stage stage, BeamAxis axis)
{
    run(servicetests::driveActuator(stage, axis, drivePositionMv()));
}

void ServiceDialog::setPFactorTest(Stage stage, int valueMv)
{
    run(servicetests::pFactor(stage, valueMv));
}

void ServiceDialog::setSensitivityTest(Stage stage, int valueMv)
{
    run(servicetests::sensitivity(stage, valueMv));
}

void ServiceDialog::setAdjustInTest(Stage stage, BeamAxis axis, int valueMv)
{
    run(servicetests::adjustIn(stage, axis, valueMv));
}

/// A start or stop that fails leaves the stream as it is.
void ServiceDialog::testSpeed()
{
    const SpeedResult speed = measureSpeed(*serviceConnection);
    tell(servicetexts::speed(speed));
    if (speed.outcome == SpeedResult::Outcome::Counted)
        restartStream();
}

void ServiceDialog::changeBaudRate()
{
    const QString rate = ui->comboBox->itemText(qMax(ui->comboBox->currentIndex(), 0));
    const QByteArray reply = ask(*serviceConnection, &Connection::setControllerBaudRate,
                                 command::baudRateArgument(rate.toInt()));
    if (!command::isAcceptedByOne(reply)) {
        // Kept: a stream that was stopped for this stays stopped.
        tell(tr("Set Baudrate: Failed\n"));
        return;
    }
    tell(tr("Set Baudrate: Success - now adjusting connection - Ethernet is now lost\n"));
    ui->config_Label->setText(rate);
    reopen(rate.toInt());
    emit baudRateChanged(serviceConnection);
}

/// Over a network the rate is no port that could be used, and the connection keeps its own.
void ServiceDialog::reopen(int baudRate)
{
    serviceConnection->disconnectController();
    serviceConnection->init(serviceConnection->address(), baudRate);
    if (bringUp(*serviceConnection, reopenWait))
        restartStream();
}
