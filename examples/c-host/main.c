/* A first host in C: one run with one event. docs/c.md explains it. */

#include <stdio.h>
#include <velora_ts.h>

/* A text that ends at its zero byte, and how long it is. */
#define Z(text) (text), VELORA_TS_ZERO_TERMINATED

int main(void) {
  velora_ts_logging* logging = NULL;
  char run[VELORA_TS_GUID_CAPACITY] = "";
  /* VELORA_TS_OK is 0, so the first call that fails is the last one. */
  const int failed =
      velora_ts_available(Z("instrument.xml"), NULL, 0) ||
      velora_ts_create_logging(Z("instrument.xml"), NULL, 0, &logging) ||
      velora_ts_create_execution(logging, Z("Session"), Z("grid 7"), Z("a first run"), run, sizeof run, NULL) ||
      velora_ts_create_event(logging, Z("Image")) || velora_ts_add_double(logging, Z("Image"), Z("Defocus"), -1.5) ||
      velora_ts_add_text(logging, Z("Image"), Z("Camera"), Z("left port")) ||
      velora_ts_save_event(logging, Z("Image"), Z(run)) || velora_ts_update_execution(logging, Z(run));
  if (failed) {
    fprintf(stderr, "Not everything was recorded: %s\n", velora_ts_last_error(NULL));
  } else {
    printf("Recorded run %s\n", run);
  }
  velora_ts_close_logging(logging);
  return failed;
}
