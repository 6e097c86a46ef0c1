// The header of ANALYZE 7.5 images, a separate file (".hdr") beside the samples.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <QString>
#include <array>

/// Description of the file, 40 bytes. Field names are those of the published format.
struct AnalyzeHeaderKey {
    int32_t sizeof_hdr = 0; ///< 348, or 384 in a longer variant
    std::array<char, 10> data_type{};
    std::array<char, 18> db_name{};
    int32_t extents = 0;
    int16_t session_error = 0;
    char regular = 0; ///< 'r': all volumes have one size
    char hkey_un0 = 0;
};

/// What the image is, 108 bytes.
struct AnalyzeImageDimension {
    std::array<int16_t, 8> dim{}; ///< number of dimensions; columns, rows, slices, volumes
    std::array<char, 4> vox_units{};
    std::array<char, 8> cal_units{};
    int16_t unused1 = 0;
    int16_t datatype = 0; ///< 4: 16-bit integers
    int16_t bitpix = 0;   ///< bits of a voxel
    int16_t dim_un0 = 0;
    std::array<float, 8> pixdim{}; ///< from 1 on as dim: millimetres, then seconds or milliseconds
    float vox_offset = 0.0f;       ///< bytes before the samples
    std::array<float, 3> funused{};
    float cal_max = 0.0f;
    float cal_min = 0.0f;
    float compressed = 0.0f;
    float verified = 0.0f;
    int32_t glmax = 0; ///< extreme values of the samples
    int32_t glmin = 0;
};

/// Where the image comes from, 200 bytes.
struct AnalyzeDataHistory {
    std::array<char, 80> descrip{};
    std::array<char, 24> aux_file{};
    char orient = 0; ///< 0 transverse, 1 coronal, 2 sagittal; 3 to 5 the same flipped
    std::array<char, 10> originator{};
    std::array<char, 10> generated{};
    std::array<char, 10> scannum{};
    std::array<char, 10> patient_id{};
    std::array<char, 10> exp_date{};
    std::array<char, 10> exp_time{};
    std::array<char, 3> hist_un0{};
    int32_t views = 0;
    int32_t vols_added = 0;
    int32_t start_field = 0;
    int32_t field_skip = 0;
    int32_t omax = 0;
    int32_t omin = 0;
    int32_t smax = 0;
    int32_t smin = 0; ///< at offset 344, the last one
};

struct AnalyzeHeader {
    AnalyzeHeaderKey hk;
    AnalyzeImageDimension dime;
    AnalyzeDataHistory hist;
};

inline constexpr int analyzeHeaderBytes = 348;

/// No value is checked. Big endian when the size of the header reads as 348 or 384 that way, else
/// little endian. False, with nothing changed, for less than a whole record.
[[nodiscard]] bool parseAnalyzeHeader(std::span<const uint8_t> bytes, ByteOrder& order,
                                      AnalyzeHeader& header);

/// The same for a file; the name of the byte order is "BigEndian" or "LittleEndian". False, after a
/// message, also when the file can't be opened.
[[nodiscard]] bool readAnalyzeHeader(const QString& fileName, QString& byteOrderNameOut,
                                     AnalyzeHeader& headerOut);
