#include "setup/setupdocument.h"

#include <QDomDocument>
#include <QTextStream>

namespace {

constexpr char doctype[] = "SetupML";
constexpr char rootTag[] = "Zev_Lumetra";
constexpr char devicePrefix[] = "Device_";
constexpr int devicePrefixLength = int(sizeof devicePrefix) - 1;
constexpr char connectionTag[] = "Settings";
constexpr int indentation = 1;
/// Marks that a file of an earlier version has no group; no number reads like it.
constexpr char noGroup[] = "false";
/// Stands for a colour that was never set.
constexpr char unsetColor[] = "#000000";

QString deviceTag(const ConnectionSettings& record)
{
    return devicePrefix + deviceKey(record.id.text());
}

/// One of "port" and "baudrate": what the number in the record means.
QString numberAttribute(ConnectionType type)
{
    return type == ConnectionType::Tcp ? QStringLiteral("port") : QStringLiteral("baudrate");
}

QByteArray toBytes(const QDomDocument& document)
{
    QByteArray bytes;
    QTextStream stream(&bytes, QIODevice::WriteOnly);
    document.save(stream, indentation);
    stream.flush();
    return bytes;
}

// Reading.

template <std::size_t N>
void readText(FixedText<N>& field, const QString& text, const QString& element,
              const QString& attribute, std::optional<setupdocument::Misfit>& misfit)
{
    if (FixedText<N>::fits(text)) {
        field.set(text);
    } else if (!misfit) {
        misfit = {element, attribute, text.toUtf8().size(), int(N) - 1};
    }
}

int intAttribute(const QDomElement& element, const QString& name)
{
    return element.attribute(name).toInt();
}

void readConnection(const QDomElement& element, const QString& device, ConnectionSettings& record,
                    std::optional<setupdocument::Misfit>& misfit)
{
    const auto text = [&](auto& field, const char* attribute) {
        readText(field, element.attribute(attribute), device + '/' + element.tagName(), attribute,
                 misfit);
    };
    text(record.name, "name");
    text(record.id, "id");
    text(record.label, "label");
    record.type = static_cast<ConnectionType>(intAttribute(element, "type"));
    record.autoConnect = intAttribute(element, "autoConnect") != 0;
    record.baudRateOrPort = intAttribute(element, numberAttribute(record.type));

    const QString group = element.attribute("group", noGroup);
    if (group != noGroup)
        record.group = group.toInt();
}

void readDetector(const QDomElement& element, std::size_t stage, ConnectionSettings& record)
{
    record.beamDiameter[stage] = element.attribute("beamDiameter").toDouble();
    record.model[stage] = intAttribute(element, "model");
    record.calculation[stage] = intAttribute(element, "calculation");
}

ConnectionSettings readDevice(const QDomNode& device, std::optional<setupdocument::Misfit>& misfit)
{
    ConnectionSettings record;
    const QString tag = device.nodeName();
    for (QDomElement element = device.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        const QString part = element.tagName();
        if (part == connectionTag) {
            readConnection(element, tag, record, misfit);
        } else if (part == "General") {
            record.pulsedLaser = intAttribute(element, "pulsedLaser") != 0;
            // The key belongs to the detectors: a device without this part has none.
            readText(record.serial, tag.mid(devicePrefixLength), tag, "key in the tag", misfit);
        } else if (part == "Detector1") {
            readDetector(element, 0, record);
        } else if (part == "Detector2") {
            readDetector(element, 1, record);
        } else if (part == "DisplayColors" || part == "SubsystemColors") {
            record.colorX = element.attribute("colorX");
            record.colorY = element.attribute("colorY");
            record.colorI = element.attribute("colorI");
        } else if (part == "CommonColors") {
            record.commonColorX = element.attribute("colorX");
            record.commonColorY = element.attribute("colorY");
            record.commonColorI = element.attribute("colorI");
        }
    }
    return record;
}

// Writing.

QDomElement appendTo(QDomNode parent, const QString& tag)
{
    return parent.appendChild(parent.ownerDocument().createElement(tag)).toElement();
}

QString writtenColor(const QString& name)
{
    return name.isEmpty() ? unsetColor : name;
}

void writeConnection(QDomElement device, const ConnectionSettings& record)
{
    QDomElement settings = appendTo(device, connectionTag);
    settings.setAttribute("name", record.name.text());
    settings.setAttribute("type", static_cast<int>(record.type));
    settings.setAttribute("label", record.label.text());
    settings.setAttribute("id", record.id.text());
    settings.setAttribute("autoConnect", record.autoConnect ? 1 : 0);
    settings.setAttribute(numberAttribute(record.type), record.baudRateOrPort);

    QDomElement colors = appendTo(device, "DisplayColors");
    colors.setAttribute("colorX", writtenColor(record.colorX));
    colors.setAttribute("colorY", writtenColor(record.colorY));
    colors.setAttribute("colorI", writtenColor(record.colorI));
}

/// Brings one part of a device up to date; false if it is not one of the three that hold detector
/// data.
bool writeDetectorPart(QDomElement part, const ConnectionSettings& record)
{
    const QString tag = part.tagName();
    if (tag == "General") {
        part.setAttribute("pulsedLaser", record.pulsedLaser ? 1 : 0);
        return true;
    }
    if (tag != "Detector1" && tag != "Detector2")
        return false;
    const std::size_t stage = tag == "Detector1" ? 0 : 1;
    part.setAttribute("beamDiameter", record.beamDiameter[stage]);
    part.setAttribute("model", record.model[stage]);
    part.setAttribute("calculation", record.calculation[stage]);
    return true;
}

void writeDetectors(QDomElement root, const ConnectionSettings& record)
{
    const QString tag = deviceTag(record);
    QDomElement device;
    bool hasParts = false;
    for (QDomElement child = root.firstChildElement(tag); !child.isNull();
         child = child.nextSiblingElement(tag)) {
        device = child;
        for (QDomElement part = child.firstChildElement(); !part.isNull();
             part = part.nextSiblingElement())
            hasParts |= writeDetectorPart(part, record);
    }
    // A device that has one of the parts gets no other.
    if (hasParts)
        return;
    if (device.isNull())
        device = root.ownerDocument().createElement(tag);
    for (const char* part : {"Detector1", "Detector2", "General"})
        writeDetectorPart(appendTo(device, part), record);
    root.appendChild(device);
}

} // namespace

namespace setupdocument {

std::optional<Content> read(const QByteArray& xml, ReadError& error)
{
    QDomDocument document;
    if (!document.setContent(xml, &error.text, &error.line, &error.column))
        return std::nullopt;
    if (document.documentElement().tagName() != rootTag) {
        error = {QStringLiteral("the root element is \"%1\", not \"%2\"")
                     .arg(document.documentElement().tagName(), rootTag)};
        return std::nullopt;
    }

    Content content;
    // Every child stands for a device, whatever its name is.
    for (QDomNode device = document.documentElement().firstChild(); !device.isNull();
         device = device.nextSibling()) {
        if (!device.firstChildElement(connectionTag).isNull())
            content.reachable.append(content.records.size());
        content.records.append(readDevice(device, content.misfit));
    }
    return content;
}

std::optional<Content> read(const QByteArray& xml)
{
    ReadError ignored;
    return read(xml, ignored);
}

QByteArray connections(const QList<ConnectionSettings>& records)
{
    QDomDocument document(doctype);
    QDomElement root = document.createElement(rootTag);
    document.appendChild(root);
    for (const ConnectionSettings& record : records)
        writeConnection(appendTo(root, deviceTag(record)), record);
    return toBytes(document);
}

std::optional<QByteArray> withDetectors(const QByteArray& xml,
                                        const QList<ConnectionSettings>& records)
{
    QDomDocument document;
    if (xml.isEmpty())
        document.appendChild(document.createElement(rootTag));
    else if (!document.setContent(xml))
        return std::nullopt;

    for (const ConnectionSettings& record : records)
        writeDetectors(document.documentElement(), record);
    return toBytes(document);
}

bool isReadable(const QByteArray& xml)
{
    const std::optional<Content> content = read(xml);
    return content && !content->misfit;
}

QString whyUnreadable(const ConnectionSettings& record)
{
    ReadError error;
    const std::optional<Content> content = read(connections({record}), error);
    if (!content)
        return QStringLiteral("written with the device key \"%1\" it is no XML: %2")
            .arg(deviceKey(record.id.text()), error.text);
    return content->misfit ? toText(*content->misfit) : QString();
}

QString toText(const ReadError& error)
{
    if (error.line == 0)
        return error.text;
    return QStringLiteral("line %1, column %2: %3")
        .arg(QString::number(error.line), QString::number(error.column), error.text);
}

QString toText(const Misfit& misfit)
{
    return QStringLiteral("attribute \"%2\" of element \"%1\" has %3 bytes, more than the %4 that "
                          "fit. Please shorten it.")
        .arg(misfit.element, misfit.attribute, QString::number(misfit.bytes),
             QString::number(misfit.capacity));
}

} // namespace setupdocument
