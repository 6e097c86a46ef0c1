// The file of patterns (.mvp) in its two forms, and the list of their runs beside it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/pattern_set.h"

#include <QByteArray>
#include <QString>

enum class PatternFileForm { Binary, Text };

/// Label and features as they are; the runs are not in the file.
[[nodiscard]] QByteArray patternFileContent(const PatternSet& patterns, PatternFileForm form);
/// Counts are checked against the content before anything is allocated. False, with `patterns`
/// unchanged, when the content is cut or longer than stated, has another version, no exemplar or no
/// feature, or a number that is not finite; `fault` then says what is wrong, after a colon.
[[nodiscard]] bool parsePatternFile(const QByteArray& content, PatternFileForm form,
                                    PatternSet& patterns, QString& fault);
/// The form that a content has: a text begins with its keyword.
[[nodiscard]] PatternFileForm patternFileForm(const QByteArray& content);

/// Name of the list of runs beside a file of patterns: "_runs.txt" in place of the extension.
[[nodiscard]] QString patternRunsPath(const QString& patternPath);

/// Writes the file and, where they are known, the list of runs, each as a whole or not at all; an
/// old list goes where they are not known. False after "Unable to open multi-voxel pattern file for
/// writing!".
[[nodiscard]] bool writePatternFile(const QString& path, const PatternSet& patterns,
                                    PatternFileForm form);
/// Reads either form, and the list of runs where there is one that fits. False after "Unable to
/// open multi-voxel pattern file \"%1\" for reading!", or a message about what is wrong with it. A
/// list of runs that does not fit is ignored after a warning, which is modeless.
[[nodiscard]] bool readPatternFile(const QString& path, PatternSet& patterns);
