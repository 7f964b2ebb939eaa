#pragma once

#include <dlfcn.h>

namespace qdlflex {

/// A function that a companion library or the host program itself may supply: given the weak
/// reference to it, which a program linked with the library answers, else looked up at this moment.
/// Null where nobody supplies it.
template <class Function>
Function *companion_function(Function *weak_reference, const char *name) {
  if (weak_reference != nullptr)
    return weak_reference;
  return reinterpret_cast<Function *>(::dlsym(RTLD_DEFAULT, name));
}

}  // namespace qdlflex
