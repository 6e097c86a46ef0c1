// Logs of stimulation computers: the header, and the lines behind it one by one.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "run/protocol/condition_index.h"
#include "run/protocol/tdat_protocol.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    const QString text = decodedText(bytesAsText(bytes));
    StimulationProtocol protocol;
    TDATState state;
    TDATSettings settings;
    const HeaderParsing header = parseTDATHeader(text, protocol, state, settings);
    require(header.length >= 0 && header.length <= text.size(), "a header lies inside its text");
    if (!header.good)
        return false;
    for (const QString& line : text.mid(header.length).split('\n'))
        static_cast<void>(takeTDATLine(line, protocol, state));
    for (const ProtocolContrasts::Contrast& contrast : state.contrasts.table)
        require(contrast.weights.size() <= protocol.conditions.size(), "a weight each at most");
    static_cast<void>(volumeConditionIndex(protocol, 50, 2000.0f));
    return true;
}

const bool added = addFuzzTarget({"tdat", run});

} // namespace
