#include "asking/Trends.h"
#include "output/Output.h"
#include "serving/Routes.h"
#include "serving/Served.h"
#include "serving/http/Server.h"
#include "store/Error.h"
#include "verbs/Verb.h"

#include <VeloraSystem/EndRequest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

using namespace std::chrono_literals;

class ServeVerb : public Verb {
 public:
  explicit ServeVerb(Options& options) {
    options.AddRepeatedText("--config", folders,
                            "Folder with TSAL.config, whose store is served. Default: the current directory", "FOLDER");
    options.AddText("--listen", listen, "Where to listen. Default: 127.0.0.1:8437. Port 0 takes any free port",
                    "ADDRESS:PORT");
    options.AddRepeatedText("--host", names,
                            "A further name under which it is reached, such as that of a proxy before it. Requests for "
                            "other names are refused",
                            "NAME");
  }

  ExitCode Execute() override {
    const Http::Address address = WhereToListen();
    Served served;
    Trends trends;
    served.trends = &trends;
    for (const std::string& folder : folders.empty() ? std::vector<std::string>{""} : folders) {
      served.stores.push_back({static_cast<int>(served.stores.size()) + 1, folder, ReadSettings(folder)});
    }
    const System::EndRequest end;
    Http::Server server(address, names, HandlersOf(served));
    Say("serving " + StoresInWords(served) + " at http://" + server.Listens().InWords() + "/");
    FlushOut();
    std::thread answering([&server] { server.Serve(); });
    while (!end.Await(1h)) {
    }
    server.End();
    answering.join();
    return Done;
  }

 private:
  Http::Address WhereToListen() const {
    try {
      return Http::AddressOf(listen);
    } catch (const Error& error) {
      throw UsageError(error.what());
    }
  }

  static std::string StoresInWords(const Served& served) {
    std::string words;
    for (const ServedStore& store : served.stores) {
      words += (words.empty() ? "'" : ", '") + NameOf(store.settings.database) + "'";
    }
    return words;
  }

  std::vector<std::string> folders, names;
  std::string listen = "127.0.0.1:8437";
};

}  // namespace

extern const Registration registeredServe = {
    "serve",
    "Serves what the stores contain as pages for a browser, and as JSON, until Ctrl-C, or until a service is stopped.",
    "serve --config /data/scope-7\nserve --config /data/scope-7 --config /data/veldmar-3 --listen 127.0.0.1:8080",
    &Make<ServeVerb>};

}  // namespace Velora::Ts
