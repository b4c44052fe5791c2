// SPDX-License-Identifier: Apache-2.0
//
// Empty: a target with precompiled headers needs a source.
