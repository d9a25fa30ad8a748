/* What a host in C has of the header: each callback is a function of the convention that the header names. The compiler
 * is told to use another convention where none is named, so that a missing one is an error. */
#include <velora_ts.h>

#define C VELORA_TS_CALL
typedef velora_ts_status status;

static void C release(void* context) { (void)context; }
static status C session(void* context, const velora_ts_text* texts) { return context == texts; }
static status C text(void* context, const char* data, size_t size) { return context == data && size; }
static status C two_texts(void* context, const char* data, size_t size, const char* more, size_t more_size) {
  return context == data && size && more && more_size;
}
static status C yes(void* context, int32_t* answer) { return context == answer; }
static status C answered(void* context, const char* data, size_t size, velora_ts_answer* answer) {
  return context == data && size && answer;
}
static status C execution(void* context, const velora_ts_execution* saved, velora_ts_answer* answer) {
  return context == saved && answer;
}
static status C get(void* context, const char* guid, size_t size, int32_t for_link, velora_ts_answer* answer) {
  return context == guid && size && for_link && answer;
}
static status C event(void* context, const velora_ts_event* saved, const char* configuration, size_t configuration_size,
                      const char* of, size_t of_size) {
  return context == saved && configuration && configuration_size && of && of_size;
}
static status C configuration(void* context, const velora_ts_configuration* saved, velora_ts_answer* answer) {
  return context == saved && answer;
}
static status C create(void* context, const char* parent, size_t parent_size, const char* version, size_t version_size,
                       const char* node, size_t node_size, const char* description, size_t description_size,
                       velora_ts_answer* answer) {
  return context == parent && parent_size && version && version_size && node && node_size && description &&
         description_size && answer;
}
static status C add(void* context, const char* of, size_t size, const velora_ts_parameter* parameter) {
  return context == of && size && parameter;
}
static status C line(void* context, int32_t level, const char* source, size_t source_size, const char* message,
                     size_t message_size) {
  return context == source && level && source_size && message && message_size;
}

const velora_ts_gateway gateway = {sizeof gateway, 0,         release, session,  text,  yes,          yes,
                                   answered,       execution, get,     answered, event, configuration};
const velora_ts_own_logging own_logging = {sizeof own_logging, 0, release, create, text, text, two_texts, add};
const velora_ts_logger logger = {sizeof logger, 0, VELORA_TS_INFO, release, line};

typedef void any_function(void);
any_function* const functions[] = {
#include "c-functions.h"
};
