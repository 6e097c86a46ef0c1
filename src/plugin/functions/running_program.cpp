// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"

#include "plugin/host/program_access.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

#include <cstring>

namespace plugin_functions {

namespace {

/// The first units of the text, without half a character at the end.
QString head(const QString& text, qsizetype units) {
    const bool cutsCharacter = units < text.size() && text[units].isLowSurrogate();
    return text.left(cutsCharacter ? units - 1 : units);
}

} // namespace

RunSession* session() {
    ProgramAccess* program = programAccess();
    return program ? &program->session() : nullptr;
}

PluginHost* host() {
    ProgramAccess* program = programAccess();
    return program ? &program->plugins() : nullptr;
}

QtCortivoDoc* document() {
    RunSession* running = session();
    return running ? running->functionalDocument.get() : nullptr;
}

QtCortivoDoc* activeDocument() {
    RunSession* running = session();
    return running && running->phase.runActive() ? document() : nullptr;
}

int currentVolume() {
    const QtCortivoDoc* run = document();
    return run ? recordedVolumes(session()->report, run->project) - 1 : -1;
}

std::optional<size_t> voxelOffset(const VolumeSize& size, int x, int y, int z) {
    if (!isWithin(x, size.x) || !isWithin(y, size.y) || !isWithin(z, size.slices))
        return {};
    return (size_t(z) * size_t(size.y) + size_t(y)) * size_t(size.x) + size_t(x);
}

void copyText(const QString& text, char* out) {
    if (!out)
        return;
    constexpr qsizetype longest = veloCortivoTextSize - 1;
    QByteArray bytes = head(text, longest).toLocal8Bit();
    // A unit takes 3 bytes at most, so this leaves out no more than is needed.
    for (qsizetype units = std::min(text.size(), longest); bytes.size() > longest;) {
        units -= std::max<qsizetype>((bytes.size() - longest) / 4, 1);
        bytes = head(text, units).toLocal8Bit();
    }
    std::memcpy(out, bytes.constData(), size_t(bytes.size()) + 1);
}

} // namespace plugin_functions
