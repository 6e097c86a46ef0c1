// The run in memory as the letter decoder sees it: the curves of its regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_files.h"
#include "run/session/response_files.h"
#include "run/session/target_folder.h"

struct RunReport;

class DecodedRun {
public:
    DecodedRun(const RunSettings& settings, const RunReport& report)
        : settings_(settings), report_(report) {}

    /// Null when there is no document.
    void setDocument(QtCortivoDoc* document) { document_ = document; }
    [[nodiscard]] bool hasDocument() const { return document_ != nullptr; }
    /// Whether volumes of it have been recorded.
    [[nodiscard]] bool isInMemory() const { return lastVolume() >= 0; }
    /// Its volumes, or those that the settings announce.
    [[nodiscard]] int nrOfTimePoints() const;
    /// Its ROIs, or all that can be decoded where it has none, or too few or too many.
    [[nodiscard]] CurvesSize size() const;
    /// Whether it has 3 to 6 ROIs, and this number at least.
    [[nodiscard]] bool hasROIs(int expected) const;
    /// Of the volume recorded last, from 0; -1 without any.
    [[nodiscard]] int lastVolume() const;
    /// Of the first `nrOfROIs` regions, of the volumes 0 to `volume`. There must be a document.
    [[nodiscard]] ROICurves curves(int nrOfROIs, int volume) const;
    /// All regions and the protocol. There must be a document.
    [[nodiscard]] TrainingRun training() const;

    [[nodiscard]] QString targetFolder() const { return targetFolderOf(document_, settings_); }

private:
    [[nodiscard]] int nrOfRegions() const { return document_ ? document_->regions.count() : 0; }

    const RunSettings& settings_;
    const RunReport& report_;
    QtCortivoDoc* document_ = nullptr;
};
