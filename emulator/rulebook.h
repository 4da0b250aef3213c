#pragma once

#include "emulator/rule.h"

#include <QList>
#include <QStringList>

#include <cstddef>
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
    /// What is counted can be given back until it is settled.
    std::optional<Rule> takeRuleFor(const QByteArray& frame);
    /// The commands since the last time were dealt with.
    void settle();
    /// The commands since they were last settled do not count: they were never dealt with.
    void giveBack();

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
    /// One step of a counter.
    struct Step
    {
        std::size_t entry = 0;
        int Entry::*counter = nullptr;
    };

    void count(std::size_t entry, int Entry::*counter);

    std::vector<Entry> entries;
    std::vector<Step> unsettled;
};

/// The lists of mnemonics in `Faults`, as rules: one for each mnemonic, with all that the lists say
/// of it. Of several deeds the first of these is done: close, half-close, silent, refuse. Warns of
/// entries that are no mnemonic, and skips them.
QList<Rule> rulesOfLists(const Faults& faults);

} // namespace emulator
