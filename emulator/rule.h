#pragma once

#include <QByteArray>

namespace emulator {

/// What a controller does with a command.
enum class Deed {
    CarryOut,  ///< What the command says, as without a rule.
    Refuse,    ///< Answers 0x01 ';'. The command has no effect.
    Ignore,    ///< No answer and no effect.
    Close,     ///< Closes the link. No answer and no effect, also of commands that came with it.
    HalfClose, ///< As `Close`, but only the controller's side of the link is closed. A host that
               ///< goes on sending is obeyed, but not answered.
    Reply,     ///< Answers the bytes of the rule. The command has no effect.
};

/// What a controller does with commands that begin with certain bytes. Rules stand in a
/// `RuleBook`, which counts for them.
struct Rule
{
    static constexpr int wholeReply = -1;

    /// What is sent of these bytes.
    QByteArray cut(const QByteArray& bytes) const;

    /// The bytes with which a command's frame begins: at least its mnemonic.
    QByteArray prefix;
    /// Number of commands that pass before the rule acts for the first time.
    int skip = 0;
    /// How often the rule acts; 0 for always.
    int times = 0;
    Deed deed = Deed::CarryOut;
    /// The deed is done this much later. Commands that arrive before that wait.
    int lateMs = 0;
    /// Number of bytes of the reply that are sent, or `wholeReply`.
    int shortBytes = wholeReply;
    /// Of `Deed::Reply`.
    QByteArray reply;
};

bool operator==(const Rule& left, const Rule& right);

/// A rule that is being written, in one line: `on("SPF\1").after(2).times(1).refuse()`. All
/// else is as in a `Rule` that was just made: `on("GSF").late(500)` carries out every GSF late.
class RuleDraft final
{
public:
    explicit RuleDraft(const QByteArray& prefix) { rule.prefix = prefix; }
    operator Rule() const { return rule; }

    RuleDraft& after(int skippedCommands);
    RuleDraft& times(int count);
    RuleDraft& once() { return times(1); }
    RuleDraft& late(int milliseconds);
    RuleDraft& cutTo(int bytes);

    RuleDraft& carryOut() { return act(Deed::CarryOut); }
    RuleDraft& refuse() { return act(Deed::Refuse); }
    RuleDraft& ignore() { return act(Deed::Ignore); }
    RuleDraft& close() { return act(Deed::Close); }
    RuleDraft& halfClose() { return act(Deed::HalfClose); }
    /// Exactly these bytes.
    RuleDraft& reply(const QByteArray& bytes);

private:
    RuleDraft& act(Deed deed);

    Rule rule;
};

/// Begins a rule for commands whose frame begins with `prefix`, at least a mnemonic.
RuleDraft on(const QByteArray& prefix);

} // namespace emulator
