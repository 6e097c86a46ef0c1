// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/weights_window.h"
