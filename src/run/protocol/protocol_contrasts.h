// Contrasts that a protocol asks for or brings along.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"

#include <QString>
#include <vector>

struct ProtocolContrasts {
    enum class Source {
        None,
        ContrastFile, ///< that of the settings
        Generated,    ///< automatic ones, of `level`
        Table,
    };
    struct Contrast {
        QString name;
        std::vector<int> weights; ///< one for each condition of the protocol
        int selectionState = 1;   ///< 0 off, 1 positive, 2 negative, 3 both
        RgbColor color;
    };

    Source source = Source::None;
    int level = 0;
    std::vector<Contrast> table;
};
