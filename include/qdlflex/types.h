/** @file
 * Version, types and constants of the interface. */
#ifndef QDLFLEX_TYPES_H
#define QDLFLEX_TYPES_H

#include <stdint.h>

#define QDLFLEX_VERSION_MAJOR 0        /**< Version of the library; files have their own. */
#define QDLFLEX_VERSION_MINOR 1        /**< Minor version of the library. */
#define QDLFLEX_VERSION_PATCH 0        /**< Patch level of the library. */
#define QDLFLEX_VERSION_STRING "0.1.0" /**< Version of the library as text. */

/** @def QDL_API
 * Marks what the shared library exports. */
/** @def QDL_PRINTF
 * Lets the compiler check a format at argument position `text` against arguments from `rest`. */
#if defined(__GNUC__)
#define QDL_API __attribute__((visibility("default")))
#define QDL_PRINTF(text, rest) __attribute__((format(printf, text, rest)))
#else
#define QDL_API
#define QDL_PRINTF(text, rest)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** One flexible body; opaque. */
typedef struct QDL_Record QDL_Record;

/** A host's message handler: takes the finished text, which may end in a newline and is only valid
 * during the call; its result becomes the result of QDL_Error(), QDL_Warning() or QDL_Info(). */
typedef int64_t (*QDL_MessageHandler)(const char *text);

/** Generic function pointer of the interface table; cast to the function's own type before a call.
 */
typedef void (*QDL_Function)(void);

/** One line of a unit table: a unit's name and its size in SI units. */
typedef struct QDL_UnitEntry {
  const char *name; /**< upper-case name; null or empty in the entry that ends a table */
  double factor;    /**< SI value of one unit */
} QDL_UnitEntry;

/** Kinds of mode data. */
enum QDL_ModeKind {
  QDL_MODE_SHAPE = 0,  /**< translations (length) and rotations (radians) */
  QDL_MODE_STRESS = 1, /**< stress tensor (force / length^2) */
  QDL_MODE_STRAIN = 2  /**< strain tensor with engineering shear (no unit) */
};

/** Fixed sizes. */
enum {
  QDL_BLOCK_COUNT = 37,     /**< blocks of a file, by index 0 to 36 */
  QDL_INTERFACE_SLOTS = 188 /**< slots of the table that PopulateInterface() fills */
};

#ifdef __cplusplus
}
#endif

#endif
