/* A run that a host in C records. */
#include "Run.h"

#define Z VELORA_TS_ZERO_TERMINATED
#define TRY(call)                             \
  do {                                        \
    if ((call) != VELORA_TS_OK) return #call; \
  } while (0)

const char* record_run(void) {
  velora_ts_logging* logging = NULL;
  velora_ts_configurator* configurator = NULL;
  char parent[VELORA_TS_GUID_CAPACITY], guid[VELORA_TS_GUID_CAPACITY];
  size_t size = 0;

  TRY(velora_ts_create_configurator(&configurator));
  TRY(velora_ts_set_parent(configurator, "all", Z, "1", Z, "2", Z, "3", Z, NULL, 0, parent, sizeof parent, NULL));
  TRY(velora_ts_close_configurator(configurator));
  TRY(velora_ts_create_logging("instrument.xml", Z, NULL, 0, &logging));
  TRY(velora_ts_create_execution(logging, "Series", Z, "grid 3", Z, "a\0b", 3, guid, sizeof guid, &size));
  /* The guid of the child takes the place of that of its parent. */
  TRY(velora_ts_create_execution_under(logging, guid, size, "Series", Z, "+3.0\xC2\xB0", Z, NULL, 0, guid, sizeof guid,
                                       &size));
  TRY(velora_ts_create_event(logging, "Image", Z));
  TRY(velora_ts_add_bool(logging, "Image", Z, "Converged", Z, -1));
  TRY(velora_ts_add_double(logging, "Image", Z, "Defocus", Z, -0.1));
  TRY(velora_ts_add_int(logging, "Image", Z, "Frames", Z, -40));
  TRY(velora_ts_add_text(logging, "Image", Z, "File", Z, "x\0y", 3));
  TRY(velora_ts_save_event(logging, "Image", Z, guid, size));
  TRY(velora_ts_save_event(logging, "Image", Z, "", 0));
  TRY(velora_ts_update_execution(logging, guid, Z));
  TRY(velora_ts_close_logging(logging));
  return NULL;
}
