#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Files with a setup, or with what is none.
namespace setupfiles {

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The test ends here if the file can not be written.
inline void put(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s can not be written", qPrintable(path));
}

/// One device, with the key AB000000001.
constexpr char goodFile[] =
    "<Zev_Lumetra><Device_AB000000001><Settings id=\"12345678901234AB000000001\""
    " label=\"one\"/><Detector1 model=\"2\" beamDiameter=\"7\"/>"
    "<General pulsedLaser=\"1\"/></Device_AB000000001></Zev_Lumetra>";

} // namespace setupfiles
