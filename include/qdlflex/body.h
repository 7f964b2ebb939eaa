/** @file
 * Nodes, masses and faces. */
#ifndef QDLFLEX_BODY_H
#define QDLFLEX_BODY_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup nodes Nodes and mass
 * @{ */

/** Number of nodes.
 * @param model handle; null: silent @return the count; 0 for null. @since 0.1, slot 32 */
QDL_API int32_t QDL_NodeCount(QDL_Record *model);

/** Identifier of a node.
 * @param model handle; null: silent @param index node index
 * @return the identifier; 0 for a bad index. @since 0.1, slot 26 */
QDL_API int32_t QDL_NodeID(QDL_Record *model, int32_t index);

/** Index of a node.
 * @param model handle; null: reported @param nodeId node identifier
 * @return the index; -1 when no node has the identifier. @since 0.1, slot 25 */
QDL_API int32_t QDL_NodeIndex(QDL_Record *model, int32_t nodeId);

/** Coordinates of a node.
 * @param model handle; null: silent @param index node index @param xyz receives x, y, z (length)
 * @return 1; bad index: 0 and zeros; null or no nodes: 0, `xyz` untouched. @since 0.1, slot 34 */
QDL_API int32_t QDL_NodeCoordinates(QDL_Record *model, int32_t index, double *xyz);

/** Coordinates of all nodes in node order.
 * @param model handle; null: silent @param xyz receives 3 * QDL_NodeCount() values (length)
 * @param count receives the node count
 * @return 1; no nodes: 0, `count` 0, `xyz` untouched. @since 0.1, slot 35 */
QDL_API int32_t QDL_NodeCoordinateList(QDL_Record *model, double *xyz, int32_t *count);

/** Mass of a node.
 * @param model handle; null: silent @param index node index
 * @return the mass; 0.0 for a bad index. @since 0.1, slot 40 */
QDL_API double QDL_NodalMass(QDL_Record *model, int32_t index);

/** Rotary inertia of a node.
 * @param model handle; null: silent @param index node index
 * @param tensor receives the symmetric 3 x 3 tensor (mass length^2), 9 values
 * @return 1; 0, untouched, for a bad index or a node without inertia. @since 0.1, slot 42 */
QDL_API int32_t QDL_NodalInertia(QDL_Record *model, int32_t index, double *tensor);

/** Mass and coordinates of a node.
 * @param model handle; null: silent @param index node index @param mass receives the mass
 * @param xyz receives x, y, z (length)
 * @return 1; bad index: 0 and zeros; null handle or no nodes: 0, outputs untouched. @since 0.1 */
QDL_API int32_t QDL_NodalMassAndGeometry(QDL_Record *model, int32_t index, double *mass,
                                         double *xyz);

/** Identifiers of the interface nodes.
 * @param model handle; null: silent @param count receives their number
 * @return new array of identifiers, 0 for an entry that names no node of the model; null,
 *   `count` 0 when there are none. @since 0.1, slot 51 */
QDL_API int32_t *QDL_InterfaceNodeIDs(QDL_Record *model, int32_t *count);

/** Identifiers of the interface nodes; the same list as QDL_InterfaceNodeIDs().
 * @param model handle; null: silent @param count receives their number
 * @return new array of identifiers; null, `count` 0 when there are none. @since 0.1, slot 130 */
QDL_API int32_t *QDL_InterfaceNodes(QDL_Record *model, int32_t *count);

/** Exchanges two nodes (identifier, coordinates, mass, inertia) in the node list. Faces, interface
 * nodes and mode data keep their positions, so they now use the other node. QDL_NodeIndex() goes
 * on answering the old positions until its table is rebuilt.
 * @param model handle; null: reported @param idA identifier; unknown: nothing happens
 * @param idB identifier; unknown: nothing happens. @since 0.1 */
QDL_API void QDL_SwapNodesByID(QDL_Record *model, int32_t idA, int32_t idB);

/** The node nearest to a point; of equally near ones the first. Looks at the interface nodes, in
 * their order, where only they are wanted and the model has any, else at all nodes. A node whose
 * distance is not a number counts as infinitely far. Here as in the two functions below, queries
 * after the first one take time logarithmic in the number of nodes until nodes are added or moved
 * (Bentley, Comm. ACM 18 (1975) 509).
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param interfaceOnly 0: all nodes
 * @return node index; -1 for null or when there is no node to look at. @since 0.1, slot 36 */
QDL_API int32_t QDL_ClosestNode(QDL_Record *model, const double *point, int32_t interfaceOnly);

/** The n nodes nearest to a point, nearest first; of equally near ones the first come first. Looks
 * at the same nodes as QDL_ClosestNode().
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param n number of nodes wanted @param interfaceOnly 0: all nodes
 * @param count receives the number found, at most n; 0 on failure
 * @return new array of node indices; null on failure, also for n < 1 or when there is no node to
 *   look at. @since 0.1, slot 37 */
QDL_API int32_t *QDL_ClosestNodes(QDL_Record *model, const double *point, int32_t n,
                                  int32_t interfaceOnly, int32_t *count);

/** All nodes at most `radius` from a point, nearest first; of equally near ones, unlike in
 * QDL_ClosestNodes(), the last come first. Looks at the same nodes as QDL_ClosestNode(). When
 * memory runs out, this is reported and what was found until then is returned.
 * @param model handle; null: reported @param point 3 coordinates (length)
 * @param radius distance (length), of which only the square counts @param interfaceOnly 0: all
 * nodes
 * @param count receives the number found; 0 on failure
 * @return new array of node indices; null on failure, also when there are none.
 * @since 0.1, slot 38 */
QDL_API int32_t *QDL_ClosestNodesInNeighborhood(QDL_Record *model, const double *point,
                                                double radius, int32_t interfaceOnly,
                                                int32_t *count);

/** Diagonal of the axis-parallel box around the first node and all nodes of the face list. The
 * first result other than zero is kept when coordinates change later.
 * @param model handle; null: silent
 * @return length; 0.0 for null or no nodes. @since 0.1, slot 24 */
QDL_API double QDL_BodySize(QDL_Record *model);

/** Global mass properties, first brought up to date by QDL_CalculateGlobalMassFromNodeMass().
 * @param model handle; null: silent @param mass receives the mass
 * @param centre receives the centre of mass, 3 values (length)
 * @param inertia receives the inertia about the origin, 9 values (mass length^2), with positive
 *   products of inertia off the diagonal
 * @return 1; failure: 0 and zeros in all outputs. @since 0.1, slot 23 */
QDL_API int32_t QDL_TotalMassInertia(QDL_Record *model, double *mass, double *centre,
                                     double *inertia);

/** Derives the global mass properties from invariants 1, 2 and 7: centre of mass = invariant 2 /
 * invariant 1 (zero without mass), inertia = invariant 7 with the off-diagonal entries negated.
 * @param model handle; null: reported @return 1; 0 for null or when memory runs out. @since 0.1 */
QDL_API int32_t QDL_CalculateGlobalMassFromNodeMass(QDL_Record *model);

/** @} */
/** @defgroup faces Faces
 * A face list is a flat array: per face its node count k, then k node indices in winding order.
 * @{ */

/** Sizes of the face list.
 * @param model handle; null: silent, outputs 0 @param faceCount receives the number of faces
 * @param listLength receives the number of integers in the list
 * @return 1; 0 for null. @since 0.1, slot 46 */
QDL_API int32_t QDL_FaceListSize(QDL_Record *model, int32_t *faceCount, int32_t *listLength);

/** Copies the face list.
 * @param model handle; null: silent @param list receives the list's integers
 * @return 1, also for an empty list; 0 when the model has no face list. @since 0.1, slot 47 */
QDL_API int32_t QDL_ElementFaces(QDL_Record *model, int32_t *list);

/** Removes the faces inside the body: a face that two elements share is listed twice with opposite
 * windings, and both go. Of faces listed more than once with one winding one stays. The faces left
 * begin at their largest node index and are ordered by number of nodes, then by largest node, then
 * by the nodes from there on towards the larger neighbour of the largest node. Runs once per model;
 * later calls do nothing, also when faces were added. "Stripping interior faces" goes to the
 * information handler.
 * @param model handle; null: reported. Without faces the error is that of memory that ran out and
 *   a later call may strip. @since 0.1 */
QDL_API void QDL_StripCommonFaces(QDL_Record *model);

/** Replaces the faces by those of a sketch file: a text file of decimal integers apart by white
 * space, the number of faces (below 1: none), then per face its node count and as many node
 * identifiers. What follows is ignored. Node counts are taken as they are (below 1: no identifiers
 * follow) and repeated nodes stay. The model counts as coarsened afterwards. A file that can't be
 * opened, a missing number and an identifier that no node has are warned about; the faces then stay
 * as they were.
 * @param model handle; null: reported @param path name of the file; null: warned about.
 * @since 0.1 */
QDL_API void QDL_SketchGrid(QDL_Record *model, const char *path);

/** The nodes that the geometry uses: nodes of faces, interface nodes with an identifier above 0
 * and, unless the environment variable ZEB_QDLWRITE_OPTIONS contains "optimize_mforce_nodes", the
 * nodes at which modal loads act. Collected once; collected again after faces, interface nodes or
 * such loads have changed.
 * @param model handle; null: reported
 * @param count receives the number of nodes; 0 on failure
 * @return new array of node indices, ascending; null on failure, also when there are none, and with
 *   a warning for a model without a face list. @since 0.1 */
QDL_API int32_t *QDL_GeometryNodes(QDL_Record *model, int32_t *count);

/** Tells whether the faces were coarsened or replaced by a sketch.
 * @param model handle; null: silent @return 1 or 0. @since 0.1, slot 49 */
QDL_API int32_t QDL_IsCoarsened(QDL_Record *model);

/** Coarsens the faces: nodes in nearly flat patches are removed and the faces around each of them
 * merged into one polygon; then, if asked for, nearly co-linear corners are dropped. Interface
 * nodes stay. The faces' new order and their first nodes follow from the order of the nodes.
 * @param model handle; null: reported
 * @param arguments `resolution,angle,switch,node,node,...` with any single character between the
 *   numbers; null: nothing is done. The resolution is the reach of a removed node's faces as a
 *   fraction of the model's diagonal, above 0 to 0.5, else a warning and 0.02. The angle between
 *   the faces around a removed node, above 0 to 45 degrees, else a warning and 10. A switch other
 *   than 0 drops co-linear corners, down to fewer than three. Then identifiers of nodes to be kept;
 *   the word `preserve_str` anywhere keeps the nodes of modal stress and strain.
 * @return 1; 0 when there are no faces or no nodes, when faces name nodes that do not exist, or
 *   when memory runs out. @since 0.1 */
QDL_API int32_t QDL_TrimGeometry(QDL_Record *model, const char *arguments);

/** Finds the free edges, those that a single face uses, and joins them to chains of nodes. Internal
 * geometry is removed first, which changes faces and nodes. The chains are kept until faces or node
 * identifiers change. The classes of qdlflex/free_edges.hpp do the same for any face list.
 * @param model handle; null: reported @return 1; 0 when memory runs out, silently. @since 0.1 */
QDL_API int32_t QDL_GenerateFreeEdges(QDL_Record *model);

/** Number of chains of free edges; they are found first unless they are known.
 * @param model handle; null: reported @return the count; 0 for null. @since 0.1, slot 162 */
QDL_API int32_t QDL_GetFreeEdgeCount(QDL_Record *model);

/** Number of nodes in a chain of free edges; the chains are found first unless they are known.
 * @param model handle; null: reported @param chain zero-based
 * @return the count; no such chain: 0. @since 0.1, slot 163 */
QDL_API int32_t QDL_GetFreeEdgeSize(QDL_Record *model, int32_t chain);

/** Nodes of a chain of free edges that is known already. A closed chain begins with its smallest
 * node index, runs towards the smaller neighbour and ends with the node it began with; an open one
 * runs from end to end. Where chains meet, one ends.
 * @param model handle; null: reported @param chain zero-based
 * @param nodeIds receives as many identifiers as QDL_GetFreeEdgeSize() says
 * @return the number of identifiers; no such chain: 0. @since 0.1, slot 164 */
QDL_API int32_t QDL_GetFreeEdge(QDL_Record *model, int32_t chain, int32_t *nodeIds);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
