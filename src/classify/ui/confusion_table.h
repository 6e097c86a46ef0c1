// How often the trials of each class were taken for each class.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
