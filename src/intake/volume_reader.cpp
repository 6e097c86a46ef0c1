// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "intake/dicom_readers.h"
#include "intake/empty_slice_guard.h"
#include "intake/ge_dicom_readers.h"
#include "intake/ge_raw_readers.h"
#include "intake/raw_readers.h"
#include "intake/siemens_ima_readers.h"

namespace {

std::unique_ptr<VolumeReader> makeTypedReader(const IntakeContext& context) {
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
    if (type == "SIEMENS_IMA" || type == "SIEMENSIMA") {
        if (context.settings.SiemensMosaicSequence)
            return std::make_unique<SiemensImaMosaicReader>(context);
        return std::make_unique<SiemensImaSliceReader>(context);
    }
    if (type == "SIEMENSPIXELDATA")
        return std::make_unique<SiemensPixelDataReader>(context);
    if (type == "PHILIPS_REC" || type == "PHILIPSRECDATA" || type == "2DSEQ_MPI")
        return std::make_unique<GrowingFileReader>(context);
    if (type == "PHILIPS_ANALYZE_DRIN" || type == "ANALYZE_NW")
        return std::make_unique<AnalyzeReader>(context);
    return nullptr;
}

} // namespace

std::unique_ptr<VolumeReader> makeVolumeReader(const IntakeContext& context) {
    std::unique_ptr<VolumeReader> reader = makeTypedReader(context);
    if (!reader)
        return nullptr;
    return std::make_unique<EmptySliceGuard>(context, std::move(reader));
}
