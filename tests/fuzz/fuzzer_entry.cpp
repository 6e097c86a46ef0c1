// Entry point of the fuzzer: runs the target this program is named after, with messages and the end
// of the program suppressed.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/program_end.h"
#include "fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static UnattendedMessages messages;
    installMessageHandler(&messages);
    installProgramEnd([](int) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const auto run = [] {
        for (const FuzzTarget& target : allTargets())
            if (std::string_view(target.name) == VELO_FUZZ_TARGET)
                return target.run;
        std::abort();
    }();
    run({data, size});
    return 0;
}
