#pragma once

#include "model/connectionsettings.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// The XML of the setup file, without the file. Bytes are those of a whole file.
namespace setupdocument {

/// A text that is too long for its place in the record.
struct Misfit
{
    /// Tags of the element and of those around it, from the outermost one.
    QString element;
    /// The attribute, or a word for the tag's own text.
    QString attribute;
    int bytes = 0;
    int capacity = 0;
};

/// Why a file is no setup file.
struct ReadError
{
    QString text;
    /// Where in the file, counted from 1; 0 if the error has no place.
    int line = 0;
    int column = 0;
};

struct Content
{
    /// In file order.
    QList<ConnectionSettings> records;
    /// Indices of those that say how to reach the controller: of others only detectors are known.
    QList<int> reachable;
    /// The first text that did not fit. The record has that text empty.
    std::optional<Misfit> misfit;
};

/// The records of a file; nothing, with the error, if it is not well-formed or has another root.
std::optional<Content> read(const QByteArray& xml, ReadError& error);
std::optional<Content> read(const QByteArray& xml);

/// A file with addresses, labels and colours of the records, and nothing else.
QByteArray connections(const QList<ConnectionSettings>& records);

/// The file with the detectors of the records added or brought up to date; all else in it stays
/// as it is. An empty file gets a root. Nothing if the file is not well-formed.
std::optional<QByteArray> withDetectors(const QByteArray& xml,
                                        const QList<ConnectionSettings>& records);

/// Whether `read` can take everything in the file.
bool isReadable(const QByteArray& xml);
/// Why a file with this record could not be read again; empty if it could.
QString whyUnreadable(const ConnectionSettings& record);

/// For the log.
QString toText(const ReadError& error);
QString toText(const Misfit& misfit);

} // namespace setupdocument
