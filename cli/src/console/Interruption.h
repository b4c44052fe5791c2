// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// Notices that the user wants the program to end (SIGINT, SIGTERM, SIGHUP), so that a command can stop between two
/// pieces of its work and remove what it began.
///
/// While an object lives the first such signal is only noted, and a second one ends the process as it would have
/// without the object. A signal that the process ignores stays ignored. One object at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();

    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    /// Whether a signal was noted. Any thread may ask.
    bool isRequested() const;

    /// What a shell expects of a program that such a signal has ended: 130, 143 or 129; 0 when none was noted.
    int exitCode() const;
};

} // namespace zav
