// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/cross_validation.h"
