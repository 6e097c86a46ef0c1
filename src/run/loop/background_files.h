// The slices behind the maps as files: first volume (.amr), high-resolution ones (_Inplane.amr).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"

/// The first volume as it was measured, whatever is shown now. False after a message.
[[nodiscard]] bool writeFirstVolumeImages(const QtCortivoDoc& document);
/// False after a message.
[[nodiscard]] bool writeInplaneImages(const QtCortivoDoc& document);
/// Of a run that is reloaded. False without such a file, and after a modeless message; the document
/// then has no inplanes.
[[nodiscard]] bool readInplaneImages(QtCortivoDoc& document);
