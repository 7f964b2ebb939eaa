#pragma once

/// Marks a function whose loops are compiled a second time for wider vector registers; the loader
/// picks what the processor can. Both compute the same bits: nothing is summed in another order,
/// and multiply and add are not fused. Only for functions local to a file: of others the library
/// would export the choice between the two.
#if defined(__x86_64__)
#define QDLFLEX_VECTOR_CLONES __attribute__((target_clones("default", "avx2")))
#else
#define QDLFLEX_VECTOR_CLONES
#endif
