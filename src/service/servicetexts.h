#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

struct SpeedResult;

/// Translates the texts of the service dialog in those of its rooms that are no `QObject`.
struct ServiceText
{
    Q_DECLARE_TR_FUNCTIONS(ServiceDialog)
};

// What the service dialog says of replies, as plain text. A text that ends in a line end leaves an
// empty line behind it in the result box, where each text is a paragraph of its own.

namespace servicetexts {

/// The identification of a controller out of its whole reply; empty without one.
QString boardId(const QByteArray& reply);

/// `what` with its outcome. A reply of two bytes is enough, if the first one accepts.
QString outcome(const QString& what, const QByteArray& reply);
/// As `outcome`. The unit of the value belongs to the text of success only: kept, since reports
/// quote both texts.
QString outcomeOfMillivolts(const QString& what, const QByteArray& reply);

QString intensity(const QByteArray& reply);
QString activeSignal(const QByteArray& reply);
/// The outcome, and a line for each group of values if the reply is a whole packet. Flags are shown
/// as 0 for a firmware that has none.
QStringList oneShot(const QByteArray& reply, int firmwareVersion);
/// Which command failed last, and why.
QString lastError(const QByteArray& reply);
/// The memory of the controller, a line for each byte.
QStringList memory(const QByteArray& reply);
QString speed(const SpeedResult& result);

} // namespace servicetexts
