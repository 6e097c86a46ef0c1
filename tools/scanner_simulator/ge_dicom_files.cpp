// SPDX-License-Identifier: GPL-3.0-or-later
#include "ge_dicom_files.h"

#include "dicom_image.h"
#include "random_numbers.h"

#include <numeric>

namespace {

constexpr int firstImage = 1;

} // namespace

std::vector<int> GeDicomFormat::sliceOrder(int volume) const {
    std::vector<int> order(size_t(geometry().nrOfSlices));
    std::iota(order.begin(), order.end(), 0);
    if (options().shuffledSlices) {
        // Each permutation is equally likely: every place draws from those not yet placed.
        RandomNumbers random(options().seed * 7919u + uint64_t(volume));
        for (size_t last = order.size() - 1; last > 0; --last)
            std::swap(order[last], order[size_t(random.bits() % (last + 1))]);
    }
    return order;
}

QStringList GeDicomFormat::fileNames(int volume) const {
    const int firstOfVolume = firstImage + volume * geometry().nrOfSlices;
    QStringList names;
    int running = seriesNumber(options()) + firstOfVolume;
    for (const int slice : sliceOrder(volume))
        names << QString("i%1.MRDC.%2").arg(running++).arg(firstOfVolume + slice);
    return names;
}

std::vector<ScannerFile> GeDicomFormat::files(int volume, std::span<const uint16_t> samples) const {
    const QStringList names = fileNames(volume);
    std::vector<ScannerFile> files;
    for (const int slice : sliceOrder(volume))
        files.push_back(
            {names[qsizetype(files.size())],
             dicomImageFile({options(), geometry(), volume}, sliceImage(geometry(), volume, slice),
                            geometry().slice(samples, slice))});
    return files;
}

bool GeDicomFormat::isBigEndian() const {
    return options().syntax == TransferSyntax::ExplicitBig;
}

void GeDicomFormat::addTypeBlock(SettingsLines& lines) const {
    if (options().type == ScannerType::GeHdxtDicom)
        return; // the watch folder has the number of the series
    lines.number("GESeriesNr:", seriesNumber(options()));
    lines.number("GEFirstImageNr:", firstImage);
}
