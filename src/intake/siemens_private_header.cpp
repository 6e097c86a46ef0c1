// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_private_header.h"

#include "base/messages.h"
#include "base/text_reading.h"
#include "intake/dicom_walk.h"
#include "intake/file_bytes.h"
#include "intake/header_numbers.h"

#include <QByteArray>
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

namespace {

// Lines longer than this are read in pieces.
constexpr size_t longestLine = 254;
constexpr std::string_view blockEnd = "### ASCCONV END";

bool holds(std::string_view line, std::string_view key) {
    return line.find(key) != std::string_view::npos;
}

// The text from the second character after the "=", which a blank or tab follows.
std::string_view valueOf(std::string_view line) {
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.size() < equals + 2)
        return {};
    return line.substr(equals + 2);
}

// The digits of a small number. Older software writes "0x" before them; newer software writes a tab
// where older software writes a blank.
std::string_view digitsOf(std::string_view value) {
    value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
    value = value.substr(0, value.find_last_not_of(" \t") + 1);
    if (value.starts_with("0x"))
        value.remove_prefix(2);
    return value;
}

// Microseconds to whole milliseconds, rounded half up.
float wholeMilliseconds(std::string_view microseconds) {
    return float(std::floor(double(leadingFloat(microseconds)) / 1000.0 + 0.5));
}

class ProtocolLines {
public:
    explicit ProtocolLines(FMRProject& project) : project_(project) {
        project_.position.sliceCenterFirst = {};
        project_.position.sliceCenterLast = {};
    }

    /// False when nothing more is wanted.
    bool take(std::string_view line) {
        takeNumbering(line);
        if (onlyNumbering_)
            return !holds(line, blockEnd);
        if (holds(line, "sSliceArray.asSlice[0].sPosition"))
            positionsMet_ = true;
        takeTimes(line);
        if (positionsMet_ && holds(line, "asSlice"))
            takePosition(line);
        const bool order = holds(line, "sSliceArray.ucMode");
        if (order)
            takeSliceOrder(valueOf(line));
        orderMet_ |= order;
        // If the order precedes the slices, these end with the block. Behind it comes the numbering
        // of the images.
        const bool ended = orderMet_ && holds(line, blockEnd);
        onlyNumbering_ = (order || ended) && positionsMet_ && repetitionTimeMet_;
        return !(onlyNumbering_ && ended);
    }

    /// True when slice positions were found.
    bool finish() {
        if (timeRefused_ && !repetitionTimeMet_)
            showModelessWarning(QString("WARNING: The scanner's protocol states a TR of \"%1\" "
                                        "microseconds; the TR of the settings file, %2 ms, stays.")
                                    .arg(shortened(refusedTime_))
                                    .arg(double(project_.TR)));
        const bool interleaved = project_.SliceAcquisitionOrder == 3;
        if (project_.SliceAcquisitionOrderVerified && interleaved && project_.NrOfSlices % 2 == 0)
            project_.SliceAcquisitionOrder = 5;
        if (imagesFromLastSlice())
            std::swap(project_.position.sliceCenterFirst, project_.position.sliceCenterLast);
        return positionsMet_;
    }

private:
    void takeTimes(std::string_view line) {
        if (holds(line, "alTR[0]")) {
            takeRepetitionTime(valueOf(line));
        } else if (!positionsMet_ && holds(line, "alTE[0]")) {
            project_.TE = wholeMilliseconds(valueOf(line));
        }
    }

    void takeRepetitionTime(std::string_view value) {
        constexpr float longest = 100000.0f;
        const float time = wholeMilliseconds(value);
        if (!(time >= 1.0f && time <= longest)) {
            timeRefused_ = true;
            refusedTime_ = QString::fromLatin1(value.data(), qsizetype(value.size())).trimmed();
            return;
        }
        project_.TR = time;
        project_.InterSliceTime =
            project_.NrOfSlices > 0 ? std::floor(time / float(project_.NrOfSlices)) : 0;
        project_.TimeResolutionVerified = true;
        repetitionTimeMet_ = true;
    }

    void takePosition(std::string_view line) {
        constexpr std::array<std::string_view, 3> axisKeys{"sPosition.dSag", "sPosition.dCor",
                                                           "sPosition.dTra"};
        for (const size_t axis : {size_t(1), size_t(2), size_t(0)}) {
            if (!holds(line, axisKeys[axis]))
                continue;
            FMRPositionInfo& position = project_.position;
            Vector3& center = axisMet_[axis] ? position.sliceCenterLast : position.sliceCenterFirst;
            center[axis] = leadingFloat(valueOf(line));
            axisMet_[axis] = true;
            return;
        }
    }

    void takeSliceOrder(std::string_view value) {
        constexpr std::array<std::string_view, 3> modes{"1", "2", "4"};
        const auto mode = std::ranges::find(modes, digitsOf(value));
        project_.SliceAcquisitionOrderVerified = mode != modes.end();
        if (mode != modes.end())
            project_.SliceAcquisitionOrder = int(mode - modes.begin()) + 1;
    }

    /// The block states for each main orientation whether images are numbered against the list of
    /// slices.
    void takeNumbering(std::string_view line) {
        constexpr std::array<std::string_view, 3> keys{"sSliceArray.ucImageNumbSag",
                                                       "sSliceArray.ucImageNumbCor",
                                                       "sSliceArray.ucImageNumbTra"};
        for (size_t axis = 0; axis < keys.size(); ++axis)
            if (holds(line, keys[axis]))
                numberedFromLast_[axis] = digitsOf(valueOf(line)) == "1";
    }

    /// Which orientation counts: that of the axis along which the slices lie furthest apart.
    [[nodiscard]] bool imagesFromLastSlice() const {
        const FMRPositionInfo& position = project_.position;
        Vector3 extent;
        for (size_t axis = 0; axis < extent.size(); ++axis)
            extent[axis] =
                std::abs(position.sliceCenterLast[axis] - position.sliceCenterFirst[axis]);
        return numberedFromLast_[size_t(std::ranges::max_element(extent) - extent.begin())];
    }

    FMRProject& project_;
    bool positionsMet_ = false;
    bool repetitionTimeMet_ = false;
    bool orderMet_ = false;
    bool timeRefused_ = false;
    QString refusedTime_; ///< as the file states it
    std::array<bool, 3> axisMet_{};
    bool onlyNumbering_ = false; ///< all else has been read
    std::array<bool, 3> numberedFromLast_{};
};

constexpr uint16_t privateGroup = 0x0019;
constexpr uint16_t timesInBlock = 0x29;

// The value of the element; empty where there is none.
std::span<const uint8_t> findTimes(std::span<const uint8_t> bytes, ByteOrder& order) {
    const auto encoding = detectEncoding(bytes, EncodingSearch::LastKeyNearStart);
    if (!encoding)
        return {};
    DicomWalk walk(bytes, *encoding);
    DicomElement element;
    int block = -1;
    bool more = walk.begin() == DicomWalk::Start::Ready;
    while (more && walk.next(element) && element.group <= privateGroup) {
        const auto value = walk.value(element);
        more = value.has_value();
        if (!more || element.group != privateGroup)
            continue;
        // Elements 10 to FF name the owners of the blocks 10xx to FFxx.
        if (element.number >= 0x10 && element.number <= 0xFF &&
            dicomText(*value).starts_with("SIEMENS MR HEADER"))
            block = element.number;
        if (block >= 0 && element.number == ((block << 8) | timesInBlock)) {
            order = walk.byteOrder();
            return *value;
        }
    }
    return {};
}

} // namespace

bool parseSiemensProtocol(std::span<const uint8_t> bytes, FMRProject& project) {
    ProtocolLines lines(project);
    size_t position = 0;
    while (position < bytes.size()) {
        const auto piece = bytes.subspan(position, std::min(longestLine, bytes.size() - position));
        const auto newline = std::ranges::find(piece, uint8_t('\n'));
        const size_t length = size_t(newline - piece.begin()) + (newline != piece.end() ? 1 : 0);
        const std::string_view line(reinterpret_cast<const char*>(piece.data()), length);
        if (!lines.take(trimmedHeaderText(line)))
            break;
        position += length;
    }
    return lines.finish();
}

bool readSiemensProtocol(const QString& fileName, FMRProject& project) {
    FileBytes file;
    if (file.read(fileName) != FileBytes::Result::Done) {
        showWarning(QString("ERROR: File \"%1\" not found !").arg(fileName));
        return false;
    }
    return parseSiemensProtocol(file.bytes(), project);
}

std::vector<float> siemensSliceTimes(std::span<const uint8_t> bytes, int nrOfSlices) {
    ByteOrder order = hostByteOrder;
    const std::span<const uint8_t> value = findTimes(bytes, order);
    if (nrOfSlices <= 0 || value.size() != size_t(nrOfSlices) * sizeof(double))
        return {};
    ByteReader reader(value, order);
    std::vector<float> times(static_cast<size_t>(nrOfSlices));
    std::ranges::generate(times, [&reader] { return limitedFloat(reader.f64()); });
    constexpr float longestTR = 100000.0f;
    const bool usable =
        std::ranges::all_of(times, [](float time) { return time >= 0.0f && time < longestTR; });
    return usable ? times : std::vector<float>();
}
