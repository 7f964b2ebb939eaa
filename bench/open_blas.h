// OpenBLAS on one thread, found at run time: the peer of products of matrices.
#pragma once

#include <dlfcn.h>

#include <cstdlib>

namespace qdlflex::bench {

using Dgemm = void(const char *, const char *, const int *, const int *, const int *,
                   const double *, const double *, const int *, const double *, const int *,
                   const double *, double *, const int *, std::size_t, std::size_t);

// Null where OpenBLAS is not installed.
inline Dgemm *open_blas_dgemm() {
  setenv("OPENBLAS_NUM_THREADS", "1", 1);
  void *library =
      dlopen("/usr/lib/x86_64-linux-gnu/openblas-pthread/libblas.so.3", RTLD_NOW | RTLD_LOCAL);
  return library == nullptr ? nullptr : reinterpret_cast<Dgemm *>(dlsym(library, "dgemm_"));
}

}  // namespace qdlflex::bench
