#pragma once

#include <qdlflex/qdlflex.h>

#include <memory>

namespace qdlflex::cli {

struct ReleaseRecord {
  void operator()(QDL_Record *record) const { QDL_UnLink(record); }
};

/// A record that ends with its owner.
using Record = std::unique_ptr<QDL_Record, ReleaseRecord>;

}  // namespace qdlflex::cli
