// The file of the grey images behind the maps (.amr): the functional slices, or inplane ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/slice_images.h"
#include "stats/overlay_colors.h"

#include <QByteArray>
#include <QString>

/// What a file holds.
struct AmrFile {
    std::vector<QImage> images; ///< one for each slice, RGB32, all of one size
    /// The colours of the last image that was read, 0xffRRGGBB; missing ones are white.
    std::array<uint32_t, GreyScale::nrOfGradations> greyTable{};
    OverlayColorTable overlayColors{};
};

enum class AmrParseResult {
    Ok,
    MoreImages,  ///< than slices; the first ones were read
    FewerImages, ///< than slices; nothing was read
    Damaged,
};

/// Larger than any matrix: a side of an image, in pixels.
inline constexpr int largestAmrSide = 4096;

/// Reads the images of the first `nrOfSlices` slices. Each must be an uncompressed BMP image of 8
/// bits that the bytes hold as a whole, with sides up to largestAmrSide, of the size of the first.
/// Pixels above 225 count as 225. `file` is changed for Ok and MoreImages only; `nrOfImages` gets
/// the number that the bytes state.
[[nodiscard]] AmrParseResult parseAMR(std::span<const uint8_t> bytes, int nrOfSlices, AmrFile& file,
                                      int& nrOfImages);

/// The images with the palette of the file: 10 to 225 are the grey levels of `scale`, which pixels
/// are brought to by their brightness, 226 to 245 `overlayColors`. Empty when there are more than
/// 65535 images or memory runs out.
[[nodiscard]] QByteArray amrBytes(const std::vector<QImage>& images, const GreyScale& scale,
                                  const OverlayColorTable& overlayColors);

/// False after a message, with `file` unchanged. More images than slices are told and read.
[[nodiscard]] bool readAMR(const QString& path, int nrOfSlices, AmrFile& file);
/// False after a message, with an old file untouched.
[[nodiscard]] bool writeAMR(const QString& path, const std::vector<QImage>& images,
                            const GreyScale& scale, const OverlayColorTable& overlayColors);

/// Beside the project: its name with ".amr", or "realtime.amr" if that has no extension.
[[nodiscard]] QString amrPath(const QString& projectPath);
/// The same with "_Inplane.amr".
[[nodiscard]] QString inplaneAmrPath(const QString& projectPath);
