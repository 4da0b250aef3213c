#pragma once

/// How bringing up a link, and finding out who is behind it, ended.
enum class LinkOutcome {
    /// The link did not come up, or was lost again.
    NoLink,
    /// Somebody answers, but not the controller that was expected.
    NotIdentified,
    Up,
};
