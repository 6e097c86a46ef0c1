// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/hrf_params_dialog.h"
