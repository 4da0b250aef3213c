#include "link/connection.h"
#include "link/packet.h"
#include "link/streampause.h"
#include "setup/waitcursor.h"
#include "window/mainwindow.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace {

/// Time that a controller without status in its stream takes to have switched.
constexpr unsigned long switchMs = 100;
constexpr uchar failedStatus = statusflag::lastPacket;
constexpr int statusReplyLength = 4;
constexpr int statusOffset = 2;
constexpr int maxCommErrors = 4;

bool failed(uchar status)
{
    return (status & statusflag::lastPacket) != 0;
}

/// What an accepted switch says of its stage, until the controller says more.
void noteSwitch(ConnectionStatus& status, int stage, bool on)
{
    (stage == 1 ? status.stabilised1 : status.stabilised2) = on;
    if (!on)
        (stage == 1 ? status.active1 : status.active2) = false;
}

void sendSwitch(Connection& connection, int stage, bool on, QByteArray& reply)
{
    if (on)
        connection.switchStabilisationOn(command::stageArgument(stage));
    else
        connection.switchStabilisationOff(command::stageArgument(stage));
    connection.fetchReply(reply);
}

} // namespace

bool MainWindow::on_push_Stab1_clicked()
{
    return switchStage(stages[0]);
}

bool MainWindow::on_push_Stab2_clicked()
{
    return switchStage(stages[1]);
}

bool MainWindow::switchStage(StageView& stage)
{
    if (!currentLink())
        return true;
    const WaitCursor waiting;
    const bool hadFocus = stage.stabilisation->hasFocus();
    stage.stabilisation->setEnabled(false);
    Connection& connection = *currentLink();
    StreamPause pause(connection);

    const bool on = stage.stabilisation->isChecked();
    QByteArray reply;
    sendSwitch(connection, stage.number, on, reply);
    if (!command::isAccepted(reply))
        sendSwitch(connection, stage.number, on, reply);
    // Without a good reply the button waits for the status to correct it.
    if (command::isAccepted(reply)) {
        showSwitch(stage, on);
        noteSwitch(statuses[currentConnection], stage.number, on);
        if (!on)
            stage.setActive(false);
    }
    readStatusAfterSwitch(currentConnection);

    restart(pause);
    stage.stabilisation->setEnabled(true);
    // Disabled, it lost the keyboard to its neighbour.
    if (hadFocus)
        stage.stabilisation->setFocus();
    return true;
}

void MainWindow::showSwitch(StageView& stage, bool on)
{
    stage.stabilisation->setPalette(on ? paletteOn : paletteOff);
    stage.stabilisation->setText(on ? tr("ON") : tr("OFF"));
    stage.stabilisation->setChecked(on);
}

void MainWindow::readStatusAfterSwitch(int connectionIndex)
{
    Connection& connection = connectionAt(connectionIndex);
    if (packet::hasFlags(connection.firmwareVersion()))
        return;
    QThread::msleep(switchMs);
    connection.getStatusFlags();
    QByteArray reply;
    connection.fetchReply(reply);
    storeStatusReply(statuses[connectionIndex], reply);
}

void MainWindow::storeStatusReply(ConnectionStatus& status, const QByteArray& reply)
{
    if (reply.size() <= statusOffset)
        return;
    const auto flags = uchar(reply.at(statusOffset));
    status.stabilised1 = (flags & statusflag::stabilised1) != 0;
    status.stabilised2 = (flags & statusflag::stabilised2) != 0;
    status.active1 = (flags & statusflag::active1) != 0;
    status.active2 = (flags & statusflag::active2) != 0;
    status.statusValid = true;
}

void MainWindow::activeStage(QString id, int stage, bool activate)
{
    const WaitCursor waiting;
    for (int index = 0; index < statuses.size(); ++index) {
        Connection& connection = connectionAt(index);
        if (connection.address() != id || !connection.isConnected())
            continue;
        StreamPause pause(connection);
        QByteArray reply;
        sendSwitch(connection, stage, activate, reply);
        readStatusAfterSwitch(index);
        restart(pause);
    }
}

uchar MainWindow::pollStatusByte()
{
    Connection* connection = currentLink();
    if (!connection)
        return failedStatus;
    QByteArray reply;
    connection->getStatusFlags();
    connection->fetchReply(reply);
    const bool good = command::isAccepted(reply) && reply.size() >= statusReplyLength
                      && reply.at(statusReplyLength - 1) == command::terminator;
    if (!good)
        return failedStatus;
    commErrorCount = 0;
    return uchar(reply.at(statusOffset));
}

bool MainWindow::getStabilAndActiveStatus()
{
    const uchar status = pollStatusByte();
    if (failed(status)) {
        commErrorCount = qMax(commErrorCount, 0) + 1;
        if (commErrorCount < maxCommErrors)
            return false;
        stopDrawingPlots();
        QMessageBox::critical(this, tr("Error"),
                              tr("Too many communication errors.\nDevice disconnected."));
        return false;
    }
    statusByte = status;
    showSwitch(stages[0], (status & statusflag::stabilised1) != 0);
    showSwitch(stages[1], (status & statusflag::stabilised2) != 0);
    return getActiveStatus(statusByte);
}

bool MainWindow::getActiveStatus(uchar flag)
{
    uchar status = flag;
    if (status == failedStatus) {
        status = pollStatusByte();
        if (failed(status))
            return false;
    }
    statusByte = status;
    stages[0].setActive((status & statusflag::active1) != 0);
    stages[1].setActive((status & statusflag::active2) != 0);
    return true;
}
