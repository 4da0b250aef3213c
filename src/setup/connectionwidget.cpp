#include "setup/connectionwidget.h"

#include "setup/labelvalidator.h"
#include "ui_connectionwidget.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

ConnectionWidget::ConnectionWidget(QString number, QString label, QString address, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::ConnectionWidget>())
    , numberText(std::move(number))
    , labelText(std::move(label))
    , addressText(std::move(address))
{
    ui->setupUi(this);
    ui->numberFill->setText(numberText);
    ui->lineEdit->setValidator(makeLabelValidator(*ui->lineEdit));
    ui->lineEdit->setText(labelText);
    // A label that is wider than its field shows its beginning.
    if (ui->lineEdit->fontMetrics().horizontalAdvance(labelText) > ui->lineEdit->maximumWidth())
        ui->lineEdit->setCursorPosition(0);
    ui->info->setText(addressText);
    keepButtonWidth();
    connect(ui->checkBoxAutoConnect, &QCheckBox::toggled, this,
            &ConnectionWidget::checkBoxAutoConnectChanged);
}

ConnectionWidget::~ConnectionWidget() = default;

/// The line must not move when the button changes its text.
void ConnectionWidget::keepButtonWidth()
{
    int width = 0;
    for (const bool state : {true, false}) {
        connected = state;
        ui->Button->setText(buttonText());
        width = std::max(width, ui->Button->sizeHint().width());
    }
    ui->Button->setMinimumWidth(width);
}

QString ConnectionWidget::buttonText() const
{
    return connected ? tr("Disconnect") : tr("Reconnect");
}

QWidget& ConnectionWidget::lastTabStop() const
{
    return *ui->deleteButton;
}

void ConnectionWidget::setConnected(bool isConnected)
{
    if (isConnected == connected)
        return;
    connected = isConnected;
    ui->Button->setText(buttonText());
}

void ConnectionWidget::setAutoConnect(bool isActive)
{
    ui->checkBoxAutoConnect->setCheckState(isActive ? Qt::Checked : Qt::Unchecked);
}

void ConnectionWidget::keyPressEvent(QKeyEvent* event)
{
    // Enter ends the editing of a label; it must not reach the default button of the dialog.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->accept();
    else
        QWidget::keyPressEvent(event);
}

void ConnectionWidget::on_Button_clicked()
{
    if (connected)
        emit disconnectC(addressText);
    else
        emit reconnectC(addressText);
}

void ConnectionWidget::on_deleteButton_clicked()
{
    emit deleteConnection(addressText);
}

void ConnectionWidget::on_lineEdit_textEdited(QString arg1)
{
    labelText = arg1;
    emit labelChanged(addressText, labelText);
}

void ConnectionWidget::checkBoxAutoConnectChanged(bool checked)
{
    emit autoConnectChanged(checked);
}
