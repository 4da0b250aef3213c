#include "emulator/optionreader.h"

#include "emulator/command.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace emulator {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("OptionReader", text);
}

} // namespace

OptionReader::OptionReader(const QCommandLineParser& commandLineParser, const QString& optionPlace)
    : parser(commandLineParser)
    , place(optionPlace)
{}

void OptionReader::complain(const QString& option, const QString& what)
{
    if (firstComplaint.isEmpty())
        firstComplaint = QStringLiteral("%1%2: %3").arg(place, option, what);
}

bool OptionReader::isGiven(const QString& option) const
{
    return parser.isSet(option);
}

QString OptionReader::text(const QString& option) const
{
    return parser.value(option);
}

QStringList OptionReader::texts(const QString& option) const
{
    return parser.values(option);
}

void OptionReader::flag(const QString& option, bool& value, bool meaning) const
{
    if (isGiven(option))
        value = meaning;
}

void OptionReader::number(const QString& option, int& value, int least, int greatest)
{
    if (isGiven(option))
        value = numberIn(option, text(option), least, greatest);
}

int OptionReader::numberIn(const QString& option, const QString& text, int least, int greatest)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < least || number > greatest) {
        complain(
            option,
            tr("\"%1\" is not a whole number from %2 to %3").arg(text).arg(least).arg(greatest));
    }
    return number;
}

void OptionReader::seed(const QString& option, quint64& value)
{
    if (!isGiven(option))
        return;
    bool ok = false;
    value = text(option).toULongLong(&ok);
    if (!ok)
        complain(option, tr("\"%1\" is not a whole number").arg(text(option)));
}

void OptionReader::rate(const QString& option, double& value, double least, double greatest)
{
    if (!isGiven(option))
        return;
    bool ok = false;
    value = text(option).toDouble(&ok);
    const bool inRange = value >= least && value <= greatest;
    if (!ok || (!inRange && value != 0.0)) {
        complain(option, tr("\"%1\" is neither 0 nor a rate from %2 to %3")
                             .arg(text(option))
                             .arg(least)
                             .arg(greatest));
    }
}

bool OptionReader::isOneOf(const QString& option, const QStringList& choices)
{
    if (choices.contains(text(option)))
        return true;
    complain(option,
             tr("\"%1\" is none of %2").arg(text(option), choices.join(QStringLiteral(", "))));
    return false;
}

QByteArray OptionReader::mnemonicIn(const QString& option, const QString& text)
{
    QByteArray mnemonic = text.toLatin1().toUpper();
    if (argumentLength(mnemonic) < 0)
        complain(option, tr("there is no command \"%1\"").arg(text));
    return mnemonic;
}

void OptionReader::mnemonics(const QString& option, QByteArrayList& list)
{
    QByteArrayList given;
    for (const QString& text : texts(option))
        given.append(mnemonicIn(option, text));
    list = given + list;
}

void OptionReader::numbersByMnemonic(const QString& option, QMap<QByteArray, int>& map,
                                     int greatest)
{
    for (const QString& text : texts(option)) {
        const int sign = text.indexOf('=');
        if (sign < 0) {
            complain(option, tr("\"%1\" lacks \"=\" and a number").arg(text));
            continue;
        }
        map.insert(mnemonicIn(option, text.left(sign)),
                   numberIn(option, text.mid(sign + 1), 0, greatest));
    }
}

} // namespace emulator
