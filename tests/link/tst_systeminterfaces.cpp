// What the system says of its serial adapters. It runs on a made-up system, whose two adapters are
// told in adapters.umockdev.

#include "link/interfacesearch.h"
#include "support/logcapture.h"

#include <QtTest>

class TestSystemInterfaces final : public QObject
{
    Q_OBJECT

private slots:
    void adaptersAreListedWithDescriptionAndManufacturer();
    void onlyTheKnownAdapterIsTried();
    void everyAdapterIsTriedIfAsked();
};

void TestSystemInterfaces::adaptersAreListedWithDescriptionAndManufacturer()
{
    QStringList told;
    for (const SerialInterface& each : availableInterfaces())
        told.append(QStringList({each.name, each.description, each.manufacturer}).join(", "));
    told.sort();
    QCOMPARE(told, QStringList({"ttyUSB0, FT232R USB UART, FTDI",
                                "ttyUSB1, CP2102 USB to UART Bridge Controller, Silicon Labs"}));
}

void TestSystemInterfaces::onlyTheKnownAdapterIsTried()
{
    const LogCapture log;
    searchInterfaces(false, false);
    QCOMPARE(log.count("info: Trying to connect to interface  \"ttyUSB0\""), 1);
    QCOMPARE(log.count("info: Skipping interface"), 1);
    QCOMPARE(log.count("info: Trying to connect to interface  \"ttyUSB1\""), 0);
}

void TestSystemInterfaces::everyAdapterIsTriedIfAsked()
{
    const LogCapture log;
    searchInterfaces(false, true);
    QCOMPARE(log.count("info: Trying to connect to interface  \"ttyUSB0\""), 1);
    QCOMPARE(log.count("info: Trying to connect to interface  \"ttyUSB1\""), 1);
}

QTEST_GUILESS_MAIN(TestSystemInterfaces)
#include "tst_systeminterfaces.moc"
