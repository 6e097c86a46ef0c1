// Whether a file can be a shared library for this machine.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>

class QIODevice;

/// What a library is made for, by the numbers of the ELF format.
struct LibraryKind {
    uint8_t addressSize = 0; ///< ELFCLASS32 or ELFCLASS64
    uint8_t byteOrder = 0;   ///< ELFDATA2LSB or ELFDATA2MSB
    uint16_t processor = 0;  ///< EM_X86_64, EM_AARCH64, ...
    [[nodiscard]] bool operator==(const LibraryKind&) const = default;
};

/// That of this program, read from its own file.
[[nodiscard]] LibraryKind kindOfThisProgram();

/// Why the file can't be a library of this kind: it is empty, cut short, no library, damaged, or
/// one for another processor. Empty when it looks like one. The system's loader trusts a library's
/// sizes, and a file that is shorter than these say ends the program.
[[nodiscard]] QString libraryFileFault(const QString& path);

/// The same of the content of an open, random-access device.
[[nodiscard]] QString libraryFault(QIODevice& content, const LibraryKind& wanted);
