/** @file
 * Creating, sharing and ending models; messages and run-time binding. */
#ifndef QDLFLEX_RECORDS_H
#define QDLFLEX_RECORDS_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup records Records
 * Creating, sharing and ending models.
 * @{ */

/** Creates an empty model at the end of the list of open models; touches no disk.
 * @param plannedNodes expected node count, sizes the temporary mode files; more nodes are accepted
 * @param plannedModes most modes that the model will take; a further mode is refused (negative
 *   counts act as 0)
 * @return handle with reference count 1; null when memory runs out. @since 0.1, slot 0 */
QDL_API QDL_Record *QDL_Create(int32_t plannedNodes, int32_t plannedModes);

/** Opens a QDL file, or finds the open model of exactly this name (no further reference is
 * counted). The file stays open while the model lives, and mode data is read from it on demand.
 * @param fileName path of the file
 * @return handle; null without a message when the name is null or the file can't be opened,
 *   null after the reader's message when it can't be read. @since 0.1, slot 2 */
QDL_API QDL_Record *QDL_CreateFromQDL(const char *fileName);

/** Opens a QDL file for its surface alone, or finds the open model that this function has made of
 * exactly this name. A new model loses its internal geometry (QDL_RemoveInternalGeometry()); when
 * that fails after a message, the model keeps all nodes. The same file opened by
 * QDL_CreateFromQDL() is a model of its own.
 * @param fileName path of the file
 * @return as QDL_CreateFromQDL(). @since 0.1, slot 3 */
QDL_API QDL_Record *QDL_CreateFromQDL_SurfaceMesh(const char *fileName);

/** Finds the open model that QDL_CreateFromQDL() would return without reading.
 * @param fileName path, compared byte for byte @return handle, or null. @since 0.1, slot 1 */
QDL_API QDL_Record *QDL_FindQDL(const char *fileName);

/** Tells whether a handle is on the list of open models.
 * @param model any pointer, also stale or null; not dereferenced
 * @return 1 or 0. @since 0.1, slot 142 */
QDL_API int32_t QDL_IsValid(const QDL_Record *model);

/** Drops one reference; destroys the model when it was the last.
 * @param model handle; not listed: ignored
 * @return references left; 0 when it was destroyed or is not listed. @since 0.1, slot 106 */
QDL_API int32_t QDL_DeReference(QDL_Record *model);

/** Destroys a model whatever its reference count: closes its file, removes its temporary files.
 * @param model handle; not listed: ignored. @since 0.1, slot 105 */
QDL_API void QDL_UnLink(QDL_Record *model);

/** Destroys every open model. @since 0.1, slot 107 */
QDL_API void QDL_Terminate(void);

/** Does nothing; kept for the interface table. QDL_UnLink() destroys a model.
 * @param model not used. @since 0.1, slot 104 */
QDL_API void QDL_Destroy(QDL_Record *model);

/** Releases an array that a function of this interface returned as new.
 * @param pointer array, or null. @since 0.1, slot 108 */
QDL_API void QDL_FreeMemory(void *pointer);

/** @} */
/** @defgroup messages Messages and run-time binding
 * @{ */

/** Installs the process-wide message handlers.
 * @param table three handlers: error, warning, information; null entries drop their messages
 * @return 1; null table: 0, nothing changed. @since 0.1 */
QDL_API int32_t SetMessageHandlers(const QDL_MessageHandler *table);

/** Version of the library that runs, which need not be the one whose headers a program was built
 * with. A file's own version is QDL_Version().
 * @return text of three numbers such as #QDLFLEX_VERSION_STRING; the library's. @since 0.1 */
QDL_API const char *QDL_LibraryVersion(void);

/** Fills a host's function table for binding at run time. A function's slot stands with its
 * `since`; slots never move. Slots without a function (45, 109-111, 127, 138-141, 177-183 in every
 * version) keep what the host put there.
 * @param table #QDL_INTERFACE_SLOTS pointers, the host's own
 * @return 1; null table: 0. @since 0.1 */
QDL_API int32_t PopulateInterface(QDL_Function *table);

/** Sends a text to the error handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Error(const char *format, ...) QDL_PRINTF(1, 2);

/** Sends a text to the warning handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Warning(const char *format, ...) QDL_PRINTF(1, 2);

/** Sends a text to the information handler.
 * @param format printf format; the finished text is cut at 1007 bytes @param ... its arguments
 * @return the handler's result; 0 without a handler. @since 0.1 */
QDL_API int64_t QDL_Info(const char *format, ...) QDL_PRINTF(1, 2);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
