/* Symbol export and calling-convention macros shared by every public qon header. */
#ifndef QON_EXPORT_H
#define QON_EXPORT_H

#define QON_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define QON_EXTERN_C_BEGIN extern "C" {
#define QON_EXTERN_C_END }
#else
#define QON_EXTERN_C_BEGIN
#define QON_EXTERN_C_END
#endif

#endif
