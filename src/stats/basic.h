// The basic-statistics kernel as a template over the element type, for the exported twins and
// for the kernels built on it (absolute deviations), and its two dispatch rules.
#pragma once

#include <cstdint>

#include "stats/task.h"

namespace ss {

// Packs the basic-statistics bits of the 64-bit estimate mask into the 20-bit working mask:
// bits 0-6 stay, 12 and 13 go to 7 and 8, 7-9 to 9-11, 25-31 to 12-18, 32 to 19.
uint32_t pack_estimates(uint64_t estimates);

// Threads for n observations of p variables: (n p m) / 8192 with m = p when a matrix is wanted,
// at most tmax and n / 16, at least 1.
int basic_threads(int tmax, int64_t n, int64_t p, bool matrix);

template <class T>
int basic(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);

}  // namespace ss
