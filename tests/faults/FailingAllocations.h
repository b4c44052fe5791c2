// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Allocations that fail: malloc, calloc, realloc and operator new of the whole process, replaced.
///
/// Only those count that our code asks for, itself or through Qt, the standard library or another library that it
/// calls. Those of TensorFlow do not, since it ends the process when it gets no memory, nor those of OpenSSL (3.0),
/// which crashes where it gets none to set itself up, nor those of the C library and the dynamic linker for themselves
/// or for a library that is being loaded.
namespace failingAllocations {

/// Which allocations fail, counted from 1 at this call: the `first`, and the later ones too. 0: none, they are only
/// counted. `ofThisThread`: those of other threads are neither counted nor failed.
void arm(long first, bool laterOnesToo, bool ofThisThread);

/// All succeed again. How many there were since `arm`.
long disarm();

/// How many of them failed.
long failedCount();

} // namespace failingAllocations
