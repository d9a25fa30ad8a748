#include <velora_ts.h>

int32_t velora_ts_interface_version() { return VELORA_TS_INTERFACE_VERSION; }

const char* velora_ts_version() { return VELORA_TS_VERSION; }
