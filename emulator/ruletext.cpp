#include "emulator/ruletext.h"

#include "emulator/command.h"
#include "emulator/commandtable.h"
#include "emulator/text.h"
#include "emulator/wholenumber.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace emulator {

namespace {

constexpr int greatestLatenessMs = 3600000;
/// Place of an axis in a frame: behind the mnemonic and the stage.
constexpr int axisPlace = 4;
/// Place of an axis in the text of arguments: behind the two digits of the stage.
constexpr int axisTextPlace = 2;
constexpr QLatin1String skipKey("skip=");
constexpr QLatin1String timesKey("times=");

/// What stands behind the last "=" of an option's value.
enum class Extra { None, ReplyBytes, Milliseconds, ByteCount };

struct Option
{
    const char* name;
    Deed deed;
    Extra extra;
};

constexpr Option options[] = {
    {"refuse", Deed::Refuse, Extra::None},       {"silent", Deed::Ignore, Extra::None},
    {"close-on", Deed::Close, Extra::None},      {"half-close-on", Deed::HalfClose, Extra::None},
    {"reply", Deed::Reply, Extra::ReplyBytes},   {"late", Deed::CarryOut, Extra::Milliseconds},
    {"short", Deed::CarryOut, Extra::ByteCount},
};

const Option* optionOf(const QString& name)
{
    const auto found = std::find_if(std::begin(options), std::end(options),
                                    [&](const Option& option) { return name == option.name; });
    return found == std::end(options) ? nullptr : found;
}

/// Name of the option that makes a controller do this.
QString nameOf(Deed deed)
{
    const auto found = std::find_if(std::begin(options), std::end(options),
                                    [&](const Option& option) { return deed == option.deed; });
    return found == std::end(options) ? QString() : QString::fromLatin1(found->name);
}

QString hexDigits(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

bool isAxis(QChar letter)
{
    return letter == 'x' || letter == 'y';
}

/// The prefix as it is written on the command line, such as "SAI:01x".
QString prefixText(const QByteArray& prefix)
{
    const QByteArray mnemonic = prefix.left(mnemonicLength);
    const bool mayNameAxis = hasAxis(mnemonic);
    QString arguments;
    for (int place = mnemonicLength; place < prefix.size(); ++place) {
        const QChar letter = QLatin1Char(prefix[place]);
        const bool namesAxis = mayNameAxis && place == axisPlace && isAxis(letter);
        arguments += namesAxis ? QString(letter) : hexDigits(prefix.mid(place, 1));
    }
    const QString name = QString::fromLatin1(mnemonic);
    return arguments.isEmpty() ? name : name + ':' + arguments;
}

/// Everything that stands before the last "=" of an option's value.
QString patternText(const Rule& rule)
{
    QString text = prefixText(rule.prefix);
    if (rule.skip > 0)
        text += ':' + skipKey + QString::number(rule.skip);
    if (rule.times > 0)
        text += ':' + timesKey + QString::number(rule.times);
    return text;
}

bool isHexPair(const QString& text)
{
    static const QString digits = QStringLiteral("0123456789abcdefABCDEF");
    return text.size() == 2 && digits.contains(text[0]) && digits.contains(text[1]);
}

/// Bytes of pairs of hexadecimal digits; nothing if the text holds others.
std::optional<QByteArray> bytesOf(const QString& text)
{
    QByteArray bytes;
    for (int place = 0; place < text.size(); place += 2) {
        const QString pair = text.mid(place, 2);
        if (!isHexPair(pair))
            return std::nullopt;
        bytes.append(QByteArray::fromHex(pair.toLatin1()));
    }
    return bytes;
}

bool namesAxis(const QString& arguments)
{
    return arguments.size() > axisTextPlace && isAxis(arguments[axisTextPlace]);
}

/// The same with the axis, if it is named, in digits, too.
QString withoutAxisLetter(QString arguments)
{
    if (namesAxis(arguments)) {
        const QByteArray letter = arguments.mid(axisTextPlace, 1).toLatin1();
        arguments.replace(axisTextPlace, 1, hexDigits(letter));
    }
    return arguments;
}

/// Reads the parts of one rule, and keeps the first error message.
class RuleReader final
{
public:
    const QString& complaint() const { return firstComplaint; }

    Rule read(const Option& option, const QString& value);

private:
    void complain(const QString& text);
    int number(const QString& text, int least, int greatest);
    void readPattern(const QString& text);
    void readMnemonic(const QString& text);
    void readArguments(const QString& text);
    void readExtra(Extra extra, const QString& text);

    Rule rule;
    QString firstComplaint;
};

void RuleReader::complain(const QString& text)
{
    if (firstComplaint.isEmpty())
        firstComplaint = text;
}

int RuleReader::number(const QString& text, int least, int greatest)
{
    QString error;
    const int number = wholeNumber(text, least, greatest, error);
    if (!error.isEmpty())
        complain(error);
    return number;
}

Rule RuleReader::read(const Option& option, const QString& value)
{
    rule.deed = option.deed;
    if (option.extra == Extra::None) {
        readPattern(value);
        return rule;
    }
    const int sign = value.lastIndexOf('=');
    if (sign < 0) {
        complain(option.extra == Extra::ReplyBytes
                     ? Text::tr("\"%1\" lacks \"=\" and the bytes of the reply").arg(value)
                     : Text::tr("\"%1\" lacks \"=\" and a number").arg(value));
        return rule;
    }
    readPattern(value.left(sign));
    readExtra(option.extra, value.mid(sign + 1));
    return rule;
}

void RuleReader::readPattern(const QString& text)
{
    QStringList parts = text.split(':');
    readMnemonic(parts.takeFirst());
    QStringList given;
    const auto takeOnce = [&](const QString& kind) {
        if (given.contains(kind))
            complain(Text::tr("\"%1\" says %2 more than once").arg(text, kind));
        given.append(kind);
    };
    for (const QString& part : parts) {
        if (part.startsWith(skipKey)) {
            takeOnce(skipKey);
            rule.skip = number(part.mid(skipKey.size()), 0, greatestCount);
        } else if (part.startsWith(timesKey)) {
            takeOnce(timesKey);
            rule.times = number(part.mid(timesKey.size()), 1, greatestCount);
        } else {
            takeOnce(Text::tr("the argument bytes"));
            readArguments(part);
        }
    }
}

void RuleReader::readMnemonic(const QString& text)
{
    rule.prefix = text.toLatin1().toUpper();
    if (argumentLength(rule.prefix) < 0)
        complain(Text::tr("there is no command \"%1\"").arg(text));
}

void RuleReader::readArguments(const QString& text)
{
    const QByteArray mnemonic = rule.prefix.left(mnemonicLength);
    const QString name = QString::fromLatin1(mnemonic);
    if (namesAxis(text) && !hasAxis(mnemonic)) {
        complain(Text::tr("\"%1\" names an axis, but %2 has none").arg(text, name));
        return;
    }
    const std::optional<QByteArray> bytes = bytesOf(withoutAxisLetter(text));
    if (!bytes || bytes->isEmpty()) {
        complain(Text::tr("\"%1\" is neither argument bytes, as in 01x, nor skip=N nor times=N")
                     .arg(text));
        return;
    }
    rule.prefix += *bytes;
    if (rule.prefix.size() - mnemonicLength > argumentLength(mnemonic))
        complain(Text::tr("\"%1\" is more than the arguments of %2").arg(text, name));
}

void RuleReader::readExtra(Extra extra, const QString& text)
{
    switch (extra) {
    case Extra::None:
        break;
    case Extra::ReplyBytes: {
        const std::optional<QByteArray> bytes = bytesOf(text);
        rule.reply = bytes.value_or(QByteArray());
        if (rule.reply.isEmpty())
            complain(Text::tr("\"%1\" is not the bytes of a reply, as in 003b013b").arg(text));
        break;
    }
    case Extra::Milliseconds:
        rule.lateMs = number(text, 0, greatestLatenessMs);
        break;
    case Extra::ByteCount:
        rule.shortBytes = number(text, 0, greatestCount);
        break;
    }
}

} // namespace

QString describe(const Rule& rule)
{
    const QString pattern = patternText(rule);
    QStringList made;
    if (rule.deed != Deed::CarryOut)
        made.append(nameOf(rule.deed) + ' ' + pattern);
    if (rule.deed == Deed::Reply)
        made.last() += '=' + hexDigits(rule.reply);
    if (rule.shortBytes != Rule::wholeReply)
        made.append(QStringLiteral("short %1=%2").arg(pattern).arg(rule.shortBytes));
    // A rule that only lets commands pass is one that makes them late by nothing.
    if (rule.lateMs > 0 || made.isEmpty())
        made.append(QStringLiteral("late %1=%2").arg(pattern).arg(rule.lateMs));
    return made.join(QStringLiteral(", "));
}

ParsedRule parseRule(const QString& option, const QString& value)
{
    ParsedRule parsed;
    const Option* known = optionOf(option);
    if (!known) {
        parsed.error = Text::tr("there is no rule \"%1\"").arg(option);
        return parsed;
    }
    RuleReader reader;
    const Rule rule = reader.read(*known, value);
    parsed.error = reader.complaint();
    if (parsed.error.isEmpty())
        parsed.rule = rule;
    return parsed;
}

} // namespace emulator
