#pragma once

#include <qdlflex/qdlflex.h>

#include <memory>
#include <string>

namespace qdlflex::cli {

struct ReleaseRecord {
  void operator()(QDL_Record *record) const { QDL_UnLink(record); }
};

/// A record that ends with its owner.
using Record = std::unique_ptr<QDL_Record, ReleaseRecord>;

struct FreeArray {
  void operator()(void *array) const { QDL_FreeMemory(array); }
};

/// An array that the library returned as new.
template <class T>
using LibraryArray = std::unique_ptr<T[], FreeArray>;

/// Throws a Failure if the file cannot be opened as a QDL file.
Record open_record(const std::string &path);

/// Tells whether the file of a record is in XDR encoding.
bool is_xdr(QDL_Record *record);

/// Throws a Failure if the output is the input, under whatever name.
void check_output_is_not(const std::string &input, const std::string &output);

}  // namespace qdlflex::cli
