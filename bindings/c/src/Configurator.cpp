#include "Boundary.h"
#include "GuidBuffer.h"
#include "Handles.h"
#include "Text.h"

using namespace Velora::CInterface;

velora_ts_status velora_ts_create_configurator(velora_ts_configurator** configurator) {
  return Boundary(__func__, [&] {
    if (configurator == nullptr) {
      throw Misuse("configurator is null");
    }
    *configurator = nullptr;
    *configurator = Handles::Open<velora_ts_configurator>(Quor::Velora::Unmanaged::GetTsLoggingConfigurator());
  });
}

velora_ts_status velora_ts_close_configurator(velora_ts_configurator* configurator) {
  return Boundary(__func__, [&] {
    if (configurator != nullptr) {
      Handles::Close(configurator);
    }
  });
}

velora_ts_status velora_ts_set_parent(velora_ts_configurator* configurator, const char* node, size_t node_size,
                                      const char* text1, size_t text1_size, const char* text2, size_t text2_size,
                                      const char* text3, size_t text3_size, const char* activities,
                                      size_t activities_size, char* guid, size_t guid_capacity, size_t* guid_size) {
  return Boundary(__func__, [&] {
    const auto object = Handles::Of(configurator);
    const std::string atNode = TextOf("node", node, node_size);
    const std::string first = TextOf("text1", text1, text1_size);
    const std::string second = TextOf("text2", text2, text2_size);
    const std::string third = TextOf("text3", text3, text3_size);
    const std::string file = activities == nullptr ? "" : TextOf("activities", activities, activities_size);
    GuidBuffer(guid, guid_capacity, guid_size).Fill("the parent was set", [&] {
      SessionBegins();
      return activities == nullptr ? object->SetParentActivityExec(atNode, first, second, third)
                                   : object->SetParentActivityExec(atNode, first, second, third, file);
    });
  });
}
