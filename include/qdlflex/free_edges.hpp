/** @file
 * Free edges as C++ classes: edges of a surface that only one face uses. QDL_GenerateFreeEdges() of
 * the C interface does the same for the faces of a model. C++20.
 *
 * The classes throw what the standard containers throw when memory runs out. Nodes must outlive the
 * edges between them.
 */
#ifndef QDLFLEX_FREE_EDGES_HPP
#define QDLFLEX_FREE_EDGES_HPP

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <string>
#include <vector>

class cQDLEdge;

/** A node of the graph with the edges that touch it. */
class QDL_API cQDLNode {
 public:
  explicit cQDLNode(int key); /**< A node without edges. */
  ~cQDLNode();
  cQDLNode(const cQDLNode &) = delete;
  cQDLNode &operator=(const cQDLNode &) = delete;

  int ID() const;        /**< The key. */
  int EdgeCount() const; /**< Number of linked edges; one that joins the node to itself counts 2. */

  void AddLinkedEdge(cQDLEdge *edge);    /**< Links an edge; done by its constructor. */
  void RemoveLinkedEdge(cQDLEdge *edge); /**< Unlinks it, however often it is linked. */

  /** Crosses to the neighbour with the smallest key and unlinks the edge that leads there from both
   * ends. Of edges to the same neighbour the one linked first is taken.
   * @return the neighbour; null for a node without edges */
  cQDLNode *GetConnectedNode();

  /** Walks along edges, which are unlinked on the way: forward from this node until it comes back
   * or a node with another number of edges than one is left, then, unless it came back, backward
   * in the same way.
   * @return the keys from end to end; a closed chain begins and ends with this node's key */
  std::list<int> FindFreeEdge();

 private:
  int key_;
  std::multimap<int, cQDLEdge *> edges_;  // by the key of the neighbour
};

/** An undirected edge between two nodes. */
class QDL_API cQDLEdge {
 public:
  /** Links itself into both nodes. The node with the smaller key becomes the first; of equal keys
   * it is `b`. */
  cQDLEdge(cQDLNode *a, cQDLNode *b);
  ~cQDLEdge(); /**< Unlinks itself from both nodes. */
  cQDLEdge(const cQDLEdge &) = delete;
  cQDLEdge &operator=(const cQDLEdge &) = delete;

  const std::string &Key() const; /**< Both keys in ascending order, as in "7_12". */
  int AddRef();                   /**< Counts one more face and returns the new count. */
  int RefCount() const;           /**< Number of faces; 1 at first. */
  cQDLNode *GetAnotherNode(cQDLNode *node) const; /**< The other end. */

 private:
  cQDLNode *first_;
  cQDLNode *second_;
  std::string key_;
  int references_ = 1;
};

/** Finds the free edges of a face list and joins them to chains. */
class QDL_API cQDLFreeEdges {
 public:
  cQDLFreeEdges(); /**< No chains yet. */
  ~cQDLFreeEdges();
  cQDLFreeEdges(const cQDLFreeEdges &) = delete;
  cQDLFreeEdges &operator=(const cQDLFreeEdges &) = delete;

  /** Finds the chains of a face list, in place of those found before. Faces of two nodes and less
   * have no edges.
   * @param faceCount number of faces
   * @param faceList per face its node count, then as many node keys; a count below 1 stands alone
   */
  void FindFreeEdges(int faceCount, int *faceList);

  /** A copy of the chains, in ascending order of the node where each was begun. */
  std::vector<std::list<int>> GetFreeEdges();

 private:
  void PopulateEdges(int faceCount, const int *faceList);
  void RemoveInternalEdges();
  void GenerateFreeEdgeList();
  void AddNodes();
  cQDLNode *FindNode(int key);

  std::vector<std::uint64_t> face_edges_;  // smaller key in the upper half, larger in the lower
  std::deque<cQDLNode> nodes_;             // ascending by key
  std::deque<cQDLEdge> edges_;
  std::vector<std::list<int>> free_edges_;
};

#endif
