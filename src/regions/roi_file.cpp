// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/roi_file.h"

#include "base/file_writing.h"
#include "base/keyed_text_reader.h"
#include "base/messages.h"
#include "base/number_text.h"
#include "base/paths.h"
#include "regions/region_time_courses.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int oldestVersion = 3;
constexpr int newestVersion = 5;

/// Numbers of the file count from 1.
int fromZero(int value) {
    return value > std::numeric_limits<int>::min() ? value - 1 : value;
}

/// Walks over the text up to the first fault.
class RoiReader {
public:
    RoiReader(const QString& text, const VolumeSize& size, SavedRegions& saved)
        : text_(text), size_(size), saved_(saved) {}

    RoiFileResult read() {
        saved_ = SavedRegions();
        const int nrOfWindows = readHeader();
        for (int window = 0; window < nrOfWindows && good(); ++window)
            readWindow();
        if (!good())
            saved_.regions.clear();
        saved_.fault = text_.fault();
        return good() ? RoiFileResult::Ok : failure_;
    }

private:
    [[nodiscard]] bool good() const { return text_.good(); }

    void fail(const QString& fault, RoiFileResult failure = RoiFileResult::Damaged) {
        if (!good())
            return;
        text_.fail(fault);
        failure_ = failure;
    }

    bool nextIs(const char* key) { return text_.nextIs(key); }
    int integer() { return text_.integer(); }
    int integerAfter(const char* key) { return text_.integerAfter(key); }

    /// The number of windows.
    int readHeader() {
        saved_.fileVersion = integerAfter("FileVersion:");
        if (good() && (saved_.fileVersion < oldestVersion || saved_.fileVersion > newestVersion))
            fail(QStringLiteral("unknown version"), RoiFileResult::IncompatibleVersion);
        withVoxels_ = integerAfter("SaveVoxelsInROIs:") != 0;
        // What the regions bring along is seen from their own keys.
        if (nextIs("SaveSortedVoxelList:"))
            integer();
        if (nextIs("SaveROIMaxPSC:"))
            integer();
        const int nrOfWindows = integerAfter("NrOfTCPlots:");
        if (nrOfWindows < 0)
            fail(QStringLiteral("a negative number of regions"));
        return nrOfWindows;
    }

    void readWindow() {
        const size_t first = saved_.regions.size();
        const int nrOfTCs = integerAfter("NrOfTCs:");
        if (nrOfTCs < 0)
            fail(QStringLiteral("a negative number of time courses"));
        for (int tc = 0; tc < nrOfTCs && good(); ++tc)
            readTimeCourse();
        if (!nextIs("MaxPSC:"))
            return;
        const auto maxPSC = float(text_.real());
        for (size_t i = first; i < saved_.regions.size() && std::isfinite(maxPSC); ++i)
            saved_.regions[i].MaxPSC = maxPSC;
    }

    void readTimeCourse() {
        SavedRegion region;
        VoxelRectangle& rectangle = region.rectangle;
        rectangle.slice = fromZero(integerAfter("FromSlice:"));
        rectangle.left = fromZero(integerAfter("Left:"));
        rectangle.right = fromZero(integerAfter("Right:"));
        rectangle.top = fromZero(integerAfter("Top:"));
        rectangle.bottom = fromZero(integerAfter("Bottom:"));
        if (withVoxels_)
            readVoxels(region);
        if (nextIs("TopVoxelRatio:"))
            region.TopVoxelRatio = std::clamp(float(integer()) / 100.0f, 0.0f, 1.0f);
        if (nextIs("TopVoxelSelectionMode:"))
            region.TopVoxelSelectionMode = integer();
        if (withVoxels_ && nextIs("SortedVoxelList:"))
            readSortedList(region.SortedVoxelList);
        if (saved_.regions.size() == maximumSavedRegions)
            fail(QStringLiteral("more than %1 regions").arg(maximumSavedRegions));
        if (!region.voxels || region.voxels->size() != 0)
            saved_.regions.push_back(std::move(region));
        else if (region.voxelsOutside != 0)
            ++saved_.regionsOutside;
    }

    [[nodiscard]] int nrOfCoordinates() const { return saved_.fileVersion == 3 ? 2 : 3; }

    void readVoxels(SavedRegion& region) {
        const int listed = integerAfter("NrOfVoxels:");
        const int shortestVoxel = 2 * nrOfCoordinates(); // a digit and a blank each
        if (listed < 0 || !text_.textHolds(listed, shortestVoxel))
            fail(QStringLiteral("%1 voxels are stated, which the file does not hold").arg(listed));
        else if (size_t(listed) > size_.samples())
            fail(QStringLiteral("a region of %1 voxels, more than the volumes of the run have")
                     .arg(listed));
        else if (!memoryIsAvailable(size_t(listed), 4 * sizeof(int)))
            fail(QStringLiteral("not enough memory"), RoiFileResult::OutOfMemory);
        if (!good())
            return;
        VoxelList& voxels = region.voxels.emplace();
        for (std::vector<int>* const list : {&voxels.x, &voxels.y, &voxels.z})
            list->reserve(size_t(listed));
        newPositions_.assign(size_t(listed), leftOut);
        for (int& position : newPositions_) {
            if (!good())
                return;
            const int x = integer();
            const int y = integer();
            const int z = nrOfCoordinates() == 3 ? integer() : region.rectangle.slice;
            if (isInside(size_, x, y, z)) {
                position = int(voxels.size());
                voxels.append(x, y, z);
            } else {
                ++region.voxelsOutside;
            }
        }
    }

    /// As many positions in the list as the file has voxels in it.
    void readSortedList(std::vector<int>& sorted) {
        std::vector<bool> named(newPositions_.size());
        bool valid = true;
        for (size_t i = 0; i < named.size() && good(); ++i) {
            const int position = integer();
            valid = valid && position >= 0 && size_t(position) < named.size() &&
                    !named[size_t(position)];
            if (!valid)
                continue;
            named[size_t(position)] = true;
            if (newPositions_[size_t(position)] != leftOut)
                sorted.push_back(newPositions_[size_t(position)]);
        }
        if (!valid)
            sorted.clear();
    }

    static constexpr int leftOut = -1;

    KeyedTextReader text_;
    const VolumeSize& size_;
    SavedRegions& saved_;
    bool withVoxels_ = false;
    std::vector<int> newPositions_; ///< for each listed voxel of the region that is being read
    RoiFileResult failure_ = RoiFileResult::Damaged;
};

bool listIsWhole(const RegionOfInterest& region) {
    return region.SortedVoxelList.size() == region.voxels.size();
}

QByteArray voxelLines(const VoxelList& voxels) {
    QByteArray text = formatted("NrOfVoxels:            %i\n", int(voxels.size()));
    constexpr qsizetype lineLength = 12;
    text.reserve(text.size() + lineLength * qsizetype(voxels.size()));
    for (size_t i = 0; i < voxels.size(); ++i) {
        appendNumber(text, 0, 3, voxels.x[i]);
        appendNumber(text, 1, 3, voxels.y[i]);
        appendNumber(text, 1, 3, voxels.z[i]);
        text += '\n';
    }
    return text;
}

QByteArray rankingLines(const RegionOfInterest& region) {
    QByteArray text =
        formatted("TopVoxelRatio:         %i\nTopVoxelSelectionMode: %i\nSortedVoxelList:      ",
                  int(std::lround(region.TopVoxelRatio * 100.0f)), region.TopVoxelSelectionMode);
    for (const int position : region.SortedVoxelList)
        appendNumber(text, 1, 0, position);
    return text + '\n';
}

/// Says what of a file was left out.
void reportVoxelsOutside(const QString& fileName, const SavedRegions& saved) {
    int voxels = 0;
    for (const SavedRegion& region : saved.regions)
        voxels += region.voxelsOutside;
    if (voxels == 0 && saved.regionsOutside == 0)
        return;
    showModelessWarning(
        QStringLiteral("WARNING: Not all of the regions-of-interest file \"%1\" fits the "
                       "volumes of this run. Left out: %2 regions, and %3 voxels of the "
                       "other regions.")
            .arg(fileName)
            .arg(saved.regionsOutside)
            .arg(voxels));
}

/// The display has maxima for three regions.
double maximumOf(const FeedbackMaxima& maxima, int region) {
    return double(size_t(region) < maxima.size() ? maxima[size_t(region)] : defaultMaxPSC[0]);
}

} // namespace

RoiFileResult parseROIFile(const QString& text, const VolumeSize& size, SavedRegions& saved) {
    return RoiReader(text, size, saved).read();
}

QByteArray roiFileText(const Regions& regions, const RegionOptions& options) {
    bool withRanking = options.BestVoxelSelection;
    for (int i = 0; i < regions.count(); ++i)
        withRanking = withRanking && listIsWhole(regions[i]);
    QByteArray text = formatted("FileVersion:           %i\n\n"
                                "SaveVoxelsInROIs:      1\n\n"
                                "SaveSortedVoxelList:   %i\n\n"
                                "SaveROIMaxPSC:         %i\n\n"
                                "NrOfTCPlots:           %i\n\n",
                                newestVersion, int(withRanking),
                                int(options.feedbackMaxima.has_value()), regions.count());
    for (int i = 0; i < regions.count(); ++i) {
        const RegionOfInterest& region = regions[i];
        text += formatted("NrOfTCs:               1\n"
                          "FromSlice:             %i\n"
                          "Left:                  %i\n"
                          "Right:                 %i\n"
                          "Top:                   %i\n"
                          "Bottom:                %i\n",
                          region.FromSlice, region.Left, region.Right, region.Top, region.Bottom);
        text += voxelLines(region.voxels);
        if (withRanking)
            text += rankingLines(region);
        if (options.feedbackMaxima)
            text +=
                formatted("MaxPSC:              %10.6f\n", maximumOf(*options.feedbackMaxima, i));
        text += '\n';
    }
    return text;
}

bool readROIFile(const QString& fileName, const VolumeSize& size, SavedRegions& saved) {
    QString text;
    if (!readTextFile(fileName, text)) {
        showModelessWarning(QStringLiteral(
            "ERROR: Can not open .ROI file for loading previously defined regions-of-interest !"));
        return false;
    }
    switch (parseROIFile(text, size, saved)) {
    case RoiFileResult::IncompatibleVersion:
        showModelessWarning(
            QStringLiteral("ERROR - Incompatible file version \"%1\". Can only read file "
                           "version \"3\" - \"5\" files.")
                .arg(saved.fileVersion));
        return false;
    case RoiFileResult::OutOfMemory:
        showModelessWarning(QStringLiteral("ERROR: Insufficient memory!"));
        return false;
    case RoiFileResult::Damaged:
        showModelessWarning(
            QStringLiteral("ERROR: Can not read the regions-of-interest file \"%1\": %2.")
                .arg(fileName, saved.fault));
        return false;
    case RoiFileResult::Ok:
        break;
    }
    if (saved.regions.empty() && saved.regionsOutside > 0) {
        showModelessWarning(
            QStringLiteral("WARNING: The regions-of-interest file \"%1\" holds no region "
                           "that lies in the volumes of this run.")
                .arg(fileName));
        return false;
    }
    reportVoxelsOutside(fileName, saved);
    return true;
}

bool writeROIFile(const QString& fileName, const Regions& regions, const RegionOptions& options) {
    if (writeFileAtomically(fileName, roiFileText(regions, options)))
        return true;
    showWarning(
        QStringLiteral("ERROR: Can not open .roi file for saving selected regions-of-interest !"));
    return false;
}
