// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav::terminal {

/// Whether a person reads what the program writes there.
bool standardOutputIsTerminal();
bool standardErrorIsTerminal();

} // namespace zav::terminal
