// How many volumes the plots of a run can show.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"

struct PlottedVolumes {
    int measured = 0; ///< so far
    int planned = 0;  ///< in all
};

/// Of several runs the document has the first one's protocol and motion, but no volumes: all of
/// that run count.
[[nodiscard]] inline PlottedVolumes plottedVolumes(const RunReport& report,
                                                   const QtCortivoDoc& document) {
    const int ofHeader = document.project.NrOfVolumes;
    if (document.multiRunDocument)
        return {report.currentVolume >= 0 ? ofHeader : 0, ofHeader};
    return {recordedVolumes(report, document.project), int(document.project.volumes.size())};
}
