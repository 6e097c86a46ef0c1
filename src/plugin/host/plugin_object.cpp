// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_object.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <span>
#include <sys/uio.h>
#include <unistd.h>

namespace {

// Of the table of virtual functions (Itanium C++ ABI, 2.5.2): the object points behind the offset
// to the top and the type information, to two entries for the destructor and one for each
// operation.
constexpr size_t nrOfEntries = 7;

/// The part of a loaded file that holds an address.
struct LoadedPart {
    uintptr_t address = 0;
    uintptr_t end = 0; ///< 0 when no file does
    ElfW(Word) flags = 0;
};

int findPart(dl_phdr_info* file, size_t, void* result) {
    auto& part = *static_cast<LoadedPart*>(result);
    for (const ElfW(Phdr) & segment : std::span(file->dlpi_phdr, file->dlpi_phnum)) {
        const uintptr_t start = file->dlpi_addr + segment.p_vaddr;
        if (segment.p_type != PT_LOAD || part.address < start ||
            part.address - start >= segment.p_memsz)
            continue;
        part.end = start + segment.p_memsz;
        part.flags = segment.p_flags;
        return 1;
    }
    return 0;
}

LoadedPart loadedPart(const void* address) {
    LoadedPart part{reinterpret_cast<uintptr_t>(address)};
    dl_iterate_phdr(findPart, &part);
    return part;
}

bool isAligned(const void* address) {
    return reinterpret_cast<uintptr_t>(address) % alignof(void*) == 0;
}

/// Bytes from the address to the end of the symbol that covers it, of the loaded part where none
/// is known.
uintptr_t bytesBehind(const void* address) {
    const LoadedPart part = loadedPart(address);
    uintptr_t end = part.end;
    Dl_info info{};
    ElfW(Sym)* symbol = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&symbol), RTLD_DL_SYMENT) != 0 && symbol &&
        info.dli_saddr)
        end = std::min(end, reinterpret_cast<uintptr_t>(info.dli_saddr) + symbol->st_size);
    return end > part.address ? end - part.address : 0;
}

/// What the compiler enters for an operation without a body.
bool isPureVirtual(const void* function) {
    Dl_info info{};
    return dladdr(function, &info) != 0 && info.dli_saddr == function && info.dli_sname &&
           std::strcmp(info.dli_sname, "__cxa_pure_virtual") == 0;
}

/// Whether a pointer can be read there. The system answers what would otherwise end the program; it
/// may be forbidden to, as in some containers.
bool isReadable(const void* address) {
    const void* content = nullptr;
    const iovec here{&content, sizeof content};
    const iovec there{const_cast<void*>(address), sizeof content};
    return ::process_vm_readv(::getpid(), &here, 1, &there, 1, 0) == ssize_t(sizeof content) ||
           errno != EFAULT;
}

} // namespace

bool isLoadedCode(const void* address) {
    return (loadedPart(address).flags & PF_X) != 0;
}

QString pluginObjectFault(const VeloCortivoPlugin* plugin) {
    const QString noPlugin = QStringLiteral("The object of createPlugin() is not a plug-in.");
    if (!plugin || !isAligned(plugin) || !isReadable(plugin))
        return noPlugin;
    const auto* table = *reinterpret_cast<const void* const* const*>(plugin);
    if (!isAligned(table) || loadedPart(table).end == 0)
        return noPlugin;
    const QString incomplete =
        QStringLiteral("The class of its object lacks operations of the plug-in interface.");
    if (bytesBehind(table) < nrOfEntries * sizeof(void*))
        return incomplete;
    for (const void* function : std::span(table, nrOfEntries))
        if (!isLoadedCode(function) || isPureVirtual(function))
            return incomplete;
    return {};
}
