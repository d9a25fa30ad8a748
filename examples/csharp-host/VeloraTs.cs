// Velora TS logging for hosts in C#, over the C interface velora_ts.h: copy this file into a host. docs/c.md says more.
//
// Texts go to TS as UTF-8, with any characters, zero too; half of a surrogate pair becomes U+FFFD. A call that fails
// throws a TsException. All threads may call; the library lets in one at a time, for the length of one call: threads
// that record events of the same name need a lock of their own around the calls of an event.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;

namespace Velora.Ts {
  public enum TsStatus { Ok, Misuse, Raised, NoMemory, NotAvailable, TooLong, NotSupported }

  public enum TsLevel { Info, Warning, Error }

  /// A call failed. The message is the whole text: the name of the function of velora_ts.h, and why.
  public sealed class TsException : Exception {
    public readonly TsStatus Status;

    public TsException(TsStatus status, string message) : base(message) {
      Status = status;
    }
  }

  /// What concerns the whole process.
  public static class TsLibrary {
    /// Gets a line of the log. What it throws comes out of the operation that wrote the line, as a TsException, even
    /// if the operation has recorded by then: so it should catch its own errors.
    public delegate void Logger(TsLevel level, string source, string message);

    /// A logger can be used until the process ends, so its callbacks stay.
    private static readonly List<Native.LoggerTable> loggers = new List<Native.LoggerTable>();

    /// The version of the loaded library, such as "0.1.0".
    public static string Version => Marshal.PtrToStringAnsi(Native.velora_ts_version());

    /// Asks whether a host that begins now would record, and why not. The library itself can be what is missing.
    public static bool IsAvailable(string configuration, out string reason, string activities = "activities.xml") {
      byte[] c = Native.Bytes(configuration), a = Native.Bytes(activities);
      reason = "";
      try {
        int status = Native.velora_ts_available(c, Native.Size(c), a, Native.Size(a));
        if (status != (int)TsStatus.NotAvailable) {
          Native.Check(status);
          return true;
        }
        reason = Native.LastError();
      } catch (Exception unloaded) when (unloaded is TypeLoadException || unloaded is BadImageFormatException) {
        reason = "the library velora_ts cannot be used: " + unloaded.Message;
      }
      return false;
    }

    /// Replaces the logger of the process; null for the default one. It gets lines of the least level and above. When
    /// the process ends, the default one comes back, because lines may be written when there is no C# any more.
    public static void SetLogger(Logger logger, TsLevel least = TsLevel.Info) {
      if (logger == null) {
        Native.Check(Native.velora_ts_set_logger(IntPtr.Zero));
        return;
      }
      var table =
          new Native.LoggerTable { Size = (UIntPtr)Marshal.SizeOf(typeof(Native.LoggerTable)), LeastLevel = (int)least,
                                   Write = (context, level, source, sourceSize, message, messageSize) =>
                                       Native.Guarded(() => logger((TsLevel)level, Native.Text(source, sourceSize),
                                                                   Native.Text(message, messageSize))) };
      lock (loggers) {
        if (loggers.Count == 0) {
          AppDomain.CurrentDomain.ProcessExit += (sender, arguments) => Native.velora_ts_set_logger(IntPtr.Zero);
        }
        loggers.Add(table);
      }
      Native.Check(Native.velora_ts_set_logger(ref table));
    }
  }

  /// The logging object: the session with TS, executions and events.
  public sealed class TsLogging : IDisposable {
    private static readonly object events = new object();
    private readonly Native.LoggingHandle handle;

    public TsLogging(string configuration, string activities = "activities.xml") {
      byte[] c = Native.Bytes(configuration), a = Native.Bytes(activities);
      Native.Check(Native.velora_ts_create_logging(c, Native.Size(c), a, Native.Size(a), out handle));
    }

    public void Dispose() {
      handle.Dispose();
    }

    /// Returns the guid; empty while TS cannot be used.
    public string CreateExecution(string version, string node, string description = "") {
      byte[] v = Native.Bytes(version), n = Native.Bytes(node), d = Native.Bytes(description);
      var guid = new byte[Native.GuidCapacity];
      Native.Check(Native.velora_ts_create_execution(handle, v, Native.Size(v), n, Native.Size(n), d, Native.Size(d),
                                                     guid, Native.Size(guid), out UIntPtr size));
      return Native.Text(guid, size);
    }

    /// Returns the guid; empty while TS cannot be used, and if that of the parent is empty.
    public string CreateExecutionUnder(string parent, string version, string node, string description = "") {
      byte[] p = Native.Bytes(parent), v = Native.Bytes(version), n = Native.Bytes(node), d = Native.Bytes(description);
      var guid = new byte[Native.GuidCapacity];
      Native.Check(Native.velora_ts_create_execution_under(handle, p, Native.Size(p), v, Native.Size(v), n,
                                                           Native.Size(n), d, Native.Size(d), guid, Native.Size(guid),
                                                           out UIntPtr size));
      return Native.Text(guid, size);
    }

    public void UpdateExecution(string guid) {
      byte[] g = Native.Bytes(guid);
      Native.Check(Native.velora_ts_update_execution(handle, g, Native.Size(g)));
    }

    /// Saves an event with its parameters, of bool, int, double, float or string: ("Defocus", -1.5), ("Frames", 40).
    /// Threads can record events of one name, because the calls of an event stay together. A logger must not call this:
    /// it would wait for such a thread.
    public void Record(string name, string guid, params ValueTuple<string, object>[] parameters) {
      lock (events) {
        CreateEvent(name);
        foreach (var parameter in parameters) {
          AddAny(name, parameter.Item1, parameter.Item2);
        }
        SaveEvent(name, guid);
      }
    }

    public void CreateEvent(string name) {
      byte[] n = Native.Bytes(name);
      Native.Check(Native.velora_ts_create_event(handle, n, Native.Size(n)));
    }

    public void SaveEvent(string name, string guid = "") {
      byte[] n = Native.Bytes(name), g = Native.Bytes(guid);
      Native.Check(Native.velora_ts_save_event(handle, n, Native.Size(n), g, Native.Size(g)));
    }

    private void AddAny(string name, string parameter, object value) {
      if (value is bool) {
        Add(name, parameter, (bool)value);
      } else if (value is int) {
        Add(name, parameter, (int)value);
      } else if (value is double) {
        Add(name, parameter, (double)value);
      } else if (value is float) {
        Add(name, parameter, (double)(float)value);
      } else if (value is string) {
        Add(name, parameter, (string)value);
      } else {
        throw new ArgumentException("parameter '" + parameter + "' is " + (value?.GetType().Name ?? "null") +
                                    "; expected bool, int, double, float or string");
      }
    }

    public void Add(string name, string parameter, bool value) {
      byte[] n = Native.Bytes(name), p = Native.Bytes(parameter);
      Native.Check(Native.velora_ts_add_bool(handle, n, Native.Size(n), p, Native.Size(p), value ? 1 : 0));
    }

    public void Add(string name, string parameter, double value) {
      byte[] n = Native.Bytes(name), p = Native.Bytes(parameter);
      Native.Check(Native.velora_ts_add_double(handle, n, Native.Size(n), p, Native.Size(p), value));
    }

    public void Add(string name, string parameter, int value) {
      byte[] n = Native.Bytes(name), p = Native.Bytes(parameter);
      Native.Check(Native.velora_ts_add_int(handle, n, Native.Size(n), p, Native.Size(p), value));
    }

    public void Add(string name, string parameter, string value) {
      byte[] n = Native.Bytes(name), p = Native.Bytes(parameter), v = Native.Bytes(value);
      Native.Check(Native.velora_ts_add_text(handle, n, Native.Size(n), p, Native.Size(p), v, Native.Size(v)));
    }
  }

  /// Sets the parent of all executions that are created without one.
  public sealed class TsConfigurator : IDisposable {
    private readonly Native.ConfiguratorHandle handle;

    public TsConfigurator() {
      Native.Check(Native.velora_ts_create_configurator(out handle));
    }

    public void Dispose() {
      handle.Dispose();
    }

    /// Begins a new session, which forgets all pending events. Returns the guid of the parent.
    public string SetParent(string node, string text1 = "", string text2 = "", string text3 = "",
                            string activities = "activities.xml") {
      byte[] n = Native.Bytes(node), t1 = Native.Bytes(text1), t2 = Native.Bytes(text2), t3 = Native.Bytes(text3);
      byte[] a = Native.Bytes(activities);
      var guid = new byte[Native.GuidCapacity];
      Native.Check(Native.velora_ts_set_parent(handle, n, Native.Size(n), t1, Native.Size(t1), t2, Native.Size(t2), t3,
                                               Native.Size(t3), a, Native.Size(a), guid, Native.Size(guid),
                                               out UIntPtr size));
      return Native.Text(guid, size);
    }
  }

  /// The functions of velora_ts.h. On Windows the name means velora_ts.dll, on Linux libvelora_ts.so.
  internal static class Native {
    private const string library = "velora_ts";
    private const CallingConvention convention = CallingConvention.Cdecl;
    internal const int GuidCapacity = 40;

    internal static byte[] Bytes(string text) {
      if (text == null) {
        throw new ArgumentNullException(nameof(text));
      }
      return Encoding.UTF8.GetBytes(text);
    }

    internal static UIntPtr Size(byte[] bytes) {
      return (UIntPtr)bytes.Length;
    }

    internal static string Text(byte[] bytes, UIntPtr size) {
      return Encoding.UTF8.GetString(bytes, 0, (int)size);
    }

    internal static string Text(IntPtr data, UIntPtr size) {
      var bytes = new byte[(int)size];
      if (bytes.Length > 0) {
        Marshal.Copy(data, bytes, 0, bytes.Length);
      }
      return Text(bytes, size);
    }

    internal static string LastError() {
      IntPtr text = velora_ts_last_error(out UIntPtr size);
      return Text(text, size);
    }

    internal static void Check(int status) {
      if (status != (int)TsStatus.Ok) {
        throw new TsException((TsStatus)status, LastError());
      }
    }

    /// No exception may leave a callback.
    internal static int Guarded(Action callback) {
      try {
        callback();
        return (int)TsStatus.Ok;
      } catch (Exception reason) {
        byte[] text = Bytes(reason.GetType().Name + ": " + reason.Message);
        return velora_ts_raise(text, Size(text));
      }
    }

    internal sealed class LoggingHandle : SafeHandle {
      private LoggingHandle() : base(IntPtr.Zero, true) {}

      public override bool IsInvalid => handle == IntPtr.Zero;

      protected override bool ReleaseHandle() {
        return velora_ts_close_logging(handle) == (int)TsStatus.Ok;
      }
    }

    internal sealed class ConfiguratorHandle : SafeHandle {
      private ConfiguratorHandle() : base(IntPtr.Zero, true) {}

      public override bool IsInvalid => handle == IntPtr.Zero;

      protected override bool ReleaseHandle() {
        return velora_ts_close_configurator(handle) == (int)TsStatus.Ok;
      }
    }

    [UnmanagedFunctionPointer(convention)]
    internal delegate void ReleaseCallback(IntPtr context);

    [UnmanagedFunctionPointer(convention)]
    internal delegate int WriteCallback(IntPtr context, int level, IntPtr source, UIntPtr sourceSize, IntPtr message,
                                        UIntPtr messageSize);

    [StructLayout(LayoutKind.Sequential)]
    internal struct LoggerTable {
      internal UIntPtr Size;
      internal IntPtr Context;
      internal int LeastLevel;
      internal ReleaseCallback Release;
      internal WriteCallback Write;
    }

    [DllImport(library, CallingConvention = convention)]
    internal static extern IntPtr velora_ts_version();

    [DllImport(library, CallingConvention = convention)]
    internal static extern IntPtr velora_ts_last_error(out UIntPtr size);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_raise(byte[] text, UIntPtr size);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_available(byte[] configuration, UIntPtr configurationSize, byte[] activities,
                                                   UIntPtr activitiesSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_set_logger(ref LoggerTable logger);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_set_logger(IntPtr none);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_create_logging(byte[] configuration, UIntPtr configurationSize,
                                                        byte[] activities, UIntPtr activitiesSize,
                                                        out LoggingHandle logging);

    [DllImport(library, CallingConvention = convention)]
    private static extern int velora_ts_close_logging(IntPtr logging);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_create_execution(LoggingHandle logging, byte[] version, UIntPtr versionSize,
                                                          byte[] node, UIntPtr nodeSize, byte[] description,
                                                          UIntPtr descriptionSize, [Out] byte[] guid,
                                                          UIntPtr guidCapacity, out UIntPtr guidSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_create_execution_under(LoggingHandle logging, byte[] parent,
                                                                UIntPtr parentSize, byte[] version, UIntPtr versionSize,
                                                                byte[] node, UIntPtr nodeSize, byte[] description,
                                                                UIntPtr descriptionSize, [Out] byte[] guid,
                                                                UIntPtr guidCapacity, out UIntPtr guidSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_update_execution(LoggingHandle logging, byte[] guid, UIntPtr guidSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_create_event(LoggingHandle logging, byte[] name, UIntPtr nameSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_save_event(LoggingHandle logging, byte[] name, UIntPtr nameSize, byte[] guid,
                                                    UIntPtr guidSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_add_bool(LoggingHandle logging, byte[] name, UIntPtr nameSize,
                                                  byte[] parameter, UIntPtr parameterSize, int value);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_add_double(LoggingHandle logging, byte[] name, UIntPtr nameSize,
                                                    byte[] parameter, UIntPtr parameterSize, double value);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_add_int(LoggingHandle logging, byte[] name, UIntPtr nameSize, byte[] parameter,
                                                 UIntPtr parameterSize, int value);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_add_text(LoggingHandle logging, byte[] name, UIntPtr nameSize,
                                                  byte[] parameter, UIntPtr parameterSize, byte[] value,
                                                  UIntPtr valueSize);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_create_configurator(out ConfiguratorHandle configurator);

    [DllImport(library, CallingConvention = convention)]
    private static extern int velora_ts_close_configurator(IntPtr configurator);

    [DllImport(library, CallingConvention = convention)]
    internal static extern int velora_ts_set_parent(ConfiguratorHandle configurator, byte[] node, UIntPtr nodeSize,
                                                    byte[] text1, UIntPtr text1Size, byte[] text2, UIntPtr text2Size,
                                                    byte[] text3, UIntPtr text3Size, byte[] activities,
                                                    UIntPtr activitiesSize, [Out] byte[] guid, UIntPtr guidCapacity,
                                                    out UIntPtr guidSize);
  }
}
