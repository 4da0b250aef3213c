#pragma once

#include <QDialog>

class Connection;

/// Tests of single commands for technicians. It takes the connection to test; the tests
/// themselves are not part of this version.
class ServiceDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ServiceDialog(QWidget* parent);

    void setConnection(Connection* connection) { serviceConnection = connection; }
    Connection* connection() const { return serviceConnection; }

private:
    /// Not owned. Set anew each time that the dialog is shown.
    Connection* serviceConnection = nullptr;
};
