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
