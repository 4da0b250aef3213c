#include "setup/settings.h"

#include "app/logging.h"
#include "app/switches.h"
#include "setup/setupdocument.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QThread>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

constexpr char defaultFileName[] = "ConnectionSetup.xml";
/// Between writing the detectors and closing the file.
constexpr unsigned long closePauseMs = 15;

QString pathToRead(const QString& path)
{
    return path.isEmpty() ? switches::configDir.path() + QDir::separator() + defaultFileName : path;
}

QString pathToWrite(const QString& path)
{
    return setupfile::withEnding(pathToRead(path));
}

/// The whole file. It has to be writable, too, although it is only read. Nothing if it is not
/// there or can not be opened.
std::optional<QByteArray> contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return std::nullopt;
    return file.readAll();
}

/// Replaces the file in one step, or leaves the old one: also if the disk is full, the process
/// dies, or the content is one that could never be loaded again.
bool replaceFile(const QString& path, const QByteArray& content, unsigned long pauseMs)
{
    if (!setupdocument::isReadable(content))
        return false;
    if (QFile::exists(path) && !contentOf(path))
        return false;
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // A full disk shows in the length or in the flush, never in the error alone.
    const bool written = file.write(content) == content.size() && file.flush();
    if (!written)
        file.cancelWriting();
    QThread::msleep(pauseMs);
    return file.commit() && written;
}

void copyDetectors(const ConnectionSettings& from, ConnectionSettings& to)
{
    to.calculation = from.calculation;
    to.model = from.model;
    to.pulsedLaser = from.pulsedLaser;
    to.beamDiameter = from.beamDiameter;
}

void refuse(const setupdocument::Misfit& misfit, const QString& path)
{
    const QString text = QStringLiteral("%1: attribute \"%3\" of element \"%2\" has %4 bytes, "
                                        "more than the %5 that fit. Please shorten it.")
                             .arg(path, misfit.element, misfit.attribute,
                                  QString::number(misfit.bytes), QString::number(misfit.capacity));
    logMessage().fatal("%s", qPrintable(text));
}

} // namespace

QString setupfile::withEnding(const QString& path)
{
    return path.endsWith(ending) ? path : path + ending;
}

bool Settings::read(const QString& path)
{
    logMessage().info() << "Loading connection settings"
                        << QDir::toNativeSeparators(pathToRead(path));
    const std::optional<QByteArray> bytes = contentOf(pathToRead(path));
    if (!bytes)
        return false;
    const std::optional<setupdocument::Content> content = setupdocument::read(*bytes);
    if (!content)
        return false;
    if (content->misfit)
        refuse(*content->misfit, pathToRead(path));
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
    const std::optional<QByteArray> present =
        QFile::exists(file) ? contentOf(file) : std::make_optional<QByteArray>();
    if (!present)
        return false;
    const std::optional<QByteArray> content = setupdocument::withDetectors(*present, records);
    return content && replaceFile(file, *content, closePauseMs);
}

bool Settings::save(const QString& path) const
{
    const std::optional<QByteArray> content =
        setupdocument::withDetectors(setupdocument::connections(records), records);
    return content && replaceFile(pathToWrite(path), *content, closePauseMs);
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
