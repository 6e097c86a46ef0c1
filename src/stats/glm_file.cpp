// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_file.h"

GLMParseResult parseGLM(std::span<const uint8_t>, const VolumeSize&, WholeRunModel&) {
    return GLMParseResult::Damaged;
}

QByteArray glmHeader(const WholeRunModel&) {
    return {};
}

bool readGLMFile(const QString&, const VolumeSize&, WholeRunModel&) {
    return false;
}

bool writeGLMFile(const QString&, WholeRunModel&) {
    return false;
}
