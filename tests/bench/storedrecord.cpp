#include "storedrecord.h"

ConnectionSettings storedRecord(int number, const ControllerPlace& place)
{
    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.name.set(place.address);
    record.baudRateOrPort = place.port;
    record.label.set(QStringLiteral("System_%1").arg(number + 1));
    record.id.set(place.id);
    record.serial.set(deviceKey(place.id));
    record.autoConnect = true;
    record.colorX = QStringLiteral("#ff0000");
    record.colorY = QStringLiteral("#008000");
    record.colorI = QStringLiteral("#0000ff");
    record.model = {PsdDetector, PsdDetector};
    record.calculation = {1, 1};
    return record;
}
