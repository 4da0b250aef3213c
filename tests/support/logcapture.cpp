#include "support/logcapture.h"

#include <mutex>

namespace {

std::mutex mutex;
QStringList captured;

QString levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug: ");
    case QtInfoMsg:
        return QStringLiteral("info: ");
    case QtWarningMsg:
        return QStringLiteral("warning: ");
    default:
        return QStringLiteral("critical: ");
    }
}

void capture(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    const std::lock_guard<std::mutex> lock(mutex);
    captured.append(levelName(type) + message);
}

} // namespace

LogCapture::LogCapture()
{
    clear();
    previous = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
}

QStringList LogCapture::lines() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return captured;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    captured.clear();
}
