// A host in C#: a run with nested executions, parameters of all kinds, and a logger of its own.
using System;
using System.Globalization;
using System.IO;
using Velora.Ts;

internal static class Host {
  private static int Main() {
    if (!TsLibrary.IsAvailable("instrument.xml", out string why)) {
      Console.Error.WriteLine("Nothing was recorded: " + why);
      return 1;
    }
    try {
      using (var log = new StreamWriter("csharp-host.log")) {
        TsLibrary.SetLogger((level, source, message) => {
          try {
            log.WriteLine(level + " " + source + ": " + message);
          } catch (IOException) {
            // A line of the log is no reason to end the run.
          }
        });
        try {
          Record();
        } finally {
          TsLibrary.SetLogger(null);
        }
      }
    } catch (TsException reason) {
      Console.Error.WriteLine("Not everything was recorded: " + reason.Message);
      return 1;
    }
    return 0;
  }

  private static void Record() {
    using (var logging = new TsLogging("instrument.xml")) {
      string session = logging.CreateExecution("Session", "grid 7", "a first run from C#");
      foreach (double angle in new[] { -1.5, 0, 1.5 }) {
        string exposure = logging.CreateExecutionUnder(session, "Exposure",
                                                       "tilt " + angle.ToString("0.0°", CultureInfo.InvariantCulture));
        logging.Record("Image", exposure, ("Tilt", angle), ("Frames", 40), ("Converged", angle != 0),
                       ("Folder", "Räume/電子/𝄞"), ("Two parts", "first\0second"));
        logging.UpdateExecution(exposure);
      }
      logging.UpdateExecution(session);
      Console.WriteLine("Recorded run " + session);
    }
  }
}
