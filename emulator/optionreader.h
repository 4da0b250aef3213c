#pragma once

#include "emulator/rule.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace emulator {

/// Reads the values of options and keeps the first error message. A value is written only if its
/// option is given, so that what was there before holds for all others.
class OptionReader final
{
public:
    /// `place` stands in front of the option's name in messages. The parser outlives the reader.
    OptionReader(const QCommandLineParser& parser, const QString& place);

    /// Empty as long as everything was right.
    const QString& complaint() const { return firstComplaint; }
    /// Notes what is wrong with an option.
    void complain(const QString& option, const QString& what);

    void flag(const QString& option, bool& value, bool meaning = true) const;
    void number(const QString& option, int& value, int least, int greatest);
    void decimal(const QString& option, double& value, double least, double greatest);
    /// Two numbers with ":" between them.
    void numbers(const QString& option, int& first, int& second, int least, int greatest);
    void decimals(const QString& option, double& first, double& second, double least,
                  double greatest);
    /// A whole number from 0.
    void seed(const QString& option, quint64& value);
    /// 0, or a rate in the range.
    void rate(const QString& option, double& value, double least, double greatest);
    template <typename Value>
    void choice(const QString& option, Value& value, const QMap<QString, Value>& choices)
    {
        if (isGiven(option) && isOneOf(option, choices.keys()))
            value = choices.value(text(option));
    }
    /// The rules that these options make, see `RuleList`.
    QList<Rule> rules(const QStringList& options);

    bool isGiven(const QString& option) const;
    QString text(const QString& option) const;
    QStringList texts(const QString& option) const;

private:
    bool isOneOf(const QString& option, const QStringList& choices);
    int numberIn(const QString& option, const QString& text, int least, int greatest);
    double decimalIn(const QString& option, const QString& text, double least, double greatest);
    QStringList pairIn(const QString& option);

    const QCommandLineParser& parser;
    QString place;
    QString firstComplaint;
};

} // namespace emulator
