// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"

#include <algorithm>

namespace {

/// Sets each pixel to the larger of itself and the map's value as shown. The state is handled
/// outside the loop so that the loop vectorises.
template<typename ValueAsShown>
void takeLargest(std::vector<float>& combined, const float* map, ValueAsShown shown) {
    float* pixels = combined.data();
    const size_t count = combined.size();
    for (size_t i = 0; i < count; ++i) {
        const float value = shown(map[i]);
        pixels[i] = value > pixels[i] ? value : pixels[i];
    }
}

/// The largest of the shown maps' values, at least 0, for each pixel of a slice.
void combineMaps(const StatisticalMaps& maps, int slice, std::vector<float>& combined) {
    combined.assign(maps.size.sliceSamples(), 0.0f);
    for (int i = 0; i < maps.NrOfShownMaps; ++i) {
        const float* map = maps.map(i).data() + size_t(slice) * maps.size.sliceSamples();
        const int state = maps.states[size_t(i)];
        if (state == 3)
            takeLargest(combined, map, [](float value) { return std::fabs(value); });
        else if (state == 2)
            takeLargest(combined, map, [](float value) { return -value; });
        else
            takeLargest(combined, map, [](float value) { return value; });
    }
}

bool anyReaches(const std::vector<float>& values, float threshold) {
    int any = 0;
    for (const float value : values)
        any |= int(value >= threshold);
    return any != 0;
}

/// The label of a pixel that passes. `row` points at the pixel, `above` at the pixel over it;
/// labels of pixels that don't pass, and of the border, are 0.
int labelOfPixel(const int* row, const int* above, ClusterScratch& scratch) {
    int label = row[-1];
    for (int offset = -1; offset <= 1; ++offset) {
        const int upper = above[offset];
        if (upper == 0)
            continue;
        if (label == 0)
            label = upper;
        else if (upper != label && scratch.links[size_t(upper)] == 0)
            scratch.links[size_t(upper)] = label;
    }
    if (label == 0) {
        label = int(scratch.links.size());
        scratch.links.push_back(0);
        scratch.sizes.push_back(0);
    }
    return label;
}

/// Labels in raster order; scratch.sizes gets the number of pixels of each label. The tables grow
/// with the labels, so that no image can overflow them.
void labelSlice(const VolumeSize& size, float threshold, ClusterScratch& scratch) {
    const size_t sizeX = size_t(size.x);
    const size_t stride = sizeX + 2;
    scratch.labels.assign(stride * (size_t(size.y) + 1), 0);
    scratch.links.assign(1, 0);
    scratch.sizes.assign(1, 0);
    for (size_t y = 0; y < size_t(size.y); ++y) {
        const float* values = scratch.combined.data() + y * sizeX;
        int* row = scratch.labels.data() + (y + 1) * stride + 1;
        for (size_t x = 0; x < sizeX; ++x) {
            if (values[x] < threshold)
                continue;
            row[x] = labelOfPixel(row + x, row + x - stride, scratch);
            ++scratch.sizes[size_t(row[x])];
        }
    }
}

/// Follows the links of one label to the end of the chain, to a label already resolved, or into a
/// loop, whose smallest label is used. All labels on the way get that result.
void resolveLabel(int start, ClusterScratch& scratch) {
    constexpr int onThisWay = -1;
    std::vector<int>& roots = scratch.roots;
    const std::vector<int>& links = scratch.links;
    int label = start;
    while (roots[size_t(label)] == 0 && links[size_t(label)] != 0) {
        roots[size_t(label)] = onThisWay;
        label = links[size_t(label)];
    }
    int root = roots[size_t(label)];
    if (root == 0) {
        root = label;
        roots[size_t(label)] = root;
    } else if (root == onThisWay) {
        root = label;
        for (int next = links[size_t(label)]; next != label; next = links[size_t(next)])
            root = std::min(root, next);
    }
    for (label = start; roots[size_t(label)] == onThisWay; label = links[size_t(label)])
        roots[size_t(label)] = root;
}

/// Replaces the pixel count of each label in scratch.sizes by that of its cluster.
void mergeLabels(ClusterScratch& scratch) {
    const size_t labels = scratch.links.size();
    scratch.roots.assign(labels, 0);
    for (size_t label = 1; label < labels; ++label) {
        if (scratch.roots[label] == 0)
            resolveLabel(int(label), scratch);
    }
    for (size_t label = 1; label < labels; ++label) {
        const size_t root = size_t(scratch.roots[label]);
        if (root != label)
            scratch.sizes[root] += scratch.sizes[label];
    }
    for (size_t label = 1; label < labels; ++label)
        scratch.sizes[label] = scratch.sizes[size_t(scratch.roots[label])];
}

void writeSizes(const VolumeSize& size, const ClusterScratch& scratch, std::vector<int>& result) {
    const size_t sizeX = size_t(size.x);
    const size_t stride = sizeX + 2;
    for (size_t y = 0; y < size_t(size.y); ++y) {
        const int* labels = scratch.labels.data() + (y + 1) * stride + 1;
        int* sizes = result.data() + y * sizeX;
        for (size_t x = 0; x < sizeX; ++x)
            sizes[x] = scratch.sizes[size_t(labels[x])];
    }
}

/// The sizes of one slice.
void sizeClusters(const StatisticalMaps& maps, int slice, float threshold, ClusterScratch& scratch,
                  std::vector<int>& sizes) {
    sizes.assign(maps.size.sliceSamples(), 0);
    if (slice == 0 || slice == maps.size.slices - 1)
        return;
    combineMaps(maps, slice, scratch.combined);
    if (!anyReaches(scratch.combined, threshold))
        return;
    labelSlice(maps.size, threshold, scratch);
    mergeLabels(scratch);
    writeSizes(maps.size, scratch, sizes);
}

} // namespace

void computeClusterSizes(StatisticalMaps& maps, OverlayThresholds& thresholds, bool conjunction,
                         WorkerPool& workers) {
    thresholds.Threshold = std::max(thresholds.Threshold, 0.0f);
    thresholds.ColorMaxThreshold = std::max(thresholds.ColorMaxThreshold, 0.0f);
    thresholds.ClusterSizePixels = std::max(thresholds.ClusterSizePixels, 1);
    maps.NrOfShownMaps = maps.nrOfMapsToShow(conjunction);
    if (maps.NrOfShownMaps == 0)
        return;

    maps.ClusterSizeSlices.resize(size_t(maps.size.slices));
    maps.clusterScratch.resize(size_t(workers.nrOfThreads()));
    workers.forParts(maps.ClusterSizeSlices.size(), [&](size_t slice, size_t thread) {
        sizeClusters(maps, int(slice), thresholds.Threshold, maps.clusterScratch[thread],
                     maps.ClusterSizeSlices[slice]);
    });
}
