#pragma once

#include "emulator/rule.h"

#include <QList>
#include <QMap>
#include <QString>

namespace emulator {

/// Makes rules of options, in the order in which these are given. Options that name the same
/// commands, with the same counts, say together what one rule does: refuse SPF:01 and late
/// SPF:01=500 are a late refusal, which stands where the first of the two is given. Where a rule of
/// this kind is used up some time, an option that says again what it already says begins the next
/// one.
class RuleList final
{
public:
    /// Adds an option with its value. Returns why that is not possible, in words for the user;
    /// empty if it is.
    QString add(const QString& option, const QString& value);

    QList<Rule> rules() const;

private:
    /// What a single option says.
    enum class Part { Deed, Lateness, Length };
    struct Entry
    {
        Rule rule;
        /// The options that have said something.
        QMap<Part, QString> options;
    };

    static Part partOf(const Rule& rule);
    Entry* lastWithPatternOf(const Rule& rule);

    QList<Entry> entries;
};

} // namespace emulator
