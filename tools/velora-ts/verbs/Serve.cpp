#include "asking/Trends.h"
#include "asking/TrendsAhead.h"
#include "output/Output.h"
#include "serving/Routes.h"
#include "serving/Served.h"
#include "serving/http/Server.h"
#include "store/Error.h"
#include "store/values/StoredText.h"
#include "verbs/Verb.h"
#include "watching/Watch.h"

#include <VeloraSystem/EndRequest.h>
#include <VeloraSystem/Path.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds betweenLooks(500);
constexpr std::chrono::milliseconds longestEnd(500);

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
    options.AddRepeatedText("--value", values,
                            "A parameter whose newest number is shown for each instrument, beside what it does now. "
                            "The trends of the first three are read before somebody asks",
                            "NAME");
  }

  ExitCode Execute() override {
    const Http::Address address = WhereToListen();
    Served served = ServedStores();
    Trends trends;
    served.trends = &trends;
    const System::EndRequest end;
    const std::unique_ptr<Http::Server> server = Http::Listen(address, names, HandlersOf(served), {}, &Complain);
    Watch watch(Watched(served), {values});
    served.watch = &watch;
    std::future<void> answering = std::async(std::launch::async, [&server] { server->Serve(); });
    Say("serving " + StoresInWords(served) + " at http://" + server->Listens().InWords() + "/");
    FlushOut();
    Warn(server->Listens(), served);
    TrendsAhead ahead(trends, TrendStores(served), StoredValues());
    while (!end.Await(betweenLooks) && !HasEnded(answering, 0ms)) {
    }
    ahead.End();
    watch.End();
    server->End();
    if (!HasEnded(answering, longestEnd) || !watch.AwaitEnd(longestEnd) || !ahead.AwaitEnd(longestEnd)) {
      std::_Exit(Done);  // a long question to a store only reads, and can be cut off
    }
    answering.get();
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

  Served ServedStores() const {
    Served served;
    for (const std::string& folder : folders.empty() ? std::vector<std::string>{""} : folders) {
      served.stores.push_back({static_cast<int>(served.stores.size()) + 1, folder, ReadSettings(folder)});
    }
    return served;
  }

  static void Warn(const Http::Address& listens, const Served& served) {
    if (!listens.IsLoopback()) {
      Complain("other computers can reach " + listens.InWords() +
               ": there is no login and no encryption, so whoever reaches it reads every record. Let it listen at "
               "127.0.0.1, and put a server with both before it, such as nginx");
    }
    for (const ServedStore& store : served.stores) {
      const Database& database = store.settings.database;
      std::error_code unknown;
      if (database.kind == Database::Kind::Sqlite &&
          !std::filesystem::exists(System::PathOf(database.where), unknown)) {
        Complain("the store '" + NameOf(database) + "' is not there yet; it is served as soon as a host has made it");
      }
    }
  }

  static bool HasEnded(const std::future<void>& answering, std::chrono::milliseconds longest) {
    return answering.wait_for(longest) == std::future_status::ready;
  }

  static std::string StoresInWords(const Served& served) {
    std::string words;
    for (const ServedStore& store : served.stores) {
      words += (words.empty() ? "'" : ", '") + NameOf(store.settings.database) + "'";
    }
    return words;
  }

  static std::vector<WatchedStore> Watched(const Served& served) {
    std::vector<WatchedStore> watched;
    for (const ServedStore& store : served.stores) {
      watched.push_back({store.number, store.folder, store.settings});
    }
    return watched;
  }

  static std::vector<TrendStore> TrendStores(const Served& served) {
    std::vector<TrendStore> stores;
    for (const ServedStore& store : served.stores) {
      stores.push_back({store.number, store.settings.database});
    }
    return stores;
  }

  std::vector<std::string> StoredValues() const {
    std::vector<std::string> stored;
    std::transform(values.begin(), values.end(), std::back_inserter(stored), &ToStoredText);
    return stored;
  }

  std::vector<std::string> folders, names, values;
  std::string listen = "127.0.0.1:8437";
};

}  // namespace

extern const Registration registeredServe = {
    "serve",
    "Serves what the stores contain as pages for a browser, and as JSON, until Ctrl-C, or until a service is stopped.",
    "serve --config /data/scope-7\nserve --config /data/scope-7 --config /data/veldmar-3 --listen 127.0.0.1:8080",
    &Make<ServeVerb>};

}  // namespace Velora::Ts
