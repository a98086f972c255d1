#pragma once

// Whether kernels may use vectors of 32 bytes: this is an x86-64 processor with AVX2, and the system
// keeps the vectors' high halves.
bool hasWideVectors();
