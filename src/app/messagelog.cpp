#include "app/messagelog.h"

#include "app/switches.h"

#include <QDateTime>
#include <QFile>
#include <QTextStream>

namespace {

QString levelTag(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("[Debug]");
    case QtWarningMsg:
        return QStringLiteral("[Warning]");
    case QtCriticalMsg:
        return QStringLiteral("[Critical]");
    case QtFatalMsg:
        return QStringLiteral("[Fatal]");
    case QtInfoMsg:
        return QStringLiteral("[Info]");
    }
    return QString();
}

} // namespace

QString messageLogLine(QtMsgType type, const QDateTime& when, const QString& message)
{
    return when.toString(QStringLiteral("dd.MM.yy,hh:mm:ss.zzz")) + QLatin1Char(':')
           + levelTag(type) + QLatin1Char(':') + message;
}

void writeToMessageLog(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (!switches::fileLogging)
        return;

    QFile file(switches::configDir.path() + QDir::separator() + QStringLiteral("log.txt"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;

    QTextStream stream(&file);
    stream << messageLogLine(type, QDateTime::currentDateTime(), message) << Qt::endl;
}
