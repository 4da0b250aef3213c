#pragma once

#include "emulator/rule.h"

#include <QList>
#include <QStringList>

#include <optional>
#include <vector>

namespace emulator {

struct Faults;

/// Rules in their order, and how often each has met a command.
class RuleBook final
{
public:
    RuleBook() = default;
    explicit RuleBook(const QList<Rule>& rules);

    /// Puts a rule behind the others.
    void add(const Rule& rule);

    /// Offers a command to one rule after the other. The first whose prefix fits acts. One that
    /// still has commands to skip counts this one and lets it go on to the next rule; one that has
    /// acted as often as it should lets it go on, too. Returns the rule that acts, if there is one.
    std::optional<Rule> ruleFor(const QByteArray& frame);

    /// `describe` of the rules that have not acted so far. Their commands never came, or did not
    /// come often enough, or an earlier rule took them.
    QStringList unplayed() const;

private:
    struct Entry
    {
        Rule rule;
        int skipped = 0;
        int acted = 0;
    };

    std::vector<Entry> entries;
};

/// The lists of mnemonics in `Faults`, as rules: one for each mnemonic, with all that the lists say
/// of it. Of several deeds the first of these is done: close, half-close, silent, refuse.
QList<Rule> rulesOfLists(const Faults& faults);

} // namespace emulator
