// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// Tells the TensorFlow runtime to compute in the thread that calls it, with no threads of its own: for a program that
/// gives each of its own threads a network. What the user's environment says of the runtime's threads stays.
///
/// The runtime reads this when its first network is loaded; later calls have no effect. On chromatograms of 1,000
/// points, two threads get three times the networks run in a second that they get with the runtime's own threads.
void keepRuntimeInCallingThreads();

/// How many cores this process may use; at least 1.
int usableCores();

} // namespace zav
