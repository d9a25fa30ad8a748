// What goes wrong arrives in C# as an exception with the whole text, also when C# itself is at fault.
using System;
using System.IO;
using Velora.Ts;

internal static class ErrorsTest {
  private static int failures;

  private static void Expect(string what, string expected, string found) {
    if (found != expected) {
      Console.WriteLine(what + ": expected '" + expected + "', found '" + found + "'");
      ++failures;
    }
  }

  private static string Thrown(Action call) {
    try {
      call();
      return "nothing";
    } catch (TsException reason) {
      return reason.Status + " " + reason.Message;
    } catch (ArgumentException reason) when (reason.ParamName == null) {
      return "ArgumentException " + reason.Message;
    } catch (Exception reason) {
      return reason.GetType().Name;
    }
  }

  private static int lines;

  private static void CountLines() {
    TsLibrary.SetLogger((level, source, message) => ++lines);
  }

  private static int Main() {
    string unknown = "00000000-0000-4000-8000-000000000000";
    TsLogging logging = new TsLogging("instrument.xml"), closed = new TsLogging("instrument.xml");
    closed.Dispose();

    Expect("a guid that TS does not know",
           "Raised velora_ts_update_execution: execution '" + unknown +
               "' is not known to this TS; expected one that it has stored",
           Thrown(() => logging.UpdateExecution(unknown)));
    Expect("no guid, outside ASCII",
           "Raised velora_ts_save_event: execution '電子' is not a guid; expected 32 hexadecimal digits in the form " +
               "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx",
           Thrown(() => logging.SaveEvent("Image", "電子")));
    Expect("a missing file",
           "Raised velora_ts_create_logging: file 'none.xml' cannot be read: No such file or directory; " +
               "expected a regular file that can be read",
           Thrown(() => new TsLogging("none.xml")));
    Expect("a closed handle", "ObjectDisposedException", Thrown(() => closed.CreateEvent("Image")));
    Expect("null", "ArgumentNullException", Thrown(() => logging.CreateEvent(null)));

    Expect("a kind that TS has not",
           "ArgumentException parameter 'Count' is Int64; expected bool, int, double, float or string",
           Thrown(() => logging.Record("Image", "", ("Count", 1L))));

    CountLines();
    for (int round = 0; round < 3; ++round) {  // what nothing refers to any more is gone
      GC.Collect();
      GC.WaitForPendingFinalizers();
    }
    logging.CreateEvent("Image");
    Expect("the logger gets lines", "True", (lines > 0).ToString());
    TsLibrary.SetLogger((level, source, message) => throw new InvalidOperationException("µ: no disk"));
    Expect("an exception of a logger", "Raised velora_ts_create_event: InvalidOperationException: µ: no disk",
           Thrown(() => logging.CreateEvent("Image")));
    TsLibrary.SetLogger((level, source, message) => throw new InvalidOperationException("not asked"), TsLevel.Error);
    Expect("lines below the least level", "nothing", Thrown(() => logging.CreateEvent("Image")));
    TsLibrary.SetLogger(null);

    File.Delete("TSAL.config");
    bool available = TsLibrary.IsAvailable("instrument.xml", out string why);
    string begin = "velora_ts_available: the current directory '" + Directory.GetCurrentDirectory() +
                   "' lacks TSAL.config, and the library's folder '";
    Expect("missing settings", "False " + begin, available + " " + why.Substring(0, begin.Length));
    return failures == 0 ? 0 : 1;
  }
}
