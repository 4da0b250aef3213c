#include "setup/settings.h"

#include "app/logging.h"
#include "app/switches.h"
#include "setup/safefile.h"
#include "setup/setupdocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

constexpr char defaultFileName[] = "ConnectionSetup.xml";
constexpr char unreadableEnding[] = ".unreadable";
constexpr char couldNotLoad[] = "Could not load connection settings";
constexpr char couldNotSave[] = "Could not save connection settings";
/// Between writing the detectors and closing the file. Kept as it always was; nothing needs it.
constexpr unsigned long closePauseMs = 15;

QString pathToRead(const QString& path)
{
    return path.isEmpty() ? switches::configDir.path() + QDir::separator() + defaultFileName : path;
}

QString pathToWrite(const QString& path)
{
    return setupfile::withEnding(pathToRead(path));
}

/// Whatever way leads to it.
bool isDefaultFile(const QString& path)
{
    const QString defaultFile = pathToWrite(QString());
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return path == defaultFile
           || (!canonical.isEmpty() && canonical == QFileInfo(defaultFile).canonicalFilePath());
}

void copyDetectors(const ConnectionSettings& from, ConnectionSettings& to)
{
    to.calculation = from.calculation;
    to.model = from.model;
    to.pulsedLaser = from.pulsedLaser;
    to.beamDiameter = from.beamDiameter;
}

void logFailure(const char* what, const QString& path, const QString& reason)
{
    logMessage().warning("%s %s: %s", what, qPrintable(QDir::toNativeSeparators(path)),
                         qPrintable(reason));
}

/// The text says what the user can mend in the file.
void refuseToLoad(const setupdocument::Misfit& misfit, const QString& path)
{
    const QString text = path + QStringLiteral(": ") + setupdocument::toText(misfit);
    logMessage().fatal("%s", qPrintable(text));
}

/// What could not be loaded may still be mended by hand. An empty file holds nothing to mend.
bool keepUnreadable(const QString& path)
{
    QString reason;
    const std::optional<QByteArray> present = safefile::read(path, reason);
    if (!present || present->isEmpty() || setupdocument::isReadable(*present))
        return true;
    const QString kept = path + unreadableEnding;
    if (!safefile::replace(kept, *present, 0, reason)) {
        logFailure("Could not keep the unreadable connection settings as", kept, reason);
        return false;
    }
    logFailure("Keeping the unreadable connection settings as", kept,
               QStringLiteral("the file is replaced by a save"));
    return true;
}

} // namespace

QString setupfile::withEnding(const QString& path)
{
    return path.endsWith(ending) ? path : path + ending;
}

bool Settings::read(const QString& path)
{
    const QString file = pathToRead(path);
    logMessage().info() << "Loading connection settings" << QDir::toNativeSeparators(file);
    QString reason;
    const std::optional<QByteArray> bytes = safefile::read(file, reason);
    if (!bytes) {
        // Before the first save there is no file.
        if (QFile::exists(file))
            logFailure(couldNotLoad, file, reason);
        return false;
    }
    setupdocument::ReadError error;
    const std::optional<setupdocument::Content> content = setupdocument::read(*bytes, error);
    if (!content) {
        logFailure(couldNotLoad, file, setupdocument::toText(error));
        return false;
    }
    if (content->misfit)
        refuseToLoad(*content->misfit, file);
    records = content->records;
    for (const int index : content->reachable)
        logMessage().info() << "Loaded connection settings for" << records.at(index).name.text()
                            << "with ID" << records.at(index).id.text();
    logMessage().info() << "Finished loading connection settings";
    return true;
}

bool Settings::write(const QString& path) const
{
    return replaceFile(pathToWrite(path), setupdocument::connections(records), 0);
}

bool Settings::writeDetectors(const QString& path) const
{
    const QString file = pathToWrite(path);
    QByteArray present;
    if (QFile::exists(file)) {
        QString reason;
        const std::optional<QByteArray> bytes = safefile::read(file, reason);
        if (!bytes) {
            logFailure(couldNotSave, file, reason);
            return false;
        }
        present = *bytes;
    }
    const std::optional<QByteArray> content = setupdocument::withDetectors(present, records);
    if (!content) {
        setupdocument::ReadError error;
        setupdocument::read(present, error);
        logFailure(couldNotSave, file, setupdocument::toText(error));
        return false;
    }
    return replaceFile(file, *content, closePauseMs);
}

bool Settings::save(const QString& path) const
{
    const QByteArray connections = setupdocument::connections(records);
    // Detectors can not be added to what is no XML: it is refused as it is.
    const QByteArray content =
        setupdocument::withDetectors(connections, records).value_or(connections);
    return replaceFile(pathToWrite(path), content, closePauseMs);
}

/// Leaves the old file if that fails, or if the content is one that could never be loaded again.
bool Settings::replaceFile(const QString& file, const QByteArray& content,
                           unsigned long pauseMs) const
{
    if (!setupdocument::isReadable(content)) {
        logUnreadableRecords(file);
        return false;
    }
    if (isDefaultFile(file) && !keepUnreadable(file))
        return false;
    QString reason;
    if (safefile::replace(file, content, pauseMs, reason))
        return true;
    logFailure(couldNotSave, file, reason);
    return false;
}

void Settings::logUnreadableRecords(const QString& file) const
{
    bool isFound = false;
    for (const ConnectionSettings& record : records) {
        const QString reason = setupdocument::whyUnreadable(record);
        if (reason.isEmpty())
            continue;
        isFound = true;
        logFailure(couldNotSave, file,
                   QStringLiteral("the record \"%1\" with ID \"%2\" could not be loaded again: %3")
                       .arg(record.label.text(), record.id.text(), reason));
    }
    if (!isFound)
        logFailure(couldNotSave, file, QStringLiteral("what else is in it is no setup file"));
}

bool Settings::setList(const QList<ConnectionSettings>& list)
{
    records = list;
    return !records.isEmpty();
}

bool Settings::getList(QList<ConnectionSettings>& out) const
{
    out.clear();
    for (const ConnectionSettings& record : records) {
        if (!record.id.isEmpty())
            out.append(record);
    }
    return !records.isEmpty();
}

const ConnectionSettings* Settings::find(const QString& key) const
{
    const auto isDevice = [&key](const ConnectionSettings& stored) {
        return stored.serial.text() == key;
    };
    const auto found = std::find_if(records.cbegin(), records.cend(), isDevice);
    return found == records.cend() ? nullptr : &*found;
}

bool Settings::getDetectorData(ConnectionSettings& record) const
{
    const ConnectionSettings* stored = find(deviceKey(record.id.text()));
    if (!stored)
        return false;
    copyDetectors(*stored, record);
    record.serial = stored->serial;
    return true;
}

bool Settings::updateOrAdd(ConnectionSettings& record)
{
    const QString key = deviceKey(record.id.text());
    for (ConnectionSettings& stored : records) {
        if (stored.serial.text() != key)
            continue;
        copyDetectors(record, stored);
        stored.id = record.id;
        return true;
    }
    record.serial.set(key);
    record.position = records.size();
    records.append(record);
    return false;
}

QList<ConnectionSettings> inShownOrder(const QList<ConnectionSettings>& records)
{
    QList<ConnectionSettings> shown;
    std::vector<bool> placed(static_cast<std::size_t>(records.size()), false);
    const auto place = [&](int index) {
        if (index < 0 || index >= records.size() || placed[static_cast<std::size_t>(index)])
            return;
        placed[static_cast<std::size_t>(index)] = true;
        shown.append(records.at(index));
    };
    for (const ConnectionSettings& record : records)
        place(record.position);
    for (int i = 0; i < records.size(); ++i)
        place(i);
    return shown;
}
