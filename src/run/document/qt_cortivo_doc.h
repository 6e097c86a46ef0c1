// The document: all data of one run, as independent parts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "run/document/anatomy.h"
#include "run/document/plugin_maps.h"
#include "run/document/slice_images.h"
#include "run/document/slice_mosaic_layout.h"
#include "run/document/volume_ledger.h"
#include "run/protocol/real_time_protocol.h"
#include "run/protocol/tdat_protocol.h"
#include "run/protocol/volume_tables.h"
#include "stats/contrasts.h"
#include "stats/design_matrix.h"
#include "stats/incremental_glm.h"
#include "stats/overlay_colors.h"
#include "stats/statistical_maps.h"
#include "stats/whole_run_model.h"
#include "volume/fmr_project.h"
#include "volume/inplane_scan.h"
#include "volume/motion_correction.h"
#include "volume/smoothing.h"

#include <vector>

/// What the settings of a run say on its design. The settings file of another run may be current
/// while this one is in memory.
struct ModelPlan {
    int nrOfVolumes = 0; ///< to be analysed; a run that ends early has fewer
    int DriftConfoundPredictors = 1;
};

/// Owns the data of one run. Algorithms are passed the parts they need, never the document.
class QtCortivoDoc {
public:
    enum class Kind { Functional, Anatomical };

    explicit QtCortivoDoc(Kind kind) : kind_(kind) {}
    QtCortivoDoc(const QtCortivoDoc&) = delete;
    QtCortivoDoc& operator=(const QtCortivoDoc&) = delete;

    [[nodiscard]] Kind kind() const { return kind_; }

    FMRProject project;
    Volume workingVolume; ///< scratch memory for one volume
    MotionCorrection motion;
    SpatialSmoothing smoothing;
    StimulationProtocol protocol;
    RealTimeProtocol realTimeProtocol; ///< of a run with such a protocol: its file and state
    TDATProtocol tdatProtocol;         ///< likewise
    VolumeTables volumeTables;         ///< of the protocol as far as it is known
    DesignMatrix design;
    ModelPlan plan;
    ContrastDefinitions contrasts;
    BrainMask mask;
    GLMState glm;                ///< updated during a run
    WholeRunModel wholeRunModel; ///< of the complete run, or of the runs of a multi-run project
    /// Of several runs: project, protocol and motion are the first one's, without volumes.
    bool multiRunDocument = false;
    StatisticalMaps maps;
    PluginMapValues pluginMaps;
    Regions regions;
    /// What the feedback display begins with: of the file of regions that was loaded last.
    FeedbackMaxima DefaultMaxPSC = defaultMaxPSC;

    SliceImages slices;
    InplaneScan inplanes; ///< empty if the run has none
    SliceMosaicLayout mosaic;
    Anatomy anatomy; ///< of the anatomical document
    OverlayColors overlayColors;
    VolumeLedger ledger; ///< times of the volumes; empty of a run that was not measured
    bool SignificanceColorCoding = false;

    /// Recomputes the colour tables after a change of contrasts or of the colour coding.
    void updateOverlayColors();
    /// The parts that the model update needs.
    [[nodiscard]] GLMRun glmRun() { return {project, design, contrasts, mask, glm, maps}; }

private:
    Kind kind_;
};
