// Finished runs as training takes them from the disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"

#include <memory>

/// The protocol of a run, whose header is in the file `path`; empty when it is not there.
[[nodiscard]] QString protocolPathOfRun(const FMRHeader& header, const QString& path);

/// Reads header and protocol. A run without a protocol file has no conditions and no path of one.
/// False after a message: one of the two is damaged.
[[nodiscard]] bool readConditionsOfRun(const QString& path, StimulationProtocol& protocol);

/// Loads a run with its volumes and the grey images of its slices, without protocol. Null after a
/// message, also where data are missing, which ends the program elsewhere.
[[nodiscard]] std::unique_ptr<QtCortivoDoc> loadFinishedRun(const QString& path);
