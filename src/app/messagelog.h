#pragma once

#include <QString>
#include <QtGlobal>

class QDateTime;

/// Handler for `qInstallMessageHandler`. While `switches::fileLogging` is set it appends every
/// message to "log.txt" in the configuration directory; otherwise it drops the message. It may be
/// called on any thread: each call opens the file, appends one line and closes the file. If the
/// file can not be opened, the message is lost.
void writeToMessageLog(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// One line of the log, without its end: time stamp, level tag and message, joined by colons.
QString messageLogLine(QtMsgType type, const QDateTime& when, const QString& message);
