// The constants of a response that was fitted to a person.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
