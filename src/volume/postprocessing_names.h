// Names of a post-processed run: they record what was done.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/postprocessing_options.h"

#include <QString>

struct PostprocessedNames {
    QString fmrName; ///< with ".fmr" at its end
    QString prefix;
};

/// Adds the marks of all checked groups to the name of a project file, with or without folder, and
/// to its prefix, which loses a trailing "-" first. With no group checked the project's name stays
/// as it is.
[[nodiscard]] PostprocessedNames makePostprocessedNames(const QString& fmrName,
                                                        const QString& prefix,
                                                        const PostprocessingOptions& options);

/// Names, without folder, of the files that the post-processed run is written to.
struct PostprocessedFiles {
    QString fmrName;
    QString stcName;
    bool replaceOthers = false; ///< one of them exists already
};

/// For a run that is written to a folder, which ends with "/".
[[nodiscard]] PostprocessedFiles postprocessedFiles(const QString& projectPath,
                                                    const QString& prefix,
                                                    const QString& targetFolder,
                                                    const PostprocessingOptions& options);
