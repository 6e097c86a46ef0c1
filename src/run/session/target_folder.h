// The folder into which a run is saved.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"

/// That of the run in memory, or where there is none yet, that of the settings; may be empty.
[[nodiscard]] inline QString targetFolderOf(const QtCortivoDoc* document,
                                            const RunSettings& settings) {
    const bool ofRun = document && !document->project.targetFolder.isEmpty();
    return ofRun ? document->project.targetFolder : settings.TargetFolder;
}
