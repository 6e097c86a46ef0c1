// Libraries of plug-ins.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "fuzz/fuzz_target.h"
#include "plugin/host/library_file.h"

#include <QBuffer>
#include <elf.h>

namespace {

// Whether all that the loader maps is in the file.
bool segmentsAreThere(std::span<const uint8_t> bytes) {
    ByteReader header(bytes);
    header.seek(offsetof(Elf64_Ehdr, e_phoff));
    const uint64_t table = header.u64();
    header.seek(offsetof(Elf64_Ehdr, e_phnum));
    const int count = header.u16();
    for (int i = 0; i < count; ++i) {
        ByteReader segment(bytes);
        if (!segment.seek(table) || !segment.skip(size_t(i) * sizeof(Elf64_Phdr)))
            return false;
        const bool loaded = segment.u32() == PT_LOAD;
        segment.skip(4);
        const uint64_t offset = segment.u64();
        segment.skip(16);
        const uint64_t size = segment.u64();
        ByteReader content(bytes);
        if (segment.failed() || (loaded && !(content.seek(offset) && content.skip(size))))
            return false;
    }
    return !header.failed();
}

bool pluginLibrary(std::span<const uint8_t> bytes) {
    QByteArray copy = byteArray(bytes);
    QBuffer content(&copy);
    const bool good = content.open(QIODevice::ReadOnly) &&
                      libraryFault(content, {ELFCLASS64, ELFDATA2LSB, EM_X86_64}).isEmpty();
    require(!good || segmentsAreThere(bytes), "what is mapped is in the file");
    return good;
}

} // namespace

std::vector<FuzzTarget> pluginTargets() {
    return {{"plugin_library", pluginLibrary}};
}
