#include "emulator/rulebook.h"

#include "emulator/command.h"
#include "emulator/controlleroptions.h"
#include "emulator/ruletext.h"

#include <QtGlobal>

namespace emulator {

namespace {

Deed deedOfLists(const Faults& faults, const QByteArray& mnemonic)
{
    if (faults.closeOn.contains(mnemonic))
        return Deed::Close;
    if (faults.halfCloseOn.contains(mnemonic))
        return Deed::HalfClose;
    if (faults.silent.contains(mnemonic))
        return Deed::Ignore;
    if (faults.refuse.contains(mnemonic))
        return Deed::Refuse;
    return Deed::CarryOut;
}

bool isMnemonic(const QByteArray& text)
{
    if (text.size() == mnemonicLength)
        return true;
    qWarning("emulator: \"%s\" in a list of faults is no mnemonic", text.constData());
    return false;
}

/// What stands in the lists, each once.
QByteArrayList mnemonicsOfLists(const Faults& faults)
{
    const QByteArrayList mnemonics = faults.closeOn + faults.halfCloseOn + faults.silent
                                     + faults.refuse + faults.lateMs.keys()
                                     + faults.shortBytes.keys();
    QByteArrayList each;
    for (const QByteArray& mnemonic : mnemonics) {
        if (!each.contains(mnemonic) && isMnemonic(mnemonic))
            each.append(mnemonic);
    }
    return each;
}

} // namespace

RuleBook::RuleBook(const QList<Rule>& rules)
{
    for (const Rule& rule : rules)
        add(rule);
}

void RuleBook::add(const Rule& rule)
{
    Entry entry;
    entry.rule = rule;
    entries.push_back(entry);
}

std::optional<Rule> RuleBook::takeRuleFor(const QByteArray& frame)
{
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        const Rule& rule = entry.rule;
        if (!frame.startsWith(rule.prefix))
            continue;
        if (entry.skipped < rule.skip) {
            count(i, &Entry::skipped);
        } else if (rule.times == 0 || entry.acted < rule.times) {
            count(i, &Entry::acted);
            return rule;
        }
    }
    return std::nullopt;
}

void RuleBook::count(std::size_t entry, int Entry::*counter)
{
    ++(entries[entry].*counter);
    unsettled.push_back({entry, counter});
}

void RuleBook::settle()
{
    unsettled.clear();
}

void RuleBook::giveBack()
{
    for (const Step& step : unsettled)
        --(entries[step.entry].*step.counter);
    unsettled.clear();
}

QStringList RuleBook::unplayed() const
{
    QStringList rules;
    for (const Entry& entry : entries) {
        if (entry.acted == 0)
            rules.append(describe(entry.rule));
    }
    return rules;
}

QList<Rule> rulesOfLists(const Faults& faults)
{
    QList<Rule> rules;
    for (const QByteArray& mnemonic : mnemonicsOfLists(faults)) {
        Rule rule = on(mnemonic);
        rule.deed = deedOfLists(faults, mnemonic);
        rule.lateMs = faults.lateMs.value(mnemonic, 0);
        rule.shortBytes = faults.shortBytes.value(mnemonic, Rule::wholeReply);
        rules.append(rule);
    }
    return rules;
}

} // namespace emulator
