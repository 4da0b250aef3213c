#include "emulator/rulelist.h"

#include "emulator/ruletext.h"
#include "emulator/text.h"

#include <algorithm>

namespace emulator {

namespace {

bool haveSamePattern(const Rule& left, const Rule& right)
{
    return left.prefix == right.prefix && left.skip == right.skip && left.times == right.times;
}

} // namespace

RuleList::Part RuleList::partOf(const Rule& rule)
{
    if (rule.deed != Deed::CarryOut)
        return Part::Deed;
    return rule.shortBytes == Rule::wholeReply ? Part::Lateness : Part::Length;
}

RuleList::Entry* RuleList::lastWithPatternOf(const Rule& rule)
{
    const auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry& entry) {
        return haveSamePattern(entry.rule, rule);
    });
    return found == entries.rend() ? nullptr : &*found;
}

QString RuleList::add(const QString& option, const QString& value)
{
    const ParsedRule parsed = parseRule(option, value);
    if (!parsed.rule)
        return parsed.error;
    const Rule& said = *parsed.rule;
    const Part part = partOf(said);
    Entry* entry = lastWithPatternOf(said);
    const bool isTaken = entry && entry->options.contains(part);
    const bool endsSometime = said.times > 0;
    if (isTaken && !endsSometime) {
        return Text::tr("\"%1\" and \"%2\" can not both act")
            .arg(entry->options.value(part), describe(said));
    }
    if (!entry || isTaken) {
        entries.append({said, {{part, describe(said)}}});
        return {};
    }
    entry->options.insert(part, describe(said));
    switch (part) {
    case Part::Deed:
        entry->rule.deed = said.deed;
        entry->rule.reply = said.reply;
        break;
    case Part::Lateness:
        entry->rule.lateMs = said.lateMs;
        break;
    case Part::Length:
        entry->rule.shortBytes = said.shortBytes;
        break;
    }
    return {};
}

QList<Rule> RuleList::rules() const
{
    QList<Rule> rules;
    for (const Entry& entry : entries)
        rules.append(entry.rule);
    return rules;
}

} // namespace emulator
