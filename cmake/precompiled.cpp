// SPDX-License-Identifier: Apache-2.0
//
// Empty: a target needs a source to have precompiled headers.
