/* The operating system's debug log and trace buffer, and its named allocations. */
#ifndef PLATFORM_HVS_DT_H
#define PLATFORM_HVS_DT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct hvs_dt_log *hvs_dt_handle;      /* one debug log */
typedef struct hvs_trace_buffer *hvs_trace_handle; /* one trace buffer */

/*
 * Writes one line, formatted as by printf, to the debug log. `site` is a static word of the calling statement, all
 * ones before its first call and owned by the log service afterwards: one word per statement. The five numbers before
 * it are zero in every call of a mapping plug-in.
 */
void _hvs_dt_log_filter_adv(hvs_dt_handle log, uint32_t zero1, uint32_t zero2, uint32_t zero3, uint32_t zero4,
                            uint32_t zero5, uint32_t *site, const char *format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 8, 9)))
#endif
    ;

/* Appends one line to the trace buffer. `text` is taken as it stands, it is no format; it is copied. */
void _lstrace(hvs_trace_handle buffer, uint64_t options, const char *text);

/* Frees a text made by yfw_strdup. Null is ignored. */
void hvs_named_free(void *allocation);

#ifdef __cplusplus
}
#endif

#endif
