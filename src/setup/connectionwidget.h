#pragma once

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui {
class ConnectionWidget;
}

/// The line of one connection in the connection dialog: who it is, and the buttons that connect,
/// disconnect and delete it.
class ConnectionWidget final : public QWidget
{
    Q_OBJECT

public:
    /// `number` is the controller's identification text.
    ConnectionWidget(QString number, QString label, QString address, QWidget* parent);
    ~ConnectionWidget() override;

    QString address() const { return addressText; }
    QString number() const { return numberText; }

    /// The last control that Tab reaches in this line.
    QWidget& lastTabStop() const;

    void setConnected(bool isConnected);
    void setAutoConnect(bool isActive);

signals:
    void autoConnectChanged(bool isActive);
    void reconnectC(QString address);
    void disconnectC(QString address);
    void labelChanged(QString address, QString label);
    void deleteConnection(QString address);

public slots:
    /// Asks to connect or disconnect. The line itself changes when `setConnected` says so.
    void on_Button_clicked();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void on_deleteButton_clicked();
    void on_lineEdit_textEdited(QString arg1);
    void checkBoxAutoConnectChanged(bool checked);

private:
    void keepButtonWidth();
    QString buttonText() const;

    std::unique_ptr<Ui::ConnectionWidget> ui;
    QString numberText;
    QString labelText;
    QString addressText;
    bool connected = false;
};
