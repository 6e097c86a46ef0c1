// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/library_file.h"

#include "base/plain_file.h"

#include <QFileInfo>
#include <elf.h>
#include <link.h>
#include <vector>

namespace {

using FileHeader = ElfW(Ehdr);
using Segment = ElfW(Phdr);
using DynamicEntry = ElfW(Dyn);

constexpr qint64 largestLibrary = qint64(1) << 30; // bytes

const QString noLibrary = QStringLiteral("It is not a shared library.");
const QString cutShort = QStringLiteral("The file is cut short.");
const QString damaged = QStringLiteral("The file is damaged.");

/// Whether `length` bytes from `offset` on are within `size` bytes.
bool fits(uint64_t offset, uint64_t length, uint64_t size) {
    return offset <= size && length <= size - offset;
}

template<typename Item> bool readItems(QIODevice& content, qint64 offset, Item* items, size_t n) {
    const auto bytes = qint64(n * sizeof(Item));
    return content.seek(offset) && content.read(reinterpret_cast<char*>(items), bytes) == bytes;
}

LibraryKind kindIn(const FileHeader& header) {
    return {header.e_ident[EI_CLASS], header.e_ident[EI_DATA], header.e_machine};
}

bool startsLikeLibrary(const FileHeader& header) {
    return std::equal(header.e_ident, header.e_ident + SELFMAG, ELFMAG);
}

QString headerFault(const FileHeader& header, const LibraryKind& wanted, uint64_t size) {
    if (!startsLikeLibrary(header))
        return noLibrary;
    if (kindIn(header) != wanted)
        return QStringLiteral("It was made for another kind of processor.");
    if (header.e_type != ET_DYN || header.e_phnum == 0)
        return noLibrary;
    if (header.e_phentsize != sizeof(Segment))
        return damaged;
    // The loader doesn't use the sections, but the end of the file is where they usually stand.
    if (!fits(header.e_phoff, uint64_t(header.e_phnum) * sizeof(Segment), size) ||
        !fits(header.e_shoff, uint64_t(header.e_shnum) * header.e_shentsize, size))
        return cutShort;
    return {};
}

/// The loader maps one segment after the other, over whatever is there when they overlap.
QString loadedSegmentsFault(const std::vector<Segment>& segments, uint64_t size) {
    uint64_t end = 0;
    for (const Segment& segment : segments) {
        if (segment.p_type != PT_LOAD)
            continue;
        if (!fits(segment.p_offset, segment.p_filesz, size))
            return cutShort;
        if (segment.p_filesz > segment.p_memsz || segment.p_vaddr < end ||
            segment.p_vaddr + segment.p_memsz < segment.p_vaddr)
            return damaged;
        end = segment.p_vaddr + segment.p_memsz;
    }
    return {};
}

bool isLoaded(const Segment& part, const std::vector<Segment>& segments) {
    return std::ranges::any_of(segments, [&](const Segment& segment) {
        return segment.p_type == PT_LOAD && part.p_vaddr >= segment.p_vaddr &&
               fits(part.p_vaddr - segment.p_vaddr, part.p_filesz, segment.p_filesz);
    });
}

/// The table that the loader works from.
QString dynamicSegmentFault(const std::vector<Segment>& segments) {
    const auto dynamic = std::ranges::find(segments, ElfW(Word)(PT_DYNAMIC), &Segment::p_type);
    if (dynamic == segments.end())
        return noLibrary;
    return dynamic->p_filesz >= sizeof(DynamicEntry) && isLoaded(*dynamic, segments) ? QString()
                                                                                     : damaged;
}

} // namespace

LibraryKind kindOfThisProgram() {
    static const LibraryKind kind = [] {
        QFile program("/proc/self/exe");
        FileHeader header{};
        return program.open(QIODevice::ReadOnly) && readItems(program, 0, &header, 1)
                   ? kindIn(header)
                   : LibraryKind();
    }();
    return kind;
}

QString libraryFault(QIODevice& content, const LibraryKind& wanted) {
    const auto size = uint64_t(content.size());
    FileHeader header{};
    if (!readItems(content, 0, &header, 1))
        return size == 0 ? QStringLiteral("The file is empty.") : noLibrary;
    QString fault = headerFault(header, wanted, size);
    if (!fault.isEmpty())
        return fault;
    std::vector<Segment> segments(header.e_phnum);
    if (!readItems(content, qint64(header.e_phoff), segments.data(), segments.size()))
        return cutShort;
    fault = loadedSegmentsFault(segments, size);
    return fault.isEmpty() ? dynamicSegmentFault(segments) : fault;
}

QString libraryFileFault(const QString& path) {
    QFile file(path);
    if (!openPlainFile(file))
        return fileExists(path) || !QFileInfo::exists(path)
                   ? QStringLiteral("The file can't be read.")
                   : QStringLiteral("It is not a file.");
    if (file.size() > largestLibrary)
        return QStringLiteral("The file is larger than 1 GiB.");
    return libraryFault(file, kindOfThisProgram());
}
