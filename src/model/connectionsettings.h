#pragma once

#include "model/connectiontype.h"
#include "model/detector.h"

#include <QString>

#include <algorithm>
#include <array>

/// Text of at most N - 1 bytes of UTF-8, zero terminated. The record keeps its texts in arrays of
/// fixed size, so whoever takes a text from outside tests `fits` first.
template <std::size_t N>
class FixedText
{
public:
    static bool fits(const QString& text) { return text.toUtf8().size() < int(N); }

    /// Stores the text. A text that does not fit ends the application.
    void set(const QString& text)
    {
        const QByteArray bytes = text.toUtf8();
        if (bytes.size() >= int(N))
            qFatal("A text of %d bytes does not fit into %d", bytes.size(), int(N) - 1);
        std::copy(bytes.cbegin(), bytes.cend() + 1, characters.begin());
    }

    QString text() const { return QString::fromUtf8(characters.data()); }
    bool isEmpty() const { return characters[0] == '\0'; }

private:
    std::array<char, N> characters{};
};

/// The stored record of one connection, as the setup file keeps it.
struct ConnectionSettings
{
    ConnectionType type = ConnectionType::Serial;
    FixedText<64> label;
    /// Port name of a serial connection, host address of a TCP one.
    FixedText<64> name;
    /// Baud rate of a serial connection, port of a TCP one.
    int baudRateOrPort = 0;
    /// Place in the list when the record was added; when saving, which record stands at this
    /// record's place. Not stored.
    int position = 0;
    /// Number of the group of systems that share detectors; 0 for none.
    int group = 0;
    bool autoConnect = false;
    /// The controller's identification text.
    FixedText<64> id;
    /// The device key, by which records are matched.
    FixedText<12> serial;

    /// Colours by their names in the file, "#rrggbb"; empty if never set.
    QString colorX;
    QString colorY;
    QString colorI;
    QString commonColorX;
    QString commonColorY;
    QString commonColorI;

    bool pulsedLaser = false;
    /// Detector type code, beam diameter in micrometres and length flag of stage 1 and 2.
    std::array<int, 2> model{0, 0};
    std::array<double, 2> beamDiameter{Detector::defaultBeamDiameterUm,
                                       Detector::defaultBeamDiameterUm};
    std::array<int, 2> calculation{0, 0};
};

/// Records are the same if they are of the same device.
bool operator==(const ConnectionSettings& a, const ConnectionSettings& b);

/// The 11 characters by which a controller is known: those at positions 14 to 24 of its
/// identification text, or the last 11 of a text that is shorter.
QString deviceKey(const QString& id);
