#pragma once

#include "model/connectionsettings.h"

#include <QList>
#include <QObject>
#include <QString>

namespace setupfile {

constexpr char ending[] = ".xml";

/// The path, with the ending appended if it has another one.
QString withEnding(const QString& path);

} // namespace setupfile

/// Owns the stored records of the connections and reads and writes the setup file.
///
/// Every path may be empty, which means "ConnectionSetup.xml" in the configuration directory.
/// Writers append ".xml" to a path without it. A file is replaced as a whole: a save that fails
/// leaves the old one. A default file that can not be loaded is kept as
/// "ConnectionSetup.xml.unreadable" when a save replaces it. Nothing here shows a message: what
/// failed, and why, is in the log. GUI thread only.
class Settings final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Replaces the records by those of the file. False, with the records kept, if the file is
    /// not there, can not be opened for reading and writing, or is not a setup file. A text that
    /// does not fit its record ends the application.
    bool read(const QString& path);
    /// Writes addresses, labels and colours. The detectors that the file had are gone afterwards.
    bool write(const QString& path) const;
    /// Adds the detectors of all records to the file, or brings them up to date there.
    bool writeDetectors(const QString& path) const;
    /// `write` and `writeDetectors` in one step, so that no state between them reaches the disk.
    bool save(const QString& path) const;

    /// Replaces the records; false if there are none in the list.
    bool setList(const QList<ConnectionSettings>& list);
    /// Copies the records that have an identification; false if there are no records at all.
    bool getList(QList<ConnectionSettings>& out) const;

    /// Copies the stored detectors and the key of the record's device into the record; false if
    /// the device is not known.
    bool getDetectorData(ConnectionSettings& record) const;
    /// Copies detectors and identification of the record to the stored one of the same device,
    /// and returns true. Without one, gives the record its key and place, adds a copy and returns
    /// false.
    bool updateOrAdd(ConnectionSettings& record);

private:
    bool replaceFile(const QString& file, const QByteArray& content, unsigned long pauseMs) const;
    void logUnreadableRecords(const QString& file) const;
    const ConnectionSettings* find(const QString& key) const;

    QList<ConnectionSettings> records;
};

/// The records in the order in which they are shown: `records[i].position` is the index of the
/// record that stands at place i. An index that does not exist or came before is ignored; records
/// that no index names follow in their order.
QList<ConnectionSettings> inShownOrder(const QList<ConnectionSettings>& records);
