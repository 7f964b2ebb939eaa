#pragma once

#include "body_pair.h"

namespace qdlflex::cli {

/// Where the common nodes of two bodies stand in the node sets of a kind of mode data; -1 where a
/// set lacks the node. Nodes that both sets lack are left out.
struct KindNodes {
  int32_t kind;
  std::vector<int32_t> ids;
  std::vector<int32_t> a;
  std::vector<int32_t> b;
};

KindNodes kind_nodes(const BodyPair &bodies, int32_t kind);

/// One half of a mode at some places of the node set; zeros where a place is -1.
std::vector<double> half_mode_at(QDL_Record *record, int32_t mode_index, int32_t kind, int32_t part,
                                 const std::vector<int32_t> &places);

/// The modal assurance criterion of two vectors, (a . b)^2 / ((a . a) (b . b)); no number where
/// one is zero.
double modal_assurance(double ab, double aa, double bb);

/// Pairs the modes whose translations are most alike, in the order of A. Modes without translations
/// are paired by their numbers.
std::vector<ModePair> pair_modes(const BodyPair &bodies);

/// The numbers of the modes of one body, whose index in a pair is `index`, that are in no pair.
std::vector<int32_t> lonely_modes(const BodyPair &bodies, QDL_Record *record,
                                  int32_t ModePair::*index);

}  // namespace qdlflex::cli
