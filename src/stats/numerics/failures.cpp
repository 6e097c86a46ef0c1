// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/failures.h"

#include "base/memory.h"
#include "base/program_end.h"

#include <cstdio>
#include <new>

namespace numerics {

namespace {

template<typename T>
bool allocate(std::vector<T>& values, size_t rows, size_t columns, const char* failure) {
    values.clear();
    if (columns == 0 || memoryIsAvailable(rows, columns * sizeof(T))) {
        try {
            values.assign(rows * columns, T(0));
            return true;
        } catch (const std::bad_alloc&) {
            values.clear();
        }
    }
    nrerror(failure);
    return false;
}

} // namespace

void nrerror(const char* text) {
    std::fprintf(stderr, "Numerical Recipes run-time error...\n%s\n...now exiting to system...\n",
                 text);
    endProgram(1);
}

bool allocateVector(std::vector<float>& values, size_t count) {
    return allocate(values, count, 1, "allocation failure in vector()");
}

bool allocateVector(std::vector<double>& values, size_t count) {
    return allocate(values, count, 1, "allocation failure in dvector()");
}

bool allocateMatrix(std::vector<float>& values, size_t rows, size_t columns) {
    return allocate(values, rows, columns, "allocation failure 2 in matrix()");
}

} // namespace numerics
