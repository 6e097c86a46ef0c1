// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/vmr_file.h"

#include "base/byte_views.h"
#include "base/file_writing.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/plain_file.h"
#include "base/program_end.h"
#include "volume/anatomy/vmr_layout.h"

#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <new>

namespace {

bool warn(const QString& text) {
    showWarning(text);
    return false;
}

bool warnOfDamage(const QString& path) {
    return warn(QString("ERROR: The VMR file \"%1\" is damaged or cut off !").arg(path));
}

/// Moves to the first voxel. False after a message.
bool readStart(QFile& file, const QString& path, VMRHeader& header) {
    const QByteArray bytes = file.read(longestVMRStart);
    const VMRStart start = parseVMRStart(bytesOf(bytes), header);
    if (start.result == VMRParseResult::TooRecent) {
        showInformation("ERROR: Can not read this VMR file, it appears to be saved by a more "
                        "recent program version. Please upgrade Cortivo NX");
        return false;
    }
    const auto holdsBlock = [&] {
        return uint64_t(file.size()) >= start.length &&
               uint64_t(file.size()) - start.length >= voxelsOfBlock(header);
    };
    if (start.result != VMRParseResult::Good || !holdsBlock() || !file.seek(qint64(start.length)))
        return warnOfDamage(path);
    return true;
}

/// From behind the voxels. A longer end isn't taken.
bool readEnd(QFile& file, VMRHeader& header) {
    if (header.hasExtendedHeader)
        return true;
    const QByteArray bytes = file.read(longestVMREnd + 1);
    return size_t(bytes.size()) <= longestVMREnd && parseVMREnd(bytesOf(bytes), header);
}

/// Calls `row` with the place in a cube of each row of the volume, until it gives false.
template<typename Row> bool forRows(const VMRVolume& volume, Row row) {
    for (int z = 0; z < volume.DimZ; ++z)
        for (int y = 0; y < volume.DimY; ++y)
            if (!row(cubeIndex(volume.offsetX, volume.offsetY + y, volume.offsetZ + z)))
                return false;
    return true;
}

bool fillsCube(const VMRHeader& header) {
    return header.DimX == cubeSide && header.DimY == cubeSide && header.DimZ == cubeSide;
}

bool readBlock(QFile& file, const VMRVolume& volume, std::vector<uint8_t>& cube) {
    if (fillsCube(volume))
        return file.read(reinterpret_cast<char*>(cube.data()), qint64(cubeVoxels)) ==
               qint64(cubeVoxels);
    return forRows(volume, [&](size_t place) {
        return file.read(reinterpret_cast<char*>(cube.data() + place), volume.DimX) == volume.DimX;
    });
}

/// The second block of the prefix form; without one there is none in memory.
void readSecondBlock(QFile& file, VMRVolume& volume) {
    if (!volume.hasExtendedHeader || uint64_t(file.size() - file.pos()) < voxelsOfBlock(volume))
        return;
    volume.second.assign(cubeVoxels, 0);
    if (!readBlock(file, volume, volume.second))
        volume.second.clear();
}

bool sidesAreTaken(const VMRHeader& header, const QString& path, bool requireCube) {
    const auto [least, most] = std::minmax({header.DimX, header.DimY, header.DimZ});
    if (most > cubeSide)
        return warn("Dims > 256 found - this is not yet supported!");
    if (requireCube && least < cubeSide)
        return warn(QString("ERROR: The VMR file \"%1\" does not have 256 voxels on all sides !")
                        .arg(path));
    return true;
}

/// False after a message, at failing memory also with the end of the program.
bool readBlocks(QFile& file, const QString& path, VMRVolume& volume) {
    try {
        const size_t nrOfBlocks = volume.hasExtendedHeader ? 2 : 1;
        if (!memoryIsAvailable(nrOfBlocks, cubeVoxels) || !volume.clearCube())
            throw std::bad_alloc();
        if (!readBlock(file, volume, volume.cube))
            return warnOfDamage(path);
        readSecondBlock(file, volume);
        return true;
    } catch (const std::bad_alloc&) {
        showCritical("Insufficient memory");
        endProgram(1);
        return false;
    }
}

bool loadInto(VMRVolume& volume, const QString& path, bool requireCube) {
    QFile file(path);
    if (!openPlainFile(file))
        return warn("Can not open specified VMR file !");
    if (!readStart(file, path, volume) || !sidesAreTaken(volume, path, requireCube))
        return false;
    volume.offsetX = (cubeSide - volume.DimX) / 2;
    volume.offsetY = (cubeSide - volume.DimY) / 2;
    volume.offsetZ = (cubeSide - volume.DimZ) / 2;
    if (!readBlocks(file, path, volume))
        return false;
    static_cast<void>(readEnd(file, volume));
    return true;
}

bool liesInCube(const VMRVolume& volume) {
    const auto lies = [](int size, int offset) {
        return size >= 1 && offset >= 0 && size <= cubeSide && offset <= cubeSide - size;
    };
    return lies(volume.DimX, volume.offsetX) && lies(volume.DimY, volume.offsetY) &&
           lies(volume.DimZ, volume.offsetZ);
}

/// Sizes and offsets of the part that is written.
VMRVolume writtenPart(const VMRVolume& volume) {
    VMRVolume part;
    static_cast<VMRHeader&>(part) = volume;
    part.offsetX = volume.offsetX;
    part.offsetY = volume.offsetY;
    part.offsetZ = volume.offsetZ;
    if (!part.hasExtendedHeader && readsAsVersion(part.DimX))
        part = VMRVolume();
    return part;
}

bool writeBytes(QSaveFile& file, std::span<const uint8_t> bytes) {
    return file.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size())) ==
           qint64(bytes.size());
}

bool writeBlock(QSaveFile& file, const VMRVolume& part, std::span<const uint8_t> cube) {
    if (fillsCube(part) && !cube.empty())
        return writeBytes(file, cube);
    const std::vector<uint8_t> zeros(size_t(part.DimX), 0);
    return forRows(part, [&](size_t place) {
        return writeBytes(file, cube.empty() ? std::span<const uint8_t>(zeros)
                                             : cube.subspan(place, size_t(part.DimX)));
    });
}

} // namespace

bool readVMRHeader(const QString& path, VMRHeader& header) {
    QFile file(path);
    if (!openPlainFile(file))
        return warn("ERROR: Can not open specified VMR file !");
    VMRHeader found;
    if (!readStart(file, path, found))
        return false;
    if (!file.seek(file.pos() + qint64(voxelsOfBlock(found))) || !readEnd(file, found))
        return warnOfDamage(path);
    header = found;
    return true;
}

bool loadVMR(const QString& path, VMRVolume& volume, bool requireCube) {
    volume = VMRVolume();
    if (loadInto(volume, path, requireCube))
        return true;
    volume = VMRVolume();
    return false;
}

bool saveVMR(const QString& path, const VMRVolume& volume, VMRBlock block) {
    const std::vector<uint8_t>& cube = block == VMRBlock::Working ? volume.cube : volume.second;
    const bool secondIsWhole = volume.second.empty() || volume.second.size() == cubeVoxels;
    if (cube.size() != cubeVoxels || !secondIsWhole || !liesInCube(volume))
        return warn(QString("ERROR: There is no volume to save as VMR file \"%1\" !").arg(path));
    QSaveFile file(path);
    if (!openToReplace(file))
        return warn("ERROR: Can not open .VMR file for saving !");
    const VMRVolume part = writtenPart(volume);
    const bool written = writeBytes(file, vmrStartBytes(part)) && writeBlock(file, part, cube) &&
                         (!part.hasExtendedHeader || writeBlock(file, part, volume.second));
    if (written && commitFile(file))
        return true;
    return warn(QString("ERROR: Can not write the VMR file \"%1\" !").arg(path));
}
