// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "intake/dicom_slice_reader.h"
#include "intake/siemens_mosaic_reader.h"

std::unique_ptr<VolumeReader> makeVolumeReader(const IntakeContext& context) {
    const QString& type = context.settings.documentDataType;
    if (type == "SIEMENS_DICOM_MOSAIC")
        return std::make_unique<SiemensMosaicReader>(context);
    if (type == "DICOM")
        return std::make_unique<DicomSliceReader>(context);
    return nullptr;
}
