#include "emulator/deepcopy.h"

namespace emulator {

namespace {

QMap<QByteArray, int> deepCopy(const QMap<QByteArray, int>& map)
{
    QMap<QByteArray, int> copy;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        copy.insert(emulator::deepCopy(entry.key()), entry.value());
    return copy;
}

} // namespace

QByteArray deepCopy(const QByteArray& bytes)
{
    return QByteArray(bytes.constData(), bytes.size());
}

QString deepCopy(const QString& text)
{
    return QString(text.constData(), text.size());
}

QByteArrayList deepCopy(const QByteArrayList& list)
{
    QByteArrayList copy;
    for (const QByteArray& bytes : list)
        copy.append(deepCopy(bytes));
    return copy;
}

QVector<WireEvent> deepCopy(const QVector<WireEvent>& events)
{
    QVector<WireEvent> copy;
    copy.reserve(events.size());
    for (const WireEvent& event : events)
        copy.append({event.direction, deepCopy(event.bytes), event.timeNs});
    return copy;
}

QVector<PacketValues> deepCopy(const QVector<PacketValues>& samples)
{
    QVector<PacketValues> copy;
    copy.reserve(samples.size());
    for (const PacketValues& sample : samples)
        copy.append(sample);
    return copy;
}

Rule deepCopy(const Rule& rule)
{
    Rule copy = rule;
    copy.prefix = deepCopy(rule.prefix);
    copy.reply = deepCopy(rule.reply);
    return copy;
}

QList<Rule> deepCopy(const QList<Rule>& rules)
{
    QList<Rule> copy;
    copy.reserve(rules.size());
    for (const Rule& rule : rules)
        copy.append(deepCopy(rule));
    return copy;
}

Faults deepCopy(const Faults& faults)
{
    Faults copy = faults;
    copy.rules = deepCopy(faults.rules);
    copy.refuse = deepCopy(faults.refuse);
    copy.silent = deepCopy(faults.silent);
    copy.lateMs = deepCopy(faults.lateMs);
    copy.shortBytes = deepCopy(faults.shortBytes);
    copy.closeOn = deepCopy(faults.closeOn);
    copy.halfCloseOn = deepCopy(faults.halfCloseOn);
    return copy;
}

ControllerOptions deepCopy(const ControllerOptions& options)
{
    ControllerOptions copy = options;
    copy.key = deepCopy(options.key);
    copy.maker = deepCopy(options.maker);
    copy.label = deepCopy(options.label);
    copy.faults = deepCopy(options.faults);
    copy.script = deepCopy(options.script);
    return copy;
}

} // namespace emulator
