// SPDX-License-Identifier: GPL-3.0-or-later
#include "growing_files.h"

#include "mosaic_image.h"
#include "raw_bytes.h"

QStringList GrowingFormat::fileNames(int /*volume*/) const {
    if (options().type == ScannerType::Bruker2dseq)
        return {"2dseq"};
    return {QString("Run%1.rec").arg(options().run)};
}

std::vector<ScannerFile> GrowingFormat::files(int volume, std::span<const uint16_t> samples) const {
    // Samples are in host byte order, whatever the settings: these scanners write for their own
    // consoles.
    return {{fileNames(volume).first(),
             sampleBytes(reversedSlices(geometry(), samples), hostByteOrder), true}};
}

void GrowingFormat::addTypeBlock(SettingsLines& lines) const {
    lines.quoted("FirstFileName:", fileNames(0).first());
    addGeometryEntries(lines);
}
