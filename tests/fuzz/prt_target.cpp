// Protocol files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "run/protocol/condition_index.h"
#include "run/protocol/prt_text.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    const QString text = QString::fromUtf8(bytesAsText(bytes));
    bool good = false;
    for (const bool withResponses : {false, true}) {
        StimulationProtocol protocol;
        if (parsePRT(text, withResponses, protocol).result != PRTResult::Good)
            continue;
        good = true;
        static_cast<void>(volumeConditionIndex(protocol, 50, 2000.0f));
        StimulationProtocol again;
        require(parsePRT(QString::fromUtf8(prtText(protocol)), withResponses, again).result ==
                    PRTResult::Good,
                "a written protocol reads");
        require(again.nrOfConditions() == protocol.nrOfConditions(), "no condition is lost");
    }
    return good;
}

const bool added = addFuzzTarget({"prt", run});

} // namespace
