#include "output/Output.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/recording/NoteRow.h"
#include "store/recording/Writer.h"
#include "verbs/RunForms.h"
#include "verbs/StoreVerb.h"

#include <VeloraSystem/System.h>

namespace Velora::Ts {

using namespace Store;

namespace {

bool IsBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n") == std::string::npos; }

class NoteVerb : public StoreVerb {
 public:
  explicit NoteVerb(Options& options) : StoreVerb(options) {
    options.AddRequiredText("RUN", name, "The run that the note is about: " VELORA_RUN_FORMS);
    options.AddRequiredText("TEXT", note.text, "What the note says");
    options.AddChoice("--kind", note.kind, {"cause", "review", "tag"},
                      "cause, why the run stopped or failed; review, a remark; tag, a short mark. "
                      "Default: review");
    options.AddText("--author", note.author, "Who wrote it. Default: the name of the user on this computer", "NAME");
    note.kind = "review";
    note.author = System::UserName();
  }

  ExitCode Execute() override {
    if (IsBlank(note.text) || IsBlank(note.author)) {
      throw UsageError(IsBlank(note.text) ? "expected a TEXT that says something" : "expected a name after --author");
    }
    const std::optional<Run> run = TheRunNamed(Reader(Database()), name);
    if (!run) {
      return Found;
    }
    note.root = run->root;
    AddNote(*OpenForWriting(Database()), note);
    Say("noted, as a " + note.kind + ": " + InWords(*run));
    return Done;
  }

 private:
  std::string name;
  NoteRow note;
};

}  // namespace

extern const Registration registeredNote = {"note", "Adds a note to a run. It changes nothing that was recorded.",
                                            "note last \"cryo ran dry\" --kind cause", &Make<NoteVerb>};

}  // namespace Velora::Ts
