#pragma once

#include <velora_ts.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Records a run with every function in the current directory.
 * Returns the call that failed, or null. */
const char* record_run(void);

#ifdef __cplusplus
}
#endif
