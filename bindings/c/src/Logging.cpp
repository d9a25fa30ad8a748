#include "Boundary.h"
#include "GuidBuffer.h"
#include "Handles.h"
#include "Text.h"

#include <VeloraTsLogging/IFactory.h>

using namespace Velora::CInterface;
using Quor::Velora::Infra::TsLogging::IFactory;

namespace {

constexpr char created[] = "the execution was created";

}  // namespace

velora_ts_status velora_ts_create_logging(const char* configuration, size_t configuration_size, const char* activities,
                                          size_t activities_size, velora_ts_logging** logging) {
  return Boundary(__func__, [&] {
    if (logging == nullptr) {
      throw Misuse("logging is null");
    }
    *logging = nullptr;
    const std::string instrument = TextOf("configuration", configuration, configuration_size);
    const std::string file = activities == nullptr ? "" : TextOf("activities", activities, activities_size);
    SessionBegins();
    auto object =
        activities == nullptr ? IFactory::CreateTsLogging(instrument) : IFactory::CreateTsLogging(instrument, file);
    if (object != nullptr) {
      *logging = Handles::Open<velora_ts_logging>(std::move(object));
    }
  });
}

velora_ts_status velora_ts_close_logging(velora_ts_logging* logging) {
  return Boundary(__func__, [&] {
    if (logging != nullptr) {
      Handles::Close(logging);
    }
  });
}

velora_ts_status velora_ts_create_execution(velora_ts_logging* logging, const char* version, size_t version_size,
                                            const char* node, size_t node_size, const char* description,
                                            size_t description_size, char* guid, size_t guid_capacity,
                                            size_t* guid_size) {
  return Boundary(__func__, [&] {
    const auto object = Handles::Of(logging);
    const std::string ofVersion = TextOf("version", version, version_size);
    const std::string atNode = TextOf("node", node, node_size);
    const std::string described = TextOf("description", description, description_size);
    GuidBuffer(guid, guid_capacity, guid_size).Fill(created, [&] {
      return object->CreateActivityExecution(ofVersion, atNode, described);
    });
  });
}

velora_ts_status velora_ts_create_execution_under(velora_ts_logging* logging, const char* parent, size_t parent_size,
                                                  const char* version, size_t version_size, const char* node,
                                                  size_t node_size, const char* description, size_t description_size,
                                                  char* guid, size_t guid_capacity, size_t* guid_size) {
  return Boundary(__func__, [&] {
    const auto object = Handles::Of(logging);
    const std::string under = TextOf("parent", parent, parent_size);
    const std::string ofVersion = TextOf("version", version, version_size);
    const std::string atNode = TextOf("node", node, node_size);
    const std::string described = TextOf("description", description, description_size);
    GuidBuffer(guid, guid_capacity, guid_size).Fill(created, [&] {
      return object->CreateActivityExecution(under, ofVersion, atNode, described);
    });
  });
}

velora_ts_status velora_ts_update_execution(velora_ts_logging* logging, const char* guid, size_t guid_size) {
  return Boundary(__func__, [&] { Handles::Of(logging)->UpdateActivityExecution(TextOf("guid", guid, guid_size)); });
}

velora_ts_status velora_ts_create_event(velora_ts_logging* logging, const char* name, size_t name_size) {
  return Boundary(__func__, [&] { Handles::Of(logging)->CreateInstrumentEvent(TextOf("name", name, name_size)); });
}

velora_ts_status velora_ts_save_event(velora_ts_logging* logging, const char* name, size_t name_size, const char* guid,
                                      size_t guid_size) {
  return Boundary(__func__, [&] {
    Handles::Of(logging)->SaveInstrumentEvent(TextOf("name", name, name_size), TextOf("guid", guid, guid_size));
  });
}

velora_ts_status velora_ts_add_bool(velora_ts_logging* logging, const char* event, size_t event_size,
                                    const char* parameter, size_t parameter_size, int32_t value) {
  return Boundary(__func__, [&] {
    Handles::Of(logging)->AddInstrumentEventParameter(TextOf("event", event, event_size),
                                                      TextOf("parameter", parameter, parameter_size), value != 0);
  });
}

velora_ts_status velora_ts_add_double(velora_ts_logging* logging, const char* event, size_t event_size,
                                      const char* parameter, size_t parameter_size, double value) {
  return Boundary(__func__, [&] {
    Handles::Of(logging)->AddInstrumentEventParameter(TextOf("event", event, event_size),
                                                      TextOf("parameter", parameter, parameter_size), value);
  });
}

velora_ts_status velora_ts_add_int(velora_ts_logging* logging, const char* event, size_t event_size,
                                   const char* parameter, size_t parameter_size, int32_t value) {
  return Boundary(__func__, [&] {
    Handles::Of(logging)->AddInstrumentEventParameter(TextOf("event", event, event_size),
                                                      TextOf("parameter", parameter, parameter_size), value);
  });
}

velora_ts_status velora_ts_add_text(velora_ts_logging* logging, const char* event, size_t event_size,
                                    const char* parameter, size_t parameter_size, const char* value,
                                    size_t value_size) {
  return Boundary(__func__, [&] {
    Handles::Of(logging)->AddInstrumentEventParameter(TextOf("event", event, event_size),
                                                      TextOf("parameter", parameter, parameter_size),
                                                      TextOf("value", value, value_size));
  });
}
