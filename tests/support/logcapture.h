#pragma once

#include <QStringList>

/// Takes all messages while it lives and gives them back as lines such as "debug: Clear 0". One at
/// a time. Messages may come from any thread.
class LogCapture final
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList lines() const;
    int count(const QString& line) const { return lines().count(line); }
    void clear();

private:
    QtMessageHandler previous;
};
