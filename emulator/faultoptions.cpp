#include "emulator/faultoptions.h"

#include "emulator/optionreader.h"
#include "emulator/text.h"
#include "emulator/wholenumber.h"

namespace emulator {

namespace {

/// Stray bytes before one packet.
constexpr int greatestInsertCount = 16384;

OptionSection ruleSection()
{
    return {
        Text::tr("Faults of commands"),
        Text::tr(
            "RULE is MNEMONIC[:ARGS][:skip=N][:times=N], as SPF or SAI:01x:times=1: the "
            "command, the first bytes of its arguments in hexadecimal digits, an axis as x or y, "
            "how many such commands pass first, and how often the rule acts. Options with the "
            "same RULE act together. Of several rules the first that fits a command acts. All "
            "may be repeated."),
        {
            {"refuse", Text::tr("Refuse such commands."), "RULE"},
            {"silent", Text::tr("Do not answer them, nor carry them out."), "RULE"},
            {"reply",
             Text::tr("Answer exactly these bytes, as in GSF=003b013b, and do not carry "
                      "them out."),
             "RULE=BYTES"},
            {"late", Text::tr("Carry out and answer them only after MS milliseconds."), "RULE=MS"},
            {"short", Text::tr("Send only the first N bytes of the reply."), "RULE=N"},
            {"close-on", Text::tr("Close the connection when one comes."), "RULE"},
            {"half-close-on", Text::tr("Close the sending side when one comes."), "RULE"},
            {"garbage", Text::tr("Answer every known command with noise.")},
        }};
}

OptionSection streamFaultSection()
{
    return {Text::tr("Faults of streams"),
            {},
            {
                {"drop-every", Text::tr("Leave out a byte of every Nth packet."), "N"},
                {"insert-every", Text::tr("Insert stray bytes before every Nth packet."), "N"},
                {"insert-count", Text::tr("How many of them, 0 to 16384; default: 1."), "N"},
                {"corrupt-every", Text::tr("Invert a byte of every Nth packet."), "N"},
                {"close-after", Text::tr("Close the connection behind the Nth packet."), "N"},
            }};
}

QStringList ruleOptions()
{
    QStringList names;
    for (const QCommandLineOption& option : ruleSection().options) {
        // Rules have a value; --garbage, which is none, has not.
        if (!option.valueName().isEmpty())
            names += option.names();
    }
    return names;
}

} // namespace

QVector<OptionSection> faultSections()
{
    return {ruleSection(), streamFaultSection()};
}

Faults readFaults(OptionReader& reader, const Faults& base)
{
    Faults faults = base;
    faults.rules = reader.rules(ruleOptions()) + base.rules;
    reader.flag("garbage", faults.garbageReplies);
    reader.number("drop-every", faults.dropByteEvery, 0, greatestCount);
    reader.number("insert-every", faults.insertBytesEvery, 0, greatestCount);
    reader.number("insert-count", faults.insertCount, 0, greatestInsertCount);
    reader.number("corrupt-every", faults.corruptByteEvery, 0, greatestCount);
    reader.number("close-after", faults.closeAfterPackets, 0, greatestCount);
    return faults;
}

} // namespace emulator
