/** @file
 * Reading about and writing files; platform services. */
#ifndef QDLFLEX_FILES_H
#define QDLFLEX_FILES_H

#include <stdio.h>

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup files Files
 * Blocks are addressed by their index, 0 to 36: one less than their number in the format.
 * @{ */

/** Checks a handle for null.
 * @param model handle; null: reported @return 1 or 0. @since 0.1 */
QDL_API int32_t CheckQDL(QDL_Record *model);

/** Tells whether the model holds the data of a block.
 * @param model handle; null: reported @param index block index
 * @return 1 for indices 0 to 2, the presence byte for 3 to 36, else 0. @since 0.1, slot 126 */
QDL_API int32_t QDL_Exists(QDL_Record *model, int32_t index);

/** Moves the model's file to the start of a block.
 * @param model handle; null: reported @param index block index
 * @return 1; 0 without moving when there is no file or no such block in it. @since 0.1 */
QDL_API int32_t QDL_goto_block(QDL_Record *model, int32_t index);

/** Size of a block in the model's file.
 * @param model handle; null: reported @param index block index
 * @return bytes; 0 for an absent block, one that can't be measured, and index 36. Without a
 *   file 4, 544 and 100 for indices 0 to 2. @since 0.1 */
QDL_API int64_t QDL_size_of_block(QDL_Record *model, int32_t index);

/** Reads a QDL file into a new, empty model, which from then on owns the stream and closes it when
 * it ends. Mode data stays in the file.
 * @param model handle, new from QDL_Create(); null: reported
 * @param stream file opened with File_Open() in mode "rb"; null: "Not a valid QDL format."
 * @param fileName name to keep, for QDL_FindQDL(); null: none
 * @return 1; 0 after a message, the caller then ends the model. @since 0.1 */
QDL_API int32_t QDL_ReadQDL(QDL_Record *model, FILE *stream, const char *fileName);

/** Reads the generalized stiffness from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedStiffness(QDL_Record *model);

/** Reads the generalized mass from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedMass(QDL_Record *model);

/** Reads the generalized damping from the model's file again, in place of the stored entries.
 * @param model handle; null: reported
 * @return 1; 0 silent when the file lacks the block, 0 reported on failure. @since 0.1 */
QDL_API int32_t QDL_ReadGeneralizedDamping(QDL_Record *model);

/** Writes the model to a file, as the words of ZEB_QDLWRITE_OPTIONS say (found anywhere in the
 * text, case-sensitive). By default the modes are orthonormalized and the file has version 60, XDR
 * encoding and double precision. In the order in which they act:
 * - Edits: `lbrf2cm` QDL_ShiftLBRFtoCM(), without which there is no file, `sketch(FILE)`
 *   QDL_SketchGrid(), `strip_face` QDL_StripCommonFaces(), `coarsen(ARGUMENTS)` QDL_TrimGeometry().
 * - Form: `single`: single precision. `no_xdr`: native encoding. `full_str`: version 41, stress and
 *   strain at every node; with `single` 51, with `no_xdr` 40, with both 50. `82_comp`, `81_comp`:
 *   version 20, 10. `sparse_str` (the default) fails together with `full_str`, `82_comp` or
 *   `81_comp`; `single` and the invariants fail with the last two.
 * - Modes: QDL_OrthoNormalize(), then the modes between the frequencies of `highpass(F)` and
 *   `lowpass(F)` alone, numbered from 1. `no_ortho`: all modes as they are, with generalized
 *   stiffness and mass in place of eigenvalues.
 * - Invariants: `full_invar` all of them, `fast_invar` without 5 and 9. With either, and where the
 *   model has invariant 3 already, loads and damping are brought to principal axes, nodes that the
 *   geometry does not use are dropped and the global mass properties come from the invariants.
 * - `empty`: no modes; geometry, masses, units, interface nodes and rigid invariants alone.
 * - `MKS`: the model is converted to KILOGRAM, METER, SECOND, NEWTON.
 *
 * Writing edits the model where these functions do; the edits stay also when it fails.
 * @param model handle; null: reported
 * @param path output file; refused when it is the file the model was read from, under any name
 * @return 1; 0 after a message, no file is left behind. @since 0.1, slot 101 */
QDL_API int32_t QDL_write_QDL(QDL_Record *model, const char *path);

/** Prints one block of the model, as it stands in memory, for people to read.
 * @param model handle; null: reported
 * @param blockId 1 to 37; others, and 33, only flush the stream
 * @param stream open for writing; null: nothing happens. @since 0.1, slot 113 */
QDL_API void QDL_Contents(QDL_Record *model, int32_t blockId, FILE *stream);

/** Solver-database export, which this library does not have: always reports an error.
 * @param model handle; null: reported @param path not used @return 0. @since 0.1, slot 102 */
QDL_API int32_t QDL_write_DB(QDL_Record *model, const char *path);

/** Opens a file by its UTF-8 name.
 * @param name path @param mode as for fopen
 * @return stream, to be closed with fclose; null on failure, no message. @since 0.1 */
QDL_API FILE *File_Open(const char *name, const char *mode);

/** Tells whether a text goes beyond ASCII.
 * @param text text, or null @return 1 when a byte is 128 or above, else 0. @since 0.1 */
QDL_API int32_t is_utf8_included(const char *text);

/** Converts UTF-8 to UTF-16; malformed sequences become U+FFFD.
 * @param text text, or null
 * @return new array with a terminating 0; null for null or when memory runs out. @since 0.1 */
QDL_API uint16_t *get_unicode_from_utf8(const char *text);

/** Moves the position of a stream, with 64-bit offsets on every platform.
 * @param stream stream @param offset bytes
 * @param whence 0 from the start, 1 from the current position, 2 from the end
 * @return 0; not 0 on failure: 1 for a bad whence, -1 for a null stream. @since 0.1 */
QDL_API int32_t FileSeek_Win32(FILE *stream, int64_t offset, int32_t whence);

/** Position of a stream, 64-bit on every platform.
 * @param stream stream @return bytes from the start; -1 on failure. @since 0.1 */
QDL_API int64_t FileTell_Win32(FILE *stream);

/** Widens floats to doubles, last to first, so that floats in the first half of the destination
 * are widened in place.
 * @param destination receives `count` doubles @param source `count` floats
 * @param count number of values; below 1: nothing done @return `destination`. @since 0.1 */
QDL_API double *float2double(double *destination, const float *source, int32_t count);

/** Narrows doubles to floats, first to last; may be done in place.
 * @param destination receives `count` floats @param source `count` doubles
 * @param count number of values; below 1: nothing done @return `destination`. @since 0.1 */
QDL_API float *double2float(float *destination, const double *source, int32_t count);

/** Cleans a fixed-width text in place: terminates it, cuts trailing blanks, deletes control
 * characters.
 * @param buffer `n` characters; null: nothing done @param n width; below 1: nothing done
 * @return `buffer`. @since 0.1 */
QDL_API char *terminate_string(char *buffer, int32_t n);

/** @} */
/** @defgroup platform Platform services
 * @{ */

/** Local date and time, such as "2026-11-15 09:30 +0100".
 * @param mode 1 date, 2 time with offset from UTC, any other both; negative: the same for its
 *   absolute value, and a trace of two lines on standard output
 * @param text receives up to 23 characters; null: nothing done @return 0. @since 0.1 */
QDL_API int32_t QDL_localtime_ISO8601(int32_t mode, char *text);

/** Processor time used by the process.
 * @return seconds. @since 0.1 */
QDL_API double QDL_cputime(void);

/** Describes the operating system by name, release and platform number, such as "Linux 6_1 0".
 * @param mode 2 name and release, 3 all three, 12 and 13 the same joined by "_", any other the
 *   name @param text receives the text; 128 characters are enough
 * @return 0; 1 and an empty text when the system does not tell. @since 0.1 */
QDL_API int32_t QDL_uname(int32_t mode, char *text);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
