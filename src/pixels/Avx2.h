#pragma once

// Whether kernels may use AVX2: the processor has it, and the system saves its registers.
bool hasAvx2();
