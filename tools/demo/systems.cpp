#include "demo/systems.h"

namespace demosystems {

namespace {

struct System
{
    const char* label;
    const char* colorX;
    const char* colorY;
    const char* colorI;
};

/// The colours are told apart on a light canvas.
constexpr System systems[count] = {{"Table_1", "#ff0000", "#008000", "#0000ff"},
                                   {"Table_2", "#c2570c", "#0f766e", "#6d28d9"},
                                   {"Amplifier", "#b91c5c", "#4d7c0f", "#1e3a8a"},
                                   {"Serial", "#7c2d12", "#166534", "#155e75"}};

} // namespace

QString label(int number)
{
    return QString::fromLatin1(systems[number].label);
}

ConnectionSettings record(int number, ConnectionType type, const QString& address,
                          int portOrBaudRate, const QString& id)
{
    ConnectionSettings record;
    record.type = type;
    record.name.set(address);
    record.baudRateOrPort = portOrBaudRate;
    record.label.set(label(number));
    record.id.set(id);
    record.serial.set(deviceKey(id));
    record.autoConnect = true;
    record.colorX = QString::fromLatin1(systems[number].colorX);
    record.colorY = QString::fromLatin1(systems[number].colorY);
    record.colorI = QString::fromLatin1(systems[number].colorI);
    return record;
}

} // namespace demosystems
