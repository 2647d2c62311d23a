#pragma once

namespace ifwatch::read {

/// From here on an interrupt (SIGINT) is only noted; a second one ends the process.
void await_interrupts();
[[nodiscard]] bool interrupts_are_awaited();

/// Waits until the descriptor has octets or its end. False when an interrupt came before.
[[nodiscard]] bool wait_for_octets(int fd);

/// Whether an interrupt came.
[[nodiscard]] bool interrupted();

}  // namespace ifwatch::read
