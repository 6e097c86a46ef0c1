// The options of training: scaling, parameters, the search for C.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
