#include "SeriesRecorder.h"

#include "EarlierSeries.h"
#include "FrameFiles.h"
#include "MdocReader.h"
#include "ParameterValue.h"

#include <optional>
#include <utility>

using Quor::Velora::Infra::TsLogging::ITsLogging;

namespace {

// Events of one kind share a name, and each creation starts the event again: the component keeps every name until the
// next session.
const std::string seriesEvent = "Series";

std::string Created(std::string guid, const std::string& what) {
  if (guid.empty()) {
    throw NothingCreated(what + ": nothing was created, since TS is not available");
  }
  return guid;
}

class Recorder {
 public:
  Recorder(ITsLogging& logging, const std::filesystem::path& file, RecordCounts& counts)
      : logging(logging),
        file(file),
        counts(counts),
        guid(Created(logging.CreateActivityExecution("TiltSeries", file.filename().string(), DescriptionOf(file)),
                     file.string())) {
    ++counts.series;
  }

  void Take(const MdocLine& line) {
    switch (line.kind) {
      case MdocLine::Kind::Section:
        return BeginSection(line);
      case MdocLine::Kind::Title:
        return AddToSeries(line);
      case MdocLine::Kind::Value:
        return section ? AddToSection(line) : AddToSeries(line);
    }
  }

  void Finish() {
    FinishSection();
    SaveSeriesEvent();
    logging.UpdateActivityExecution(guid);
  }

  /// Saves what was read so far, and marks nothing as done.
  void Abandon() {
    if (section) {
      SaveSectionEvent();
    }
    SaveSeriesEvent();
  }

 private:
  struct Section {
    std::string kind;
    std::string guid;
    std::uint64_t parameters = 0;
    bool framesOnDisk = false;
  };

  void BeginSection(const MdocLine& line) {
    FinishSection();
    SaveSeriesEvent();
    const std::string node = line.key + " " + line.value;
    section =
        Section{line.key, Created(logging.CreateActivityExecution(guid, "Section", node, file.filename().string()),
                                  file.string() + ", " + node)};
    ++counts.sections;
    logging.CreateInstrumentEvent(section->kind);
  }

  void AddToSection(const MdocLine& line) {
    AddParameter(section->kind, line);
    ++section->parameters;
    if (line.key == "SubFramePath") {
      section->framesOnDisk = FramesOnDisk(line.value, file.parent_path());
    }
  }

  void AddToSeries(const MdocLine& line) {
    if (seriesParameters == 0) {
      logging.CreateInstrumentEvent(seriesEvent);
    }
    AddParameter(seriesEvent, line);
    ++seriesParameters;
  }

  void AddParameter(const std::string& event, const MdocLine& line) {
    std::visit([&](const auto& value) { logging.AddInstrumentEventParameter(event, line.key, value); },
               TypedValue(line.value));
  }

  void FinishSection() {
    if (section) {
      SaveSectionEvent();
      logging.UpdateActivityExecution(section->guid);
      section.reset();
    }
  }

  void SaveSectionEvent() {
    logging.AddInstrumentEventParameter(section->kind, "FramesOnDisk", section->framesOnDisk);
    SaveEvent(section->kind, section->guid, section->parameters + 1);
  }

  void SaveSeriesEvent() {
    if (seriesParameters > 0) {
      SaveEvent(seriesEvent, guid, std::exchange(seriesParameters, 0));
    }
  }

  void SaveEvent(const std::string& event, const std::string& execution, std::uint64_t parameters) {
    logging.SaveInstrumentEvent(event, execution);
    ++counts.events;
    counts.parameters += parameters;
  }

  ITsLogging& logging;
  const std::filesystem::path& file;
  RecordCounts& counts;
  const std::string guid;
  std::uint64_t seriesParameters = 0;  // in the pending event of the series
  std::optional<Section> section;
};

// Reads the next line. If that fails, what was read before is saved, and then the error is raised.
bool ReadOn(MdocReader& reader, MdocLine& line, Recorder& recorder) {
  try {
    return reader.Next(line);
  } catch (const std::exception& reason) {
    try {
      recorder.Abandon();
    } catch (const std::exception& second) {
      throw MdocError(std::string(reason.what()) + "; what came before it was not saved: " + second.what());
    }
    throw;
  }
}

}  // namespace

void RecordSeries(ITsLogging& logging, const std::filesystem::path& file, RecordCounts& counts,
                  const std::function<void(std::uint64_t)>& progress) {
  MdocReader reader(file);
  Recorder recorder(logging, file, counts);
  MdocLine line;
  while (ReadOn(reader, line, recorder)) {
    recorder.Take(line);
    progress(reader.BytesRead());
  }
  recorder.Finish();
}
