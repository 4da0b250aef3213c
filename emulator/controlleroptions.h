#pragma once

#include "emulator/beampreset.h"
#include "emulator/packet.h"
#include "emulator/rule.h"
#include "emulator/stageoptions.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QList>
#include <QMap>
#include <QVector>

#include <array>
#include <memory>

namespace emulator {

class Replay;

/// Faults that a controller makes. All are off by default.
struct Faults
{
    /// Tried one after the other with each command, before the lists below; see `RuleBook`.
    QList<Rule> rules;

    // Shorthand for rules that always act. Commands are named by their mnemonic, and those of one
    // mnemonic act together.

    /// Answered with 0x01 ';'.
    QByteArrayList refuse;
    /// Ignored: no effect and no answer.
    QByteArrayList silent;
    /// Executed and answered this many milliseconds later. Commands that arrive before that wait.
    QMap<QByteArray, int> lateMs;
    /// Only this many bytes of the reply are sent.
    QMap<QByteArray, int> shortBytes;
    /// The link is closed when the command comes, before anything is answered.
    QByteArrayList closeOn;
    /// As `closeOn`, but only the controller's side of the link is closed.
    QByteArrayList halfCloseOn;

    // Stream faults are counted in packets of the running stream, its first packet being number 1.
    // 0 means never.

    /// One byte of every n-th packet is missing: the first time byte 0, then byte 1, and so on.
    int dropByteEvery = 0;
    /// Stray bytes (0x80 to 0xFF) are inserted before every n-th packet.
    int insertBytesEvery = 0;
    int insertCount = 1;
    /// One byte of every n-th packet is inverted: the first time byte 0, then byte 1, and so on.
    int corruptByteEvery = 0;
    /// The link is closed after this many packets.
    int closeAfterPackets = 0;

    /// Every known command is answered with noise of its reply's length and has no effect, also
    /// where a rule refuses it. Unknown ones are refused. A rule's own reply is sent as it is, and
    /// rules that ignore a command or close the link do so.
    bool garbageReplies = false;
};

struct ControllerOptions
{
    /// Firmware number. Above 10 streams carry flags and an end mark, above 30 the sensitivity can
    /// be set.
    int firmware = 40;
    /// Firmware kind "VM": streams are started by SGS.
    bool vm = false;
    /// Streams can be driven by trigger pulses (SPS).
    bool triggerCapable = false;
    /// Of the serial port: 115200, 460800 or 921600, until SBR changes it.
    int baudRate = 115200;
    /// Of the serial port: RTS/CTS. The controller sends only while the host is ready to receive.
    bool hardwareFlowControl = true;
    /// The same seed gives the same beam.
    quint64 seed = 1;
    Preset preset = Preset::Typical;
    /// Stage 1 and stage 2.
    std::array<StageOptions, 2> stages;
    /// P-factor that both stages have stored at the start, mV; 0 selects the external input.
    int pFactorMv = 1000;
    /// Label that is stored at the start, cut or padded to its length; blanks if empty.
    QByteArray label;
    /// Controllers of one group, above 0, share a common detector; each group has another one,
    /// elsewhere. 0: none.
    int group = 0;
    /// The 11 characters that tell a controller from all others. Empty: one is made up.
    QByteArray key;
    /// First three letters of the ID text; others than "Zev" are no controller of this kind.
    QByteArray maker = "Zev";
    Faults faults;
    /// If not empty, each stream carries exactly these samples in this order. After the last one it
    /// sends nothing more but does not end. The packet that answers the start has the first sample.
    QVector<PacketValues> script;
    /// The script starts again after its last sample.
    bool scriptRepeats = false;
    /// If set, samples come from this recording in place of the emulated beam.
    std::shared_ptr<const Replay> replay;
    /// Pulses per second of the emulated trigger source.
    double triggerRateHz = 10;
    /// Sets bit 2 of the second flag byte in every packet.
    bool flagBBit2 = false;
};

} // namespace emulator
