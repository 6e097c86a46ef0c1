// Memory that was freed, and counts as available only once the system has it back.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Gives what was freed back to the system, which the allocator may keep for later. Only then does
/// availableMemoryBytes() count it.
void returnFreedMemory();
