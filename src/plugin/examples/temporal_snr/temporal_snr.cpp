// A map that grows with the run: the temporal signal-to-noise ratio of each voxel, the mean of its
// samples so far over their standard deviation (with n - 1). Slow drifts count as noise.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <velo_cortivo_plugin.h>

#include <cmath>
#include <cstddef>
#include <vector>

namespace {

class TemporalSNR : public VeloCortivoPlugin {
public:
    bool initPlugin() override {
        if (!tRegisterMaps(1))
            return false;
        tSetPluginMapName(0, "Temporal SNR");
        tSetPluginMapsThreshold(20.0f);
        tShowPluginMaps(true);
        return true;
    }

    bool executeAtLaunch() override {
        tLogText("The map appears with the second volume of the next run.");
        return true;
    }

    void executeAfterVolume() override {
        const int volumes = tGetCurrentTimePoint();
        short** data = tGetTimeCourseData();
        if (volumes < 1 || !data)
            return;
        int dimX = 0, dimY = 0, dimZ = 0;
        tGetDimsOfFunctionalData(&dimX, &dimY, &dimZ);
        const std::size_t voxels = std::size_t(dimX) * std::size_t(dimY) * std::size_t(dimZ);
        if (volumes <= added_ || voxels != sums_.size())
            startOver(voxels);
        // One volume as a rule; more if the plug-in was launched during the run.
        for (; added_ < volumes; ++added_)
            add(data[added_]);
        // Null where the run was prepared before the plug-in registered its map.
        if (float* map = tGetPluginMaps()) {
            fill(map);
            tUpdateMapList();
        }
    }

private:
    void startOver(std::size_t voxels) {
        added_ = 0;
        sums_.assign(voxels, 0.0);
        sumsOfSquares_.assign(voxels, 0.0);
    }

    // Samples are whole numbers, so the sums are exact.
    void add(const short* samples) {
        for (std::size_t i = 0; i < sums_.size(); ++i) {
            const double sample = samples[i];
            sums_[i] += sample;
            sumsOfSquares_[i] += sample * sample;
        }
    }

    // 0 for voxels that don't vary, and everywhere at the first volume.
    void fill(float* map) const {
        const double n = added_;
        for (std::size_t i = 0; i < sums_.size(); ++i) {
            const double mean = sums_[i] / n;
            const double squares = sumsOfSquares_[i] - mean * sums_[i];
            map[i] = squares > 0 ? float(mean / std::sqrt(squares / (n - 1))) : 0.0f;
        }
    }

    int added_ = 0; // volumes in the sums
    std::vector<double> sums_;
    std::vector<double> sumsOfSquares_;
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Temporal SNR";
}

VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Maps the mean of each voxel over its standard deviation, from the volumes so far.";
}

VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "Velo-Cortivo developers";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new TemporalSNR;
}
