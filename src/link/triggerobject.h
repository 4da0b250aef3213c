#pragma once

#include <QByteArray>
#include <QObject>

class Connection;

/// Takes the commands that other threads send to a connection. It lives in the connection's
/// thread, whereas the `Connection` itself lives in the GUI thread.
class TriggerObject final : public QObject
{
    Q_OBJECT

public:
    explicit TriggerObject(Connection& connection);

public slots:
    void sendMessage(QByteArray message, int answerLength);

private:
    Connection& connection;
};
