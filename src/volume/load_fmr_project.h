// Loading a functional run from its files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

enum class LoadData { No, Yes };

/// Reads the header into the project, allocates its volumes and, if asked, reads the data. The
/// sizes that the header states are held against the data files before anything is allocated. False
/// after a message; the project is unchanged when the header is no good. Data files that are
/// missing, too short or of another matrix end the program with status 1 after a message.
///
/// LoadAMRFile names an existing file afterwards, or it and ShowAMRFile are cleared after a
/// message.
[[nodiscard]] bool loadFMRProject(FMRProject& project, const QString& fileName, LoadData loadData);
