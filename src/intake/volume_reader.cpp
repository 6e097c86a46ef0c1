// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "intake/dicom_slice_reader.h"
#include "intake/ge_hdxt_dicom_reader.h"
#include "intake/ge_i_reader.h"
#include "intake/ge_stanford_reader.h"
#include "intake/ge_x_dicom_reader.h"
#include "intake/siemens_mosaic_reader.h"

std::unique_ptr<VolumeReader> makeVolumeReader(const IntakeContext& context) {
    const QString& type = context.settings.documentDataType;
    if (type == "SIEMENS_DICOM_MOSAIC")
        return std::make_unique<SiemensMosaicReader>(context);
    if (type == "DICOM")
        return std::make_unique<DicomSliceReader>(context);
    if (type == "GE_I")
        return std::make_unique<GeIReader>(context);
    if (type == "GE_X_DICOM")
        return std::make_unique<GeXDicomReader>(context);
    if (type == "GE_HDXT_DICOM")
        return std::make_unique<GeHdxtDicomReader>(context);
    if (type == "GE_STANFORD")
        return std::make_unique<GeStanfordReader>(context);
    return nullptr;
}
