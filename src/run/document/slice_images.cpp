// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/slice_images.h"

#include "base/memory.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int nrOfSampleValues = 65536;
constexpr int largestSample = nrOfSampleValues - 1;

/// The display window clamped to the range of a sample, at least one value wide. A window of zero
/// width splits the samples into black and white at `low`, like a very narrow one.
struct DisplayWindow {
    int low;
    int high;

    explicit DisplayWindow(const GreyScale& scale)
        : low(std::clamp(scale.low, 0, largestSample)),
          high(std::clamp(scale.high, low + 1, nrOfSampleValues)) {}
};

/// The colours of the samples from `low` to `high`.
std::vector<uint32_t> colorsOfSamples(const GreyScale& scale, const DisplayWindow& window) {
    const auto gradations = scale.table();
    constexpr double last = GreyScale::nrOfGradations - 1;
    const int width = window.high - window.low;
    std::vector<uint32_t> colors(size_t(width) + 1);
    for (int i = 0; i <= width; ++i)
        colors[size_t(i)] = gradations[size_t(double(i) / width * last)];
    return colors;
}

void paintSlice(QImage& image, const int16_t* samples, const DisplayWindow& window,
                const std::vector<uint32_t>& colors) {
    // In local variables, which the pixels written can't change as far as the compiler knows.
    const int width = image.width();
    const auto [low, high] = window;
    const uint32_t* colorOfSample = colors.data();
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
        const int16_t* row = samples + size_t(y) * size_t(width);
        for (int x = 0; x < width; ++x)
            line[x] = colorOfSample[std::clamp(int(uint16_t(row[x])), low, high) - low];
    }
}

/// Paints one slice of the samples into each image; the samples must fill them.
void paintSlices(std::vector<QImage>& images, std::span<const int16_t> samples,
                 const GreyScale& scale, WorkerPool& workers) {
    const DisplayWindow window(scale);
    const std::vector<uint32_t> colors = colorsOfSamples(scale, window);
    workers.forParts(images.size(), [&](size_t slice) {
        QImage& image = images[slice];
        const size_t sliceSamples = size_t(image.width()) * size_t(image.height());
        paintSlice(image, samples.data() + slice * sliceSamples, window, colors);
    });
}

/// Images of this size; none when this number of samples doesn't fill them or memory runs out.
std::vector<QImage> blankSlices(size_t nrOfSamples, const VolumeSize& size) {
    if (size.samples() == 0 || nrOfSamples / size.sliceSamples() < size_t(size.slices) ||
        !memoryIsAvailable(size.samples(), sizeof(uint32_t)))
        return {};
    std::vector<QImage> images;
    images.reserve(size_t(size.slices));
    for (int slice = 0; slice < size.slices; ++slice) {
        QImage image(size.x, size.y, QImage::Format_RGB32);
        if (image.isNull())
            return {};
        images.push_back(std::move(image));
    }
    return images;
}

/// Smallest value at or below which at least `share` of the counted samples lie.
int percentile(const std::vector<uint32_t>& histogram, uint64_t total, double share) {
    const double wanted = share * double(total);
    uint64_t counted = 0;
    for (int value = 1; value < nrOfSampleValues; ++value) {
        counted += histogram[size_t(value)];
        if (double(counted) >= wanted)
            return value;
    }
    return largestSample;
}

} // namespace

std::array<uint32_t, GreyScale::nrOfGradations> GreyScale::table() const {
    std::array<uint32_t, nrOfGradations> colors;
    for (int i = 0; i < nrOfGradations; ++i) {
        uint32_t color = 0xff;
        for (const float channelGain : gain) {
            const float level = float(i) * 255.0f / float(nrOfGradations - 1) * channelGain;
            // With this order of comparison a NaN gain gives black.
            const float limited = level > 0.0f ? std::min(level, 255.0f) : 0.0f;
            color = color << 8 | uint32_t(std::lround(limited));
        }
        colors[size_t(i)] = color;
    }
    return colors;
}

void computeDisplayRange(GreyScale& scale, std::span<const int16_t> samples) {
    constexpr double darkShare = 0.02;
    constexpr double brightShare = 0.995;
    std::vector<uint32_t> histogram(nrOfSampleValues);
    for (const int16_t sample : samples)
        ++histogram[uint16_t(sample)];
    const uint64_t nonZero = samples.size() - histogram[0];
    if (nonZero == 0) {
        scale.low = 0;
        scale.high = 1;
        return;
    }
    scale.low = percentile(histogram, nonZero, darkShare);
    scale.high = std::max(percentile(histogram, nonZero, brightShare), scale.low + 1);
}

void SliceImages::createSlicePixmaps(std::span<const int16_t> samples, const VolumeSize& size) {
    SlicePixmaps = blankSlices(samples.size(), size);
    if (!SlicePixmaps.empty())
        updateSlicePixmaps(samples.first(size.samples()));
}

void SliceImages::createInplanePixmaps(std::span<const int16_t> samples, const VolumeSize& size) {
    GreyScale scale = greyScale;
    computeDisplayRange(scale, samples);
    InplanePixmaps = blankSlices(samples.size(), size);
    paintSlices(InplanePixmaps, samples, scale, callersThread());
}

void SliceImages::updateSlicePixmaps(std::span<const int16_t> samples, WorkerPool& workers) {
    const QSize grid = gridSize();
    if (samples.size() == size_t(grid.width()) * size_t(grid.height()) * SlicePixmaps.size())
        paintSlices(SlicePixmaps, samples, greyScale, workers);
}
