// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_trial.h"

LiveOptions defaultLiveOptions() {
    LiveOptions options;
    options.trial.preOnset = 1;
    options.trial.postOnset = 8;
    return options;
}
