// Real files that are odd or of other scanners.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake_run.h"
#include "support/test_data.h"

#include <QDirIterator>

namespace {

TEST(ScannerFiles, NoFileOfAnyKindIsTooOdd) {
    SKIP_WITHOUT(scannerDataFolder());
    int nrOfVolumes = 0;
    for (const char* folder :
         {"dicom_odd", "ge_dicom/four_slices", "siemens_single_slice", "old_formats"})
        for (QDirIterator file(scannerDataFolder() + '/' + folder, QDir::Files,
                               QDirIterator::Subdirectories);
             file.hasNext();) {
            IntakeRun run("DICOM", 64, 64, 1);
            ASSERT_TRUE(QFile::link(QFileInfo(file.next()).absoluteFilePath(),
                                    run.path("run-0001-0001.dcm")));
            run.messages.acceptAnything();
            nrOfVolumes += run.reader()->readFirstVolume();
            DicomIdentifiers identifiers;
            static_cast<void>(readDicomIdentifiers(file.filePath(), identifiers));
            static_cast<void>(
                readDicomHeader(file.filePath(), run.state.header, run.state.rawDataByteOrder));
        }
    EXPECT_GT(nrOfVolumes, 30);
}

} // namespace
