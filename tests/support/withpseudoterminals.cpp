// with_pseudo_terminals COMMAND...
// Becomes the command where pseudo terminals can be made, and otherwise says why not and ends with
// the status that the build gives to skipped tests. For commands that crash without them.

#include "support/pseudoterminals.h"

#include <cstdio>
#include <unistd.h>

int main(int count, char** words)
{
    constexpr int skipped = 77;
    constexpr int notFound = 127;
    const QString problem = pseudoTerminalProblem();
    if (!problem.isEmpty()) {
        std::puts(qPrintable(problem));
        return skipped;
    }
    if (count > 1)
        ::execvp(words[1], words + 1);
    std::perror("with_pseudo_terminals");
    return notFound;
}
