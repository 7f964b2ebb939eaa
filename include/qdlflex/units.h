/** @file
 * Units and their conversion. */
#ifndef QDLFLEX_UNITS_H
#define QDLFLEX_UNITS_H

#include <qdlflex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup units Units
 * A model has four unit names of up to 15 characters: mass, length, time, force. Changing them
 * converts every stored number; mode data is converted when fetched. Unit names are accepted in any
 * case and rewritten to the spelling of the tables; a host that supplies
 * `int QDL_ConvertUnitsLabel(char *label16)` decides about names itself.
 * @{ */

/** Known mass units (to kilogram), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_MassUnits[13];
/** Known force units (to newton), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_ForceUnits[11];
/** Known length units (to metre), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_LengthUnits[14];
/** Known time units (to second), in search order, with an end entry. @since 0.1 */
QDL_API extern const QDL_UnitEntry QDL_TimeUnits[8];

/** Declares the units of a model that has none, or converts the model to other units.
 * @param model handle; null: reported
 * @param mass,length,time,force unit names; characters beyond 15 are ignored
 * @return 1; 0, silent, nothing changed, for a null or unknown name. @since 0.1, slot 13 */
QDL_API int32_t QDL_SetUnits(QDL_Record *model, const char *mass, const char *length,
                             const char *time, const char *force);

/** QDL_SetUnits() with the units whose factors are within 1e-4 (relative) of the given ones.
 * @param model handle; null: reported @param mass,length,time,force SI value of one unit
 * @return 1; 0, nothing changed, when a factor matches no unit. @since 0.1, slot 14 */
QDL_API int32_t QDL_SetUnitsByMultiplierOnSI(QDL_Record *model, double mass, double length,
                                             double time, double force);

/** Unit names of a model; "KILOGRAM", "METER", "SECOND" and "NEWTON" stand for names not set.
 * @param model handle; null: silent, buffers untouched
 * @param mass16,length16,time16,force16 each receives up to 16 characters; may be null
 * @return 1; 0 for null. @since 0.1, slot 15 */
QDL_API int32_t QDL_Units(QDL_Record *model, char *mass16, char *length16, char *time16,
                          char *force16);

/** Factor of a unit to SI.
 * @param name unit name, in any case @param table one of the unit tables
 * @return the factor; 1.0 for a null or empty name; 0.0 for an unknown name or null table.
 *   @since 0.1 */
QDL_API double QDL_UnitsDivider(const char *name, const QDL_UnitEntry *table);

/** Name of the first unit whose factor is within 1e-4 (relative) of the given one.
 * @param factor SI value of one unit @param table one of the unit tables
 * @return name in the table, not to be released; null when nothing matches. @since 0.1 */
QDL_API const char *QDL_UnitsLabel(double factor, const QDL_UnitEntry *table);

/** Converts a mass to kilogram.
 * @param model handle; null: silent @param value mass in the model's unit
 * @return kilogram, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 16 */
QDL_API double QDL_Mass2Kilogram(QDL_Record *model, double value);

/** Converts a length to metre.
 * @param model handle; null: silent @param value length in the model's unit
 * @return metre, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 18 */
QDL_API double QDL_Length2Meter(QDL_Record *model, double value);

/** Converts a time to second.
 * @param model handle; null: silent @param value time in the model's unit
 * @return second, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 19 */
QDL_API double QDL_Time2Second(QDL_Record *model, double value);

/** Converts a force to newton.
 * @param model handle; null: silent @param value force in the model's unit
 * @return newton, the same without a unit; 0.0 for null or unknown unit. @since 0.1, slot 17 */
QDL_API double QDL_Force2Newton(QDL_Record *model, double value);

/** Unit consistency factor: force time^2 / (length mass) in SI values of the model's units.
 * @param model handle; null: silent
 * @return the factor, 1 for consistent units and for a model without units; 0.0 for null.
 *   @since 0.1, slot 128 */
QDL_API double QDL_UCF(QDL_Record *model);

/** Multiplies values in place by the decimal method of unit changes: exponents and mantissas are
 * multiplied separately, so the last digits differ from a plain product. Denormal values become 0.
 * @param values array of `count` values @param count number of values; below 1: nothing done
 * @param factor factor @return `values`. @since 0.1 */
QDL_API double *QDL_Convert_Units(double *values, int32_t count, double factor);

/** Applies the ratios of the last unit change to every stored number. QDL_SetUnits() does this
 * itself; a further call scales the stored numbers once more, and mode data not at all.
 * @param model handle; null: reported @return 1 or 0. @since 0.1 */
QDL_API int32_t QDL_ScaleDatabase(QDL_Record *model);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
