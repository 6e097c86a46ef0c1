// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/svm_options_dialog.h"
