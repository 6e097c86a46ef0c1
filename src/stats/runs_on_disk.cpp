// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "stats/multi_study_design.h"
#include "volume/fmr_file.h"
#include "volume/stc_slice_reader.h"

namespace {

/// Slices and matrix of two runs of one model; false after a message.
bool sizesAgree(const FMRHeader& first, const FMRHeader& other) {
    if (other.NrOfSlices != first.NrOfSlices) {
        showCritical("ERROR: Different number of slices of functional data files!");
        return false;
    }
    if (other.size() != first.size()) {
        showCritical("ERROR: Different image resolution of functional data files!");
        return false;
    }
    return true;
}

/// One slice of all volumes of all runs.
class RunsOnDisk : public SliceSource {
public:
    /// False after a message.
    [[nodiscard]] bool open(const MultiStudyList& list) {
        size_t count = 0;
        for (const GLMStudy& study : list.studies) {
            std::unique_ptr<STCSliceReader> run = STCSliceReader::open(study.studyFile);
            if (!run || (!runs_.empty() && !sizesAgree(runs_.front()->header(), run->header())))
                return false;
            count += run->samplesOfSlice();
            runs_.push_back(std::move(run));
        }
        if (samples_.allocate(count))
            return true;
        showCritical("ERROR: Insufficient memory for creating GLM slice time courses!");
        return false;
    }

    [[nodiscard]] bool loadSlice(int slice, std::span<const int16_t*> points) override {
        std::span<int16_t> free = samples_.span();
        size_t point = 0;
        for (const std::unique_ptr<STCSliceReader>& run : runs_) {
            const std::span<int16_t> samples = free.first(run->samplesOfSlice());
            if (!run->readSlice(slice, samples))
                return false;
            for (int volume = 0; volume < run->header().NrOfVolumes; ++volume, ++point)
                if (point < points.size())
                    points[point] = samples.data() + size_t(volume) * run->header().sliceSamples();
            free = free.subspan(samples.size());
        }
        if (point == points.size())
            return true;
        // The header of a run was replaced after the design had been made from it.
        showCritical("ERROR: Different number of time points between design matrix and data "
                     "files!");
        return false;
    }

private:
    std::vector<std::unique_ptr<STCSliceReader>> runs_;
    ZeroedBuffer<int16_t> samples_;
};

} // namespace

bool readStudyHeaders(const MultiStudyList& list, std::vector<FMRHeader>& headers) {
    headers.clear();
    for (const GLMStudy& study : list.studies) {
        FMRHeader& header = headers.emplace_back();
        if (!readFMRHeader(study.studyFile, header) || !sizesAgree(headers.front(), header))
            return false;
    }
    if (headers.empty())
        showCritical("ERROR: The multi-study design lists no runs!");
    return !headers.empty();
}

std::unique_ptr<SliceSource> openRunsOnDisk(const MultiStudyList& list) {
    auto runs = std::make_unique<RunsOnDisk>();
    if (!runs->open(list))
        return nullptr;
    return runs;
}
