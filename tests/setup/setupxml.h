#pragma once

#include "setup/setupdocument.h"

#include <QByteArray>

/// Setup files as bytes.
namespace setupxml {

inline QByteArray file(const QByteArray& devices)
{
    return "<!DOCTYPE SetupML>\n<Zev_Lumetra>\n" + devices + "</Zev_Lumetra>\n";
}

/// Every part that a device can have, in an order in which they are not written, and one that is
/// not known.
constexpr char wholeDevice[] = R"( <Device_AB000000001>
  <General pulsedLaser="1"/>
  <Detector2 calculation="1" model="5" beamDiameter="12.25"/>
  <Detector1 beamDiameter="250.5" model="1" calculation="0"/>
  <Unknown name="ignored"/>
  <DisplayColors colorX="#010203" colorY="#aabbcc" colorI="#00ff00"/>
  <Settings id="Zev-V40-000000AB000000001-x" port="2001" baudrate="7" autoConnect="1" label="left_arm" type="1" name="127.0.0.5"/>
 </Device_AB000000001>
)";

/// A default record if there is none, or more than one.
inline ConnectionSettings onlyRecord(const QByteArray& xml)
{
    const std::optional<setupdocument::Content> content = setupdocument::read(xml);
    return content && content->records.size() == 1 ? content->records.first()
                                                   : ConnectionSettings();
}

} // namespace setupxml
