// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/confusion_table.h"
