// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/elimination_work.h"
