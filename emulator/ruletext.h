#pragma once

#include "emulator/rule.h"

#include <QString>

#include <optional>

namespace emulator {

/// The rule as the option that makes it, such as "refuse SPF:01" or "late SAI:01x:times=1=500". A
/// rule that several options make is the list of them: "refuse SEA, late SEA=500"; see `RuleList`.
QString describe(const Rule& rule);

struct ParsedRule
{
    /// Empty if the text is no rule.
    std::optional<Rule> rule;
    /// Why it is none, in words for the user.
    QString error;
};

/// Reads a rule from an option and its value. The option is one of refuse, silent, close-on,
/// half-close-on, reply, late and short. The value is MNEMONIC[:ARGS][:skip=N][:times=N], where
/// ARGS are pairs of hexadecimal digits, where the letter x or y stands for the byte of an axis.
/// Behind it stands "=" and, for reply, its bytes in hexadecimal digits, for late, milliseconds,
/// and for short, the number of bytes.
ParsedRule parseRule(const QString& option, const QString& value);

} // namespace emulator
