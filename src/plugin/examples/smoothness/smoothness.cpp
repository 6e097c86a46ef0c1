// Two looks at the noise of a run, with the Fourier transforms and matrix products of the program.
//
// At each volume, how smooth the noise is: the full width at half maximum (FWHM) of the Gaussian
// that would make white noise as smooth. The difference of two successive volumes shows noise
// without anatomy. If r is the correlation of neighbours along an axis, then in voxels
//
//     FWHM = sqrt(-2 ln 2 / ln r)
//
// since white noise smoothed by a Gaussian with standard deviation s, FWHM = s sqrt(8 ln 2), has
// the correlation exp(-d^2 / (4 s^2)) at the distance d. See Forman et al. (1995), Magnetic
// Resonance in Medicine 33:636-647.
//
// After the run, how the time courses of the ROIs are correlated.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <velo_cortivo_plugin.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

typedef std::array<int, 3> Dimensions; // x, y, z

std::size_t sizeOf(const Dimensions& dims) {
    return std::size_t(dims[0]) * std::size_t(dims[1]) * std::size_t(dims[2]);
}

// The smallest size from n on that transforms are fast for.
int fastSize(int n) {
    for (;; ++n) {
        int rest = n;
        for (int factor : {2, 3, 5, 7})
            while (rest % factor == 0)
                rest /= factor;
        if (rest == 1)
            return n;
    }
}

// Sums over products of neighbours. By the Wiener-Khinchin theorem the autocovariance of a volume
// is the inverse transform of its power spectrum. Planes of zeros are added at the end of each
// axis: for the transform the last plane and the first are neighbours.
class NeighbourSums {
public:
    explicit NeighbourSums(const Dimensions& dims) : dims_(dims) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            padded_[axis] = fastSize(dims[axis] + 1);
        frequencies_ =
            std::size_t(padded_[2]) * std::size_t(padded_[1]) * std::size_t(padded_[0] / 2 + 1);
        values_ = allocate(sizeOf(padded_));
        spectrum_ = allocate(2 * frequencies_);
        fftwf_complex* complex = reinterpret_cast<fftwf_complex*>(spectrum_.get());
        const int nz = padded_[2], ny = padded_[1], nx = padded_[0];
        forward_.reset(t_fftwf_plan_dft_r2c_3d(nz, ny, nx, values_.get(), complex, FFTW_ESTIMATE));
        backward_.reset(t_fftwf_plan_dft_c2r_3d(nz, ny, nx, complex, values_.get(), FFTW_ESTIMATE));
    }

    // Of each voxel with itself, and with the next one along x, y and z.
    std::array<double, 4> of(const std::vector<float>& volume) {
        const std::size_t row = std::size_t(padded_[0]);
        const std::size_t slice = row * std::size_t(padded_[1]);
        for (std::size_t i = 0; i < sizeOf(padded_); ++i)
            values_[i] = 0;
        std::size_t i = 0;
        for (int z = 0; z < dims_[2]; ++z)
            for (int y = 0; y < dims_[1]; ++y)
                for (int x = 0; x < dims_[0]; ++x)
                    values_[std::size_t(z) * slice + std::size_t(y) * row + std::size_t(x)] =
                        volume[i++];

        t_fftwf_execute(forward_.get());
        for (std::size_t k = 0; k < frequencies_; ++k) {
            const float re = spectrum_[2 * k], im = spectrum_[2 * k + 1];
            spectrum_[2 * k] = re * re + im * im;
            spectrum_[2 * k + 1] = 0;
        }
        t_fftwf_execute(backward_.get());
        const double scale = 1.0 / double(sizeOf(padded_)); // the transforms don't divide
        return {
            {scale * values_[0], scale * values_[1], scale * values_[row], scale * values_[slice]}};
    }

private:
    struct Free {
        void operator()(float* memory) const { t_fftwf_free(memory); }
    };
    struct DestroyPlan {
        void operator()(fftwf_plan plan) const { t_fftwf_destroy_plan(plan); }
    };
    typedef std::unique_ptr<float[], Free> Memory;
    typedef std::unique_ptr<fftwf_plan_s, DestroyPlan> Plan;

    static Memory allocate(std::size_t size) {
        return Memory(static_cast<float*>(t_fftwf_malloc(size * sizeof(float))));
    }

    Dimensions dims_;
    Dimensions padded_;
    std::size_t frequencies_;
    Memory values_;
    Memory spectrum_; // real and imaginary parts in turn
    Plan forward_;
    Plan backward_;
};

class Smoothness : public VeloCortivoPlugin {
public:
    bool executeAtLaunch() override {
        tLogText("FWHM of the noise along x, y and z, in voxels:");
        return true;
    }

    void executeAfterVolume() override {
        const int volumes = tGetCurrentTimePoint();
        short** data = tGetTimeCourseData();
        if (volumes < 1 || !data)
            return;
        Dimensions dims = {{0, 0, 0}};
        tGetDimsOfFunctionalData(&dims[0], &dims[1], &dims[2]);
        if (volumes == 1 || dims != dims_)
            startOver(dims, data[0]);
        if (volumes < 2)
            return;

        const std::array<double, 4> sums =
            neighbours_->of(noise(data[volumes - 1], data[volumes - 2]));
        std::ostringstream line = numberStream();
        line << "Volume " << volumes << ":";
        for (std::size_t axis = 1; axis < 4; ++axis)
            line << "  " << fwhm(sums[axis] / pairs_[axis] / (sums[0] / pairs_[0]));
        tLogText(line.str().c_str());
    }

    void executeAfterRun() override {
        const std::size_t rois = std::size_t(tGetNrOfROIs());
        const std::vector<double> correlations = roiCorrelations();
        if (correlations.empty())
            return;
        tLogText("Correlations of the ROI time courses:");
        for (std::size_t row = 0; row < rois; ++row) {
            std::ostringstream line = numberStream();
            for (std::size_t column = 0; column < rois; ++column)
                line << std::setw(7) << correlations[row * rois + column];
            tLogText(line.str().c_str());
        }
    }

private:
    static std::ostringstream numberStream() {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << std::fixed << std::setprecision(2);
        return stream;
    }

    // 0 where neighbours are not alike.
    static double fwhm(double correlation) {
        return correlation > 0 && correlation < 1
                   ? std::sqrt(-2.0 * std::log(2.0) / std::log(correlation))
                   : 0.0;
    }

    // The head is roughly where the first volume is brighter than its mean. The sums of the mask
    // are the numbers of pairs that lie within it.
    void startOver(const Dimensions& dims, const short* first) {
        dims_ = dims;
        neighbours_.reset(new NeighbourSums(dims));
        double mean = 0;
        for (std::size_t i = 0; i < sizeOf(dims); ++i)
            mean += first[i] / double(sizeOf(dims));
        mask_.assign(sizeOf(dims), 0);
        for (std::size_t i = 0; i < mask_.size(); ++i)
            mask_[i] = first[i] > mean ? 1.0f : 0.0f;
        pairs_ = neighbours_->of(mask_);
    }

    // The difference of two volumes within the mask, with the mean 0.
    std::vector<float> noise(const short* volume, const short* before) const {
        double mean = 0;
        std::vector<float> difference(mask_.size());
        for (std::size_t i = 0; i < mask_.size(); ++i) {
            difference[i] = mask_[i] * float(volume[i] - before[i]);
            mean += difference[i] / pairs_[0];
        }
        for (std::size_t i = 0; i < mask_.size(); ++i)
            difference[i] -= mask_[i] * float(mean);
        return difference;
    }

    // ROI by ROI; empty without ROIs. With time courses Z that have the mean 0 and the length 1,
    // one in each row, it is Z times its transpose.
    static std::vector<double> roiCorrelations() {
        const int rois = tGetNrOfROIs(), volumes = tGetCurrentTimePoint();
        if (rois < 1 || volumes < 2)
            return std::vector<double>();
        std::vector<double> courses;
        for (int roi = 0; roi < rois; ++roi) {
            const std::vector<double> course = standardized(timeCourse(roi, volumes));
            courses.insert(courses.end(), course.begin(), course.end());
        }
        std::vector<double> correlations(std::size_t(rois) * std::size_t(rois));
        t_intel_matrix_matrix_mult_d(courses.data(), courses.data(), correlations.data(), rois,
                                     rois, volumes, false, true);
        return correlations;
    }

    static std::vector<double> timeCourse(int roi, int volumes) {
        std::vector<double> course(std::size_t(volumes), 0.0);
        int x = 0, y = 0, z = 0;
        for (int voxel = 0; tGetCoordsOfVoxelOfROI(roi, voxel, &x, &y, &z); ++voxel)
            for (int volume = 0; volume < volumes; ++volume)
                course[std::size_t(volume)] += tGetValueOfVoxelAtTime(x, y, z, volume);
        return course; // the sum: its scale doesn't matter here
    }

    static std::vector<double> standardized(std::vector<double> course) {
        double mean = 0, squares = 0;
        for (double value : course)
            mean += value / double(course.size());
        for (double& value : course) {
            value -= mean;
            squares += value * value;
        }
        for (double& value : course)
            value = squares > 0 ? value / std::sqrt(squares) : 0.0;
        return course;
    }

    Dimensions dims_ = {{0, 0, 0}};
    std::vector<float> mask_; // 1 within, 0 outside
    std::unique_ptr<NeighbourSums> neighbours_;
    std::array<double, 4> pairs_ = {{0, 0, 0, 0}};
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Smoothness";
}

VELO_CORTIVO_EXPORT const char* getPluginDescription() {
    return "Estimates how smooth the noise is, and correlates the ROIs after the run.";
}

VELO_CORTIVO_EXPORT const char* getAuthor() {
    return "Velo-Cortivo developers";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new Smoothness;
}
