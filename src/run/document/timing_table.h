// The times of a run's volumes as a table, and as sentences for the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/volume_ledger.h"

#include <QByteArray>
#include <QStringList>

/// A line with the names of the columns, then one line for each volume that is done; tab separated,
/// times in milliseconds with three decimals. docs/file_formats_logs.md has the columns.
[[nodiscard]] QByteArray timingTable(const VolumeLedger& ledger);

/// What endangers the run, one sentence each, with the latest volume that shows it and how many
/// did: volumes that need more than three quarters of the TR, with the stage that took most, and
/// volumes that came late. None as long as all is well.
[[nodiscard]] QStringList timingWarnings(const VolumeLedger& ledger);
