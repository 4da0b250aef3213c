#pragma once

#include "controls/exchangebuttons.h"
#include "model/beamaxis.h"
#include "model/stage.h"
#include "service/valuerows.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <vector>

class Connection;
struct ServiceTest;

namespace Ui {
class ServiceDialog;
}

/// Tries single commands at one controller, for technicians, and tells what it answers.
///
/// A test stops the stream, blocks until its reply, and starts the stream again. What the user
/// clicks meanwhile is lost. Without a connection the buttons do nothing; with one whose link is
/// down every test fails at once. GUI thread only.
class ServiceDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `samplingRateHz` tells the rate for a stream that has none of its own.
    ServiceDialog(std::function<int()> samplingRateHz, QWidget* parent);
    ~ServiceDialog() override;

    /// From here on the tests are for this connection, which has to live until `forget`. Asks the
    /// controller who it is. Blocks for the exchange.
    void setConnection(Connection& connection);
    /// Drops a connection and closes the dialog if the tests are for that one.
    void forget(const Connection* connection);
    /// Null before the first one, and when it was forgotten.
    Connection* connection() const { return serviceConnection; }

signals:
    /// Nothing emits it; it belongs to the interface.
    void testButton_Clicked(QString, QString);
    /// A controller took a new baud rate, and its link was brought up at that. It may have failed.
    void baudRateChanged(const Connection* connection);

private slots:
    void on_buttonGAS_clicked();
    void buttonGIN_clicked();
    void on_buttonS1S_clicked();
    void on_buttonCLS_clicked();
    void on_buttonSSH_1_clicked();
    void on_buttonSSH_2_clicked();
    void on_buttonSSH_3_clicked();
    void on_buttonCSH_1_clicked();
    void on_buttonCSH_2_clicked();
    void on_buttonCSH_3_clicked();
    void on_buttonSTF_1_clicked();
    void on_buttonSTF_2_clicked();
    void on_buttonSTF_3_clicked();
    void on_buttonCTF_1_clicked();
    void on_buttonCTF_2_clicked();
    void on_buttonCTF_3_clicked();
    void on_buttonSDA_1x_clicked();
    void on_buttonSDA_2x_clicked();
    void on_buttonSDA_1y_clicked();
    void on_buttonSDA_2y_clicked();
    void on_buttonClose_clicked();
    void on_speed_pushButton_clicked();
    void on_clear_pushButton_clicked();
    void on_baudrateChange_clicked();
    void on_manalPosition_checkBox_clicked(bool checked);
    void on_error_PushButton_clicked();
    void on_fram_PushButton_clicked();

private:
    std::unique_ptr<Ui::ServiceDialog> makeForm();
    void wireValueRows();
    std::vector<QPushButton*> exchangeButtons() const;

    void showAddress();
    void tell(const QString& result);
    int drivePositionMv() const;

    void pauseStream();
    void restartStream();
    void onQuietLink(const std::function<void()>& work);
    void run(const ServiceTest& test);
    void driveActuator(Stage stage, BeamAxis axis);
    void setPFactorTest(Stage stage, int valueMv);
    void setSensitivityTest(Stage stage, int valueMv);
    void setAdjustInTest(Stage stage, BeamAxis axis, int valueMv);
    // On a quiet link.
    void testSpeed();
    void changeBaudRate();
    void reopen(int baudRate);

    std::function<int()> windowRateHz;
    std::unique_ptr<Ui::ServiceDialog> ui;
    ValueRows valueRows;
    ExchangeButtons buttons;

    /// Whether tests start a stream when they are over.
    bool resumeStream = false;
    /// That of the last stream that was stopped, packets per second; -1 if it had none of its own.
    int savedRate = -1;
    /// Not owned.
    Connection* serviceConnection = nullptr;
};
