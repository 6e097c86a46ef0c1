// Functions as the probe's library finds them, for tests that call them one by one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <velo_cortivo_plugin.h>

struct ProbeFunctions {
    decltype(&tLogText) logText = tLogText;
    decltype(&tMessageBox) messageBox = tMessageBox;
    decltype(&tYesNoMessageBox) yesNoMessageBox = tYesNoMessageBox;
    decltype(&tGetIntegerInput) getIntegerInput = tGetIntegerInput;
    decltype(&tGetFloatInput) getFloatInput = tGetFloatInput;
    decltype(&tGetTextInput) getTextInput = tGetTextInput;
    decltype(&tGetOpenFileName) getOpenFileName = tGetOpenFileName;
    decltype(&tGetSaveFileName) getSaveFileName = tGetSaveFileName;
    decltype(&tRegisterMaps) registerMaps = tRegisterMaps;
    decltype(&tSetPluginMapName) setPluginMapName = tSetPluginMapName;
    decltype(&tSetDisplayStatusOfMap) setDisplayStatusOfMap = tSetDisplayStatusOfMap;
    decltype(&tSetPluginMapsThreshold) setPluginMapsThreshold = tSetPluginMapsThreshold;
    decltype(&tShowPluginMaps) showPluginMaps = tShowPluginMaps;
    decltype(&tUpdateMapList) updateMapList = tUpdateMapList;
    decltype(&tGetPluginMaps) getPluginMaps = tGetPluginMaps;
};
