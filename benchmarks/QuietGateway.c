/* A gateway that takes everything and stores nothing, so that the calls of a host cost only what they cost beside TS.
 */
#include <velora_ts.h>

static velora_ts_status BeginSession(void* context, const velora_ts_text* texts) {
  (void)context, (void)texts;
  return VELORA_TS_OK;
}

static velora_ts_status Path(void* context, const char* path, size_t size) {
  (void)context, (void)path, (void)size;
  return VELORA_TS_OK;
}

static velora_ts_status Yes(void* context, int32_t* answer) {
  (void)context;
  *answer = 1;
  return VELORA_TS_OK;
}

static velora_ts_status AnswerNothing(void* context, const char* path, size_t size, velora_ts_answer* answer) {
  (void)context, (void)path, (void)size, (void)answer;
  return VELORA_TS_OK;
}

static velora_ts_status SaveExecution(void* context, const velora_ts_execution* execution, velora_ts_answer* answer) {
  (void)context, (void)execution;
  return velora_ts_answer_text(answer, "5a1c2f0e-0000-4000-8000-000000000001", VELORA_TS_ZERO_TERMINATED);
}

static velora_ts_status GetExecution(void* context, const char* guid, size_t size, int32_t forLink,
                                     velora_ts_answer* answer) {
  (void)context, (void)forLink;
  const velora_ts_execution execution = {.guid = {guid, size}, .kind = 5, .status = 4, .time = VELORA_TS_NO_TIME};
  return velora_ts_answer_execution(answer, &execution);
}

static velora_ts_status SaveEvent(void* context, const velora_ts_event* event, const char* configuration,
                                  size_t configurationSize, const char* execution, size_t executionSize) {
  (void)context, (void)event, (void)configuration, (void)configurationSize, (void)execution, (void)executionSize;
  return VELORA_TS_OK;
}

static velora_ts_status SaveConfiguration(void* context, const velora_ts_configuration* configuration,
                                          velora_ts_answer* answer) {
  (void)context, (void)configuration, (void)answer;
  return VELORA_TS_OK;
}

/* Puts it into the place of TS. */
velora_ts_status PutQuietGatewayInPlace(void) {
  const velora_ts_gateway gateway = {.size = sizeof gateway,
                                     .begin_session = BeginSession,
                                     .set_path = Path,
                                     .is_present = Yes,
                                     .is_connectable = Yes,
                                     .register_activities = AnswerNothing,
                                     .save_execution = SaveExecution,
                                     .get_execution = GetExecution,
                                     .read_file = AnswerNothing,
                                     .save_event = SaveEvent,
                                     .save_configuration = SaveConfiguration};
  return velora_ts_set_gateway(&gateway);
}
