// The slices of a run with the weights of a trained machine over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
