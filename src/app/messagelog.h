#pragma once

#include <QString>
#include <QtGlobal>

class QDateTime;

/// Handler for `qInstallMessageHandler`. While `switches::fileLogging` is set it appends every
/// message to "log.txt" in the configuration directory, and without it drops the message. It may
/// be called on any thread: each call opens, appends one line and closes. A file that can not be
/// opened loses the message.
void writeToMessageLog(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// One line of the log, without its end: time stamp, level tag and message, joined by colons.
QString messageLogLine(QtMsgType type, const QDateTime& when, const QString& message);
