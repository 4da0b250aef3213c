#include "emulator/optionreader.h"

#include "emulator/rulelist.h"
#include "emulator/text.h"
#include "emulator/wholenumber.h"

#include <QCommandLineParser>

namespace emulator {

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
    QString error;
    const int number = wholeNumber(text, least, greatest, error);
    if (!error.isEmpty())
        complain(option, error);
    return number;
}

void OptionReader::decimal(const QString& option, double& value, double least, double greatest)
{
    if (isGiven(option))
        value = decimalIn(option, text(option), least, greatest);
}

double OptionReader::decimalIn(const QString& option, const QString& text, double least,
                               double greatest)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    const bool inRange = number >= least && number <= greatest;
    if (!ok || !inRange)
        complain(option, Text::tr("\"%1\" is not a number from %2 to %3")
                             .arg(text, QString::number(least), QString::number(greatest)));
    return number;
}

/// The two texts of a pair; empty if the option is not given or no pair.
QStringList OptionReader::pairIn(const QString& option)
{
    if (!isGiven(option))
        return {};
    const QStringList pair = text(option).split(':');
    if (pair.size() == 2)
        return pair;
    complain(option, Text::tr("\"%1\" is not two numbers, as in 20:-5").arg(text(option)));
    return {};
}

void OptionReader::numbers(const QString& option, int& first, int& second, int least, int greatest)
{
    const QStringList pair = pairIn(option);
    if (pair.isEmpty())
        return;
    first = numberIn(option, pair[0], least, greatest);
    second = numberIn(option, pair[1], least, greatest);
}

void OptionReader::decimals(const QString& option, double& first, double& second, double least,
                            double greatest)
{
    const QStringList pair = pairIn(option);
    if (pair.isEmpty())
        return;
    first = decimalIn(option, pair[0], least, greatest);
    second = decimalIn(option, pair[1], least, greatest);
}

void OptionReader::seed(const QString& option, quint64& value)
{
    if (!isGiven(option))
        return;
    bool ok = false;
    value = text(option).toULongLong(&ok);
    if (!ok)
        complain(option, Text::tr("\"%1\" is not a whole number from 0").arg(text(option)));
}

void OptionReader::rate(const QString& option, double& value, double least, double greatest)
{
    if (!isGiven(option))
        return;
    bool ok = false;
    value = text(option).toDouble(&ok);
    const bool inRange = value >= least && value <= greatest;
    if (!ok || (!inRange && value != 0.0)) {
        complain(option, Text::tr("\"%1\" is neither 0 nor a rate from %2 to %3")
                             .arg(text(option), QString::number(least), QString::number(greatest)));
    }
}

bool OptionReader::isOneOf(const QString& option, const QStringList& choices)
{
    if (choices.contains(text(option)))
        return true;
    complain(
        option,
        Text::tr("\"%1\" is none of %2").arg(text(option), choices.join(QStringLiteral(", "))));
    return false;
}

QList<Rule> OptionReader::rules(const QStringList& options)
{
    RuleList list;
    QMap<QString, int> taken;
    // One name for each time that an option is given, in that order.
    for (const QString& option : parser.optionNames()) {
        if (!options.contains(option))
            continue;
        const QString error = list.add(option, texts(option).at(taken[option]++));
        if (!error.isEmpty())
            complain(option, error);
    }
    return list.rules();
}

} // namespace emulator
